// Tests that run once for each type of a list, like GoogleTest's typed tests, which compile ten times as long: there
// each test of each type is a class of its own with its own registration, here it is a function.
//
//     TYPE_SUITE(DilateQuick, AllForms, FormName);
//
//     TYPE_TEST(DilateQuick, KeepsConstantImages)
//     {
//         ... TypeParam ...
//     }
//
// The tests are named "DilateQuick/8u_C1R.KeepsConstantImages". Fixtures with members take GoogleTest's own macros.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace lumcv::test {

using TestBody = void (*)();

/// Registers a test for each name; always true.
bool registerTests(const char* suite, const char* test, const std::vector<std::string>& typeNames,
                   const TestBody* bodies, const char* file, int line);

/// Names for types that have none.
struct Numbered
{
    template <class T>
    static std::string GetName(int i)
    {
        return std::to_string(i);
    }
};

template <class Types, class Names = Numbered>
struct TypeSuite;

template <class... T, class Names>
struct TypeSuite<testing::Types<T...>, Names>
{
    static std::vector<std::string> typeNames()
    {
        int i = 0;
        return {Names::template GetName<T>(i++)...};
    }

    template <template <class> class Test>
    static bool add(const char* suite, const char* test, const char* file, int line)
    {
        static constexpr TestBody bodies[] = {&Test<T>::body...};
        return registerTests(suite, test, typeNames(), bodies, file, line);
    }
};

}  // namespace lumcv::test

/// TYPE_SUITE(Suite, Types) or TYPE_SUITE(Suite, Types, Names), where `Names` has a static member template
/// `std::string GetName<Type>(int)`.
#define TYPE_SUITE(Suite, ...) using Suite = ::lumcv::test::TypeSuite<__VA_ARGS__>

#define TYPE_TEST(Suite, Name)                                                \
    template <class TypeParam>                                                \
    struct Suite##_##Name##_Test                                              \
    {                                                                         \
        static void body();                                                   \
    };                                                                        \
    [[maybe_unused]] const bool Suite##_##Name##_registered =                 \
        Suite::add<Suite##_##Name##_Test>(#Suite, #Name, __FILE__, __LINE__); \
    template <class TypeParam>                                                \
    void Suite##_##Name##_Test<TypeParam>::body()
