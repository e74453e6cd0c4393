// The order of argument checks as a table: each violation gives its status, and of several violations made at once the
// first in the table decides.
//
//     struct Args
//     {
//         const Lum8u* pSrc;
//         int srcStep;
//         ...
//         LumStatus call() const { return lumiSomething_8u_C1R(pSrc, srcStep, ...); }
//         std::vector<Output> outputs() const { return {Output(destinationImage)}; }
//     };
//     expectStatusOrder(Args{...}, {
//         {"pSrc null", lumErrNullPointer, [](Args& a) { a.pSrc = nullptr; }},
//         {"width 0", lumErrSize, [](Args& a) { a.roiSize.width = 0; }},
//         ...
//     });
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "lumcv/types.h"
#include "support/image.hpp"

namespace lumcv::test {

/// Bytes that a call writes when its arguments are valid and must leave alone when they are not.
struct Output
{
    template <class T>
    explicit Output(const Image<T>& image) : begin(image.bytes()), size(image.byteCount())
    {
    }
    explicit Output(const GuardedBlock& block) : begin(block.data()), size(block.size()) {}
    Output(void* pointer, std::size_t bytes) : begin(static_cast<unsigned char*>(pointer)), size(bytes) {}

    unsigned char* begin;
    std::size_t size;
};

/// One line of the table.
template <class Args>
struct Violation
{
    /// Violations that this one cannot be made together with, because one undoes the other, are told by their names.
    /// (A constructor, since g++ 12 does not survive a default member initializer here when a template makes the table.)
    Violation(std::string violation, LumStatus itsStatus, std::function<void(Args&)> change,
              std::vector<std::string> others = {})
        : name(std::move(violation)), status(itsStatus), apply(std::move(change)), notWith(std::move(others))
    {
    }

    std::string name;
    LumStatus status;
    std::function<void(Args&)> apply;
    std::vector<std::string> notWith;
};

/// Tries the valid call, each violation, and each pair of violations in turn. In a pair the one that stands first in
/// the table is applied last, so that it holds even where both change the same argument.
template <class Args>
testing::AssertionResult statusOrder(const Args& valid, const std::vector<Violation<std::type_identity_t<Args>>>& table,
                                     LumStatus success = lumOk)
{
    std::string complaints;
    const auto complain = [&](const std::string& what, const std::string& complaint) {
        complaints += "\n  " + what + ": " + complaint;
    };
    const std::vector<Output> outputs = valid.outputs();
    const auto snapshot = [&] {
        std::vector<unsigned char> bytes;
        for (const Output& output : outputs) {
            bytes.insert(bytes.end(), output.begin, output.begin + output.size);
        }
        return bytes;
    };
    const std::vector<unsigned char> before = snapshot();
    const auto restore = [&] {
        std::size_t offset = 0;
        for (const Output& output : outputs) {
            std::memcpy(output.begin, before.data() + offset, output.size);
            offset += output.size;
        }
    };
    const auto tryCall = [&](const Args& args, LumStatus expected, const std::string& what) {
        const LumStatus status = args.call();
        if (status != expected) {
            complain(what, "got status " + std::to_string(status) + ", expected " + std::to_string(expected));
        }
        const bool written = snapshot() != before;
        if (written != (expected == success)) {
            complain(what, written ? "the call wrote through its outputs" : "the call wrote nothing");
        }
        restore();
    };
    const auto refuses = [](const auto& violation, const std::string& name) {
        for (const std::string& other : violation.notWith) {
            if (other == name) {
                return true;
            }
        }
        return false;
    };

    if (outputs.empty() || table.empty()) {
        return testing::AssertionFailure() << "nothing to test: no outputs or no violations";
    }
    tryCall(valid, success, "the valid call");
    for (std::size_t later = 0; later < table.size(); ++later) {
        Args single = valid;
        table[later].apply(single);
        tryCall(single, table[later].status, table[later].name);
        for (std::size_t earlier = 0; earlier < later; ++earlier) {
            if (refuses(table[later], table[earlier].name) || refuses(table[earlier], table[later].name)) {
                continue;
            }
            Args both = valid;
            table[later].apply(both);
            table[earlier].apply(both);
            tryCall(both, table[earlier].status, table[earlier].name + " + " + table[later].name);
        }
        for (const std::string& other : table[later].notWith) {
            bool known = false;
            for (const auto& violation : table) {
                known = known || violation.name == other;
            }
            if (!known) {
                complain(table[later].name, "there is no violation named '" + other + "'");
            }
        }
    }
    if (complaints.empty()) {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << "status order:" << complaints;
}

/// Reports what statusOrder finds as failures of the running test.
template <class Args>
void expectStatusOrder(const Args& valid, const std::vector<Violation<std::type_identity_t<Args>>>& table,
                       LumStatus success = lumOk)
{
    EXPECT_TRUE(statusOrder(valid, table, success));
}

}  // namespace lumcv::test
