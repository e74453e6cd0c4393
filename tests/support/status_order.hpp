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

#include <cstddef>
#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
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

/// What a line of the table says of a violation. Its members stand in status_order.cpp: each of thousands of lines
/// would bring their code along.
struct ViolationRule
{
    ViolationRule(std::string_view nameOfViolation, LumStatus expected);
    ViolationRule(std::string_view nameOfViolation, LumStatus expected, const std::vector<std::string>& cannotJoin);
    ViolationRule(const ViolationRule& other);
    ViolationRule& operator=(const ViolationRule& other);
    ~ViolationRule();

    std::string name;
    LumStatus status;
    /// Names of violations that this one cannot be made together with, because one undoes the other.
    std::vector<std::string> notWith;
};

/// One line of the table. Most lambdas catch nothing and are held as plain functions, which compile several times
/// faster than function objects do.
template <class Args>
struct Violation : ViolationRule
{
    using Plain = void (*)(Args&);
    using Bound = std::function<void(Args&)>;

    Violation(std::string_view nameOfViolation, LumStatus expected, Plain makeViolation,
              const std::vector<std::string>& cannotJoin = {})
        : ViolationRule(nameOfViolation, expected, cannotJoin), plain(makeViolation)
    {
    }
    template <class F>
    requires(!std::is_convertible_v<F, Plain>)
        Violation(std::string_view nameOfViolation, LumStatus expected, F makeViolation,
                  const std::vector<std::string>& cannotJoin = {})
        : ViolationRule(nameOfViolation, expected, cannotJoin), bound(std::move(makeViolation))
    {
    }
    void apply(Args& args) const
    {
        plain ? plain(args) : bound(args);
    }

    Plain plain = nullptr;
    Bound bound;
};

/// Makes the violations of these places of the table in turn, and calls.
using ViolatingCall = std::function<LumStatus(std::initializer_list<std::size_t> places)>;

testing::AssertionResult statusOrder(const std::vector<const ViolationRule*>& rules, const std::vector<Output>& outputs,
                                     const ViolatingCall& call, LumStatus success);

/// Tries the valid call, each violation, and each pair of violations in turn. In a pair the one that stands first in
/// the table is applied last, so that it holds even where both change the same argument.
template <class Args>
testing::AssertionResult statusOrder(const Args& valid, const std::vector<Violation<std::type_identity_t<Args>>>& table,
                                     LumStatus success = lumOk)
{
    std::vector<const ViolationRule*> rules;
    for (const ViolationRule& violation : table) {
        rules.push_back(&violation);
    }
    const auto call = [&](std::initializer_list<std::size_t> places) {
        Args args = valid;
        for (const std::size_t place : places) {
            table[place].apply(args);
        }
        return static_cast<LumStatus>(args.call());
    };
    return statusOrder(rules, valid.outputs(), call, success);
}

/// Reports what statusOrder finds as failures of the running test.
template <class Args>
void expectStatusOrder(const Args& valid, const std::vector<Violation<std::type_identity_t<Args>>>& table,
                       LumStatus success = lumOk)
{
    EXPECT_TRUE(statusOrder(valid, table, success));
}

}  // namespace lumcv::test
