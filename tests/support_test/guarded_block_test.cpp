// The guarded block faults where it must and notices what is written beside it.
#include "support/guarded_block.hpp"

#include <gtest/gtest.h>

namespace lumcv::test {

static int readByte(const volatile unsigned char* pointer)
{
    return *pointer;
}

TEST(GuardedBlockDeathTest, FaultsOneByteTooFar)
{
    for (const std::size_t bytes : {1u, 100u, 4096u, 5000u}) {
        const GuardedBlock after(bytes, Guard::After);
        readByte(after.data());
        readByte(after.data() + bytes - 1);
        EXPECT_DEATH(readByte(after.data() + bytes), "");
        const GuardedBlock before(bytes, Guard::Before);
        readByte(before.data());
        readByte(before.data() + bytes - 1);
        EXPECT_DEATH(readByte(before.data() - 1), "");
    }
}

TEST(GuardedBlock, NoticesBytesWrittenBesideIt)
{
    const GuardedBlock after(100, Guard::After);
    after.data()[0] ^= 1;
    after.data()[99] ^= 1;
    EXPECT_TRUE(after.slackIntact());
    after.data()[-1] ^= 1;
    EXPECT_FALSE(after.slackIntact());

    const GuardedBlock before(100, Guard::Before);
    before.data()[99] ^= 1;
    EXPECT_TRUE(before.slackIntact());
    before.data()[100] ^= 1;
    EXPECT_FALSE(before.slackIntact());
}

TEST(GuardedBlock, CopiesStandAtTheSamePlaceInThePage)
{
    const GuardedBlock block(77, Guard::After);
    block.data()[5] = 99;
    const GuardedBlock copy(block);
    EXPECT_NE(copy.data(), block.data());
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(copy.data()) % 4096,
              reinterpret_cast<std::uintptr_t>(block.data()) % 4096);
    EXPECT_EQ(copy.data()[5], 99);
    EXPECT_EQ(copy.data()[4], copy.original(4));
    EXPECT_TRUE(copy.slackIntact());
}

}  // namespace lumcv::test
