// The size of the largest cache against what the kernel says about the same processor.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "lumcore.h"

// The largest cache that holds data, in bytes; 0 if the kernel does not say.
static long long largestCacheByKernel()
{
    long long largest = 0;
    for (int i = 0;; ++i) {
        const std::string folder = "/sys/devices/system/cpu/cpu0/cache/index" + std::to_string(i) + "/";
        std::ifstream typeFile(folder + "type"), sizeFile(folder + "size");
        std::string type, size;
        if (!(typeFile >> type) || !(sizeFile >> size)) {
            return largest;
        }
        if (type != "Instruction") {
            char* unit = nullptr;
            long long bytes = std::strtoll(size.c_str(), &unit, 10);
            bytes *= *unit == 'K' ? 1024 : *unit == 'M' ? 1024 * 1024 : 1;
            largest = bytes > largest ? bytes : largest;
        }
    }
}

// Before any other test: these are the first calls of the process, which ask the processor.
TEST(MaxCacheSizeThreads, AskAtTheSameTime)
{
    constexpr std::size_t count = 8;
    std::vector<int> statuses(count, 1), sizes(count, -1);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < count; ++i) {
        threads.emplace_back([&, i] { statuses[i] = lumGetMaxCacheSizeB(&sizes[i]); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    int size = -1;
    const int status = lumGetMaxCacheSizeB(&size);
    for (std::size_t i = 0; i < count; ++i) {
        EXPECT_EQ(statuses[i], status);
        EXPECT_EQ(sizes[i], size);
    }
}

TEST(MaxCacheSize, RefusesNull)
{
    EXPECT_EQ(lumGetMaxCacheSizeB(nullptr), -8);
}

TEST(MaxCacheSize, IsPlausibleAndConstant)
{
    int size = -1;
    const int status = lumGetMaxCacheSizeB(&size);
    if (status != 0) {
        EXPECT_EQ(size, -1) << "a failed query wrote a number";
        GTEST_SKIP() << "the processor does not describe its caches: status " << status;
    }
    EXPECT_GE(size, 16 * 1024);
    EXPECT_EQ(size % 1024, 0);
    int again = -1;
    EXPECT_EQ(lumGetMaxCacheSizeB(&again), 0);
    EXPECT_EQ(again, size);
}

TEST(MaxCacheSize, AgreesWithTheKernel)
{
    const long long byKernel = largestCacheByKernel();
    if (byKernel == 0) {
        GTEST_SKIP() << "the kernel does not describe the caches";
    }
    int size = -1;
    ASSERT_EQ(lumGetMaxCacheSizeB(&size), 0);
    EXPECT_EQ(size, byKernel);
}
