// Statuses of lumcv.hpp that are thrown.
#include <gtest/gtest.h>
#include <lumcv/lumcv.hpp>

#include <stdexcept>
#include <string>

namespace {

using lumcv::call;
using lumcv::View;

TEST(Error, SaysWhichFunctionFailedAndWhy)
{
    Lum8u a[4] = {}, b[4] = {};
    const LumiSize size = {4, 1};
    call<lumiAbsDiffC_8u_C1R>(View(a, size), View(b, size), size, 9).throwIfError();
    EXPECT_EQ(b[3], 9);
    try {
        call<lumiAbsDiffC_8u_C1R>(View(a, 3, size), View(b, size), size, 9).throwIfError();
        FAIL() << "a stride of 3 bytes has passed";
    } catch (const lumcv::Error& error) {
        EXPECT_EQ(std::string(error.what()),
                  "lumiAbsDiffC_8u_C1R returned lumErrStep (-16): a stride below a row's width in bytes, or not "
                  "positive");
        EXPECT_EQ(error.status().code(), lumErrStep);
        EXPECT_EQ(error.status().function(), "lumiAbsDiffC_8u_C1R");
    }
    EXPECT_THROW(lumcv::Status(lumErrBorder).throwIfError(), std::runtime_error);
}

TEST(Error, LetsWarningsPass)
{
    EXPECT_NO_THROW(lumcv::Status(lumOk).throwIfError());
    EXPECT_NO_THROW(lumcv::Status(lumWrnEmptyMask).throwIfError());
}

}  // namespace
