// The version record: its layout, its numbers, and that its texts agree with them.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdio>
#include <cstring>
#include <string>

#include "lumcv/lumcv.h"

static_assert(offsetof(LumLibraryVersion, major) == 0);
static_assert(offsetof(LumLibraryVersion, minor) == 4);
static_assert(offsetof(LumLibraryVersion, majorBuild) == 8);
static_assert(offsetof(LumLibraryVersion, build) == 12);
static_assert(offsetof(LumLibraryVersion, targetCpu) == 16 && sizeof(LumLibraryVersion::targetCpu) == 4);
static_assert(offsetof(LumLibraryVersion, Name) == 24);
static_assert(offsetof(LumLibraryVersion, Version) == 32);
static_assert(offsetof(LumLibraryVersion, BuildDate) == 40);
static_assert(sizeof(LumLibraryVersion) == 48);

TEST(VersionQuick, NumbersOfTheRelease)
{
    const LumLibraryVersion* const version = lumcvGetLibVersion();
    ASSERT_NE(version, nullptr);
    EXPECT_EQ(version->major, 2022);
    EXPECT_EQ(version->minor, 1);
    EXPECT_EQ(version->majorBuild, 0);
}

TEST(VersionQuick, TheRecordIsOneConstant)
{
    const LumLibraryVersion* const version = lumcvGetLibVersion();
    const LumLibraryVersion copy = *version;
    EXPECT_EQ(lumcvGetLibVersion(), version);
    EXPECT_EQ(std::memcmp(&copy, version, sizeof copy), 0);
}

TEST(VersionQuick, VersionTextShowsReleaseAndRevision)
{
    const LumLibraryVersion* const version = lumcvGetLibVersion();
    char text[64];
    std::snprintf(text, sizeof text, "%d.%d.%d (r0x%08x)", static_cast<int>(version->major),
                  static_cast<int>(version->minor), static_cast<int>(version->majorBuild),
                  static_cast<unsigned>(version->build));
    EXPECT_STREQ(version->Version, text);
}

TEST(VersionQuick, NameShowsTheProcessorCode)
{
    const LumLibraryVersion* const version = lumcvGetLibVersion();
    const std::string code(version->targetCpu, strnlen(version->targetCpu, 4));
    EXPECT_FALSE(code.empty());
    for (std::size_t i = code.size(); i < 4; ++i) {
        EXPECT_EQ(version->targetCpu[i], '\0') << "character " << i;
    }
    const std::string name = version->Name;
    EXPECT_EQ(name.rfind("lumCV ", 0), 0u) << name;
    EXPECT_NE(name.find("(" + code + ")"), std::string::npos) << name;
}

TEST(VersionQuick, BuildDateIsADate)
{
    char month[4] = "";
    int day = 0, year = 0, length = 0;
    const char* const date = lumcvGetLibVersion()->BuildDate;
    ASSERT_EQ(std::sscanf(date, "%3s %2d %4d%n", month, &day, &year, &length), 3) << date;
    EXPECT_EQ(date[length], '\0') << date;
    EXPECT_NE(std::strstr("Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec", month), nullptr) << date;
    EXPECT_TRUE(day >= 1 && day <= 31) << date;
    EXPECT_GE(year, 2022) << date;
}
