/**
 * @file
 * @brief An optional C++20 layer over the functions of lumcv.h: views of images, owned blocks, statuses that can throw.
 *
 * Header-only, and usable with `-fno-exceptions`, where a status can only be read.
 */
#ifndef LUMCV_HPP
#define LUMCV_HPP

#include <array>
#include <cassert>
#include <concepts>
#include <cstddef>
#include <string_view>
#include <type_traits>
#include <utility>

#include "block.hpp"
#include "lumcv.h"
#include "status.hpp"
#include "view.hpp"

/** The C++ layer: see @ref cpp. */
namespace lumcv {

/**
 * @defgroup cpp C++ layer
 * @brief What `lumcv/lumcv.hpp` adds to the C functions for programs in C++20.
 *
 * One template, lumcv::call(), calls every function of the library. It takes a lumcv::View where the function takes
 * pointer and stride, a lumcv::Block or lumcv::Record where it takes memory or tells a size, and everything else as it
 * is. What does not fit does not compile. The page @ref cpp_page has an example.
 *
 * @{
 */

/// @cond
namespace detail {

// The name of a function, as the compiler spells a template argument.
template <auto function>
constexpr std::string_view nameOf()
{
    constexpr std::string_view identifier = "_0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
    constexpr std::string_view before = "function = ";
    std::string_view name = __PRETTY_FUNCTION__;
    name.remove_prefix(name.find(before) + before.size());
    name.remove_prefix(name.find_first_of(identifier));  // clang writes an ampersand
    return name.substr(0, name.find_first_not_of(identifier));
}

// The channels that a name spells, as 3 in lumiFilterGaussian_8u_C3R; 0 if it spells none.
constexpr int channelsIn(std::string_view name)
{
    const std::size_t token = name.rfind("_C");
    const char digit = token != std::string_view::npos && token + 2 < name.size() ? name[token + 2] : '0';
    return digit >= '1' && digit <= '9' ? digit - '0' : 0;
}

// What a function's name tells.
template <auto function>
struct Name
{
    static constexpr std::string_view text = nameOf<function>();
    static constexpr int channels = channelsIn(text);
    static constexpr bool isInit = text.find("Init") != std::string_view::npos;
    static constexpr bool isQuery =
        text.find("Get") != std::string_view::npos && text.find("Size") != std::string_view::npos;
};

// How many parameters an argument stands for, and how many channels a view has, 0 if it is none.
template <class T>
struct Shape
{
    static constexpr std::size_t parameters = 1;
    static constexpr int channels = 0;
};
template <class T, int n>
struct Shape<View<T, n>>
{
    static constexpr std::size_t parameters = 2;
    static constexpr int channels = n;
};
template <class T>
struct Shape<BitView<T>>
{
    static constexpr std::size_t parameters = 3;
    static constexpr int channels = 0;
};

template <class T>
constexpr bool isRecord = false;
template <class R>
constexpr bool isRecord<Record<R>> = true;

// Memory whose size a query tells.
template <class T>
constexpr bool isMemory = std::is_same_v<T, Block> || isRecord<T>;

template <class P>
constexpr bool isSizeResult = std::is_same_v<P, Lum32s*> || std::is_same_v<P, Lum64s*>;

// Numbers of one kind, integers (enumerators are) or floats; nothing of 64 bits becomes shorter.
template <class P, class A>
constexpr bool isNumberFor =
    std::is_arithmetic_v<P> && !std::is_same_v<A, bool> && (sizeof(A) <= sizeof(P) || sizeof(A) <= sizeof(int)) &&
    (std::is_floating_point_v<P> ? std::is_floating_point_v<A>
                                 : std::is_integral_v<A> || (std::is_enum_v<A> && std::is_convertible_v<A, int>));

// A vector, array or span whose first element a pointer parameter takes.
template <class A, class P>
concept HasDataFor = std::convertible_to<decltype(std::data(std::declval<A&>())), P>;

// What an argument is for a parameter that it does not fit.
struct Unfit
{
};

// One argument of a call: A is Block& or int, as it was given, and First the first parameter that it stands for.
template <class A, class First, bool inQuery>
class Slot
{
    using Plain = std::remove_cvref_t<A>;
    static constexpr bool isSized = inQuery && isMemory<Plain> && isSizeResult<First>;
    using Size = std::conditional_t<isSized, std::remove_pointer_t<First>, Unfit>;

  public:
    constexpr explicit Slot(std::remove_reference_t<A>& argument) : argument_(argument) {}

    // What a parameter gets: the type says whether the argument fits.
    template <std::size_t piece, class P>
    constexpr auto get()
    {
        if constexpr (Shape<Plain>::parameters > 1) {
            return getOfView<piece, P>();
        } else if constexpr (isMemory<Plain>) {
            return getOfMemory<P>();
        } else if constexpr (std::is_same_v<P, LumiSizeL> && std::is_same_v<Plain, LumiSize>) {
            return LumiSizeL{argument_.width, argument_.height};
        } else if constexpr (std::is_same_v<P, LumiPointL> && std::is_same_v<Plain, LumiPoint>) {
            return LumiPointL{argument_.x, argument_.y};
        } else if constexpr (isNumberFor<P, Plain>) {
            return static_cast<P>(argument_);
        } else if constexpr (!std::is_arithmetic_v<P> && std::is_convertible_v<A, P>) {
            return static_cast<P>(argument_);
        } else if constexpr (HasDataFor<std::remove_reference_t<A>, P>) {
            return static_cast<P>(std::data(argument_));
        } else {
            return Unfit{};
        }
    }

    template <std::size_t piece, class P>
    static constexpr bool fits = std::is_same_v<decltype(std::declval<Slot&>().template get<piece, P>()), P>;

    // A query has succeeded. Sizes of 32 bits are unsigned numbers, as lumiFGMMGetBufferSize_8u_C3R has them.
    void takeSize()
    {
        if constexpr (isSized) {
            argument_.fit(static_cast<std::make_unsigned_t<Size>>(size_));
        }
    }

    constexpr bool covers(LumiSizeL roi) const
    {
        return argument_.size().width >= roi.width && argument_.size().height >= roi.height;
    }

  private:
    template <std::size_t piece, class P>
    constexpr auto getOfView()
    {
        constexpr bool isInteger = std::is_same_v<P, Lum32s> || std::is_same_v<P, Lum64s>;
        if constexpr (piece == 0 && std::is_convertible_v<decltype(argument_.pixels()), P>) {
            return static_cast<P>(argument_.pixels());
        } else if constexpr (piece == 1 && isInteger) {
            return P{argument_.step()};
        } else if constexpr (piece == 2 && isInteger) {
            return P{argument_.bitOffset()};
        } else {
            return Unfit{};
        }
    }

    template <class P>
    constexpr auto getOfMemory()
    {
        constexpr bool isConst = std::is_const_v<std::remove_reference_t<A>>;
        if constexpr (isSized && !isConst) {
            return &size_;
        } else if constexpr (std::is_same_v<P, Lum8u*> && !isConst) {
            return argument_.data();
        } else if constexpr (!isRecord<Plain>) {
            return Unfit{};
        } else if constexpr (std::is_convertible_v<decltype(argument_.get()), P>) {
            return static_cast<P>(argument_.get());
        } else if constexpr (std::is_same_v<decltype(std::declval<Plain>().address()), P> && !isConst) {
            return argument_.address();
        } else {
            return Unfit{};
        }
    }

    std::remove_reference_t<A>& argument_;
    [[no_unique_address]] Size size_{};
};

// A type found by its number.
template <std::size_t number, class T>
struct Numbered
{
};
template <class Numbers, class... T>
struct TypeList;
template <std::size_t... number, class... T>
struct TypeList<std::index_sequence<number...>, T...> : Numbered<number, T>...
{
};
template <std::size_t number, class T>
std::type_identity<T> typeAt(const Numbered<number, T>*);

// The arguments of one call, each in its slot.
template <std::size_t number, class T>
struct NumberedSlot : T
{
    using T::T;
};
template <class Numbers, class... T>
struct SlotList;
template <std::size_t... number, class... T>
struct SlotList<std::index_sequence<number...>, T...> : NumberedSlot<number, T>...
{
    template <class... A>
    constexpr explicit SlotList(A&... argument) : NumberedSlot<number, T>(argument)...
    {
    }
};
template <std::size_t number, class T>
constexpr T& slotAt(NumberedSlot<number, T>& slot)
{
    return slot;
}

// Which argument a parameter is part of, and which piece of it.
struct Place
{
    std::size_t argument;
    std::size_t piece;
};

// A function's parameters and the arguments of one call.
template <auto function, class Function, class... A>
struct Match;

template <auto function, class Result, class... P, class... A>
struct Match<function, Result (*)(P...), A...>
{
    using EachArgument = std::index_sequence_for<A...>;
    using EachParameter = std::index_sequence_for<P...>;
    using ParameterList = TypeList<EachParameter, P...>;
    using ArgumentList = TypeList<EachArgument, A...>;

    template <std::size_t p>
    using Parameter = typename decltype(typeAt<p>(static_cast<ParameterList*>(nullptr)))::type;
    template <std::size_t a>
    using Argument = typename decltype(typeAt<a>(static_cast<ArgumentList*>(nullptr)))::type;

    static constexpr bool hasRightCount = (Shape<std::remove_cvref_t<A>>::parameters + ... + 0) == sizeof...(P);

    // one more than there are, so that no array is empty
    static constexpr std::size_t parametersOf[sizeof...(A) + 1] = {Shape<std::remove_cvref_t<A>>::parameters..., 0};
    static constexpr int channelsOf[sizeof...(A) + 1] = {Shape<std::remove_cvref_t<A>>::channels..., 0};
    static constexpr auto places = [] {
        std::array<Place, sizeof...(P) + 1> result{};
        std::size_t p = 0;
        for (std::size_t a = 0; a < sizeof...(A); ++a) {
            for (std::size_t piece = 0; piece < parametersOf[a] && p < sizeof...(P); ++piece) {
                result[p++] = {a, piece};
            }
        }
        return result;
    }();
    static constexpr std::size_t firstOf(std::size_t argument)
    {
        std::size_t first = 0;
        for (std::size_t a = 0; a < argument; ++a) {
            first += parametersOf[a];
        }
        return first;
    }
    // the next size behind a view is that of its ROI; one past the last parameter if there is none
    static constexpr std::size_t roiBehind(std::size_t parameter)
    {
        constexpr bool isSize[sizeof...(P) + 1] = {(std::is_same_v<P, LumiSize> || std::is_same_v<P, LumiSizeL>)...,
                                                   true};
        while (!isSize[parameter]) {
            ++parameter;
        }
        return parameter;
    }

    // A function of several channels takes images of so many, and masks or results of one. An Init may take masks
    // alone.
    static constexpr bool hasRightChannels = [] {
        constexpr int spelled = Name<function>::channels;
        bool hasViews = false, oneHasAll = Name<function>::isInit;
        for (const int channels : channelsOf) {
            if (spelled != 0 && channels > 1 && channels != spelled) {
                return false;
            }
            hasViews = hasViews || channels > 0;
            oneHasAll = oneHasAll || channels == spelled;
        }
        return spelled == 0 || oneHasAll || !hasViews;
    }();

    template <std::size_t a>
    using SlotOf = Slot<Argument<a>, Parameter<firstOf(a)>, Name<function>::isQuery>;

    template <std::size_t p>
    static constexpr bool fits = SlotOf<places[p].argument>::template fits<places[p].piece, Parameter<p>>;

    template <std::size_t... p>
    static constexpr bool allFit(std::index_sequence<p...>)
    {
        return (fits<p> && ...);
    }

    static constexpr bool works = [] {
        if constexpr (hasRightCount && hasRightChannels) {
            return allFit(EachParameter());
        } else {
            return false;
        }
    }();

    template <std::size_t p>
    static auto valueOf(auto& slots)
    {
        return slotAt<places[p].argument>(slots).template get<places[p].piece, Parameter<p>>();
    }

#ifndef NDEBUG
    template <std::size_t a>
    static void assertCovers(auto& slots)
    {
        constexpr std::size_t roiAt = roiBehind(firstOf(a));
        if constexpr (channelsOf[a] > 0 && roiAt < sizeof...(P)) {
            const auto roi = valueOf<roiAt>(slots);
            assert(slotAt<a>(slots).covers({roi.width, roi.height}) && "a view is smaller than the ROI");
        }
    }
#endif

    template <std::size_t... a, std::size_t... p>
    static auto run(std::index_sequence<a...> numbers, std::index_sequence<p...>,
                    std::remove_reference_t<A>&... argument)
    {
        [[maybe_unused]] SlotList<decltype(numbers), SlotOf<a>...> slots(argument...);
#ifndef NDEBUG
        (assertCovers<a>(slots), ...);
#endif
        const Result result = function(valueOf<p>(slots)...);
        if constexpr (std::is_same_v<Result, LumStatus>) {
            if (Name<function>::isQuery && result == lumOk) {
                (slotAt<a>(slots).takeSize(), ...);
            }
            return Status(result, Name<function>::text);
        } else {
            return result;
        }
    }
};

// A template of its own for each parameter, so that the compiler's message tells which one it is.
template <std::size_t parameterNumber, class Parameter, class Argument, class Match>
constexpr void assertFits()
{
    static_assert(Match::template fits<parameterNumber - 1>,
                  "lumcv::call: an Argument does not fit its Parameter, the one of this parameterNumber");
}

template <class Match, std::size_t... p>
constexpr void assertAllFit(std::index_sequence<p...>)
{
    (assertFits<p + 1, typename Match::template Parameter<p>,
                typename Match::template Argument<Match::places[p].argument>, Match>(),
     ...);
}

}  // namespace detail
/// @endcond

/**
 * Whether call() takes these arguments.
 *
 * @tparam function a function of the library
 * @tparam A        the arguments' types, a reference for an lvalue
 */
template <auto function, class... A>
concept Callable = detail::Match<function, decltype(function), A...>::works;

/**
 * Calls a function of the library, `lumcv::call<lumiAbsDiff_8u_C1R>(a, b, result, a.size())`.
 *
 * The arguments stand in the order of the function's parameters:
 * - A View stands for pointer and stride, a BitView for pointer, stride and bit offset. The size of the ROI is an
 *   argument of its own, as in the function; without `NDEBUG`, an assertion fails for a view that is smaller.
 * - A Block is the pointer to its memory, a Record the pointer to the record or its memory. In a query, both stand for
 *   the pointers to their sizes, and become as large when the query returns #lumOk.
 * - A vector, array or span stands for the pointer to its first element, for kernels, lists and arrays of row pointers.
 * - Numbers must be of the parameter's kind, integers or floats, and nothing of 64 bits becomes shorter. #LumiSize and
 *   #LumiPoint serve the 64-bit entry points as well.
 * - Anything else is passed as it is.
 *
 * What does not fit does not compile: another element type, a missing argument, an image whose channels are not those
 * in the function's name. The call costs what the function costs.
 *
 * @tparam function a function of the library
 * @param  argument the arguments
 * @return the Status, or what a function returns that has none
 */
template <auto function, class... A>
inline auto call(A&&... argument)
{
    using Match = detail::Match<function, decltype(function), A...>;
    static_assert(Match::hasRightCount,
                  "lumcv::call: too few or too many arguments; a View stands for pointer and stride, a BitView for "
                  "pointer, stride and bit offset");
    if constexpr (Match::hasRightCount) {
        detail::assertAllFit<Match>(typename Match::EachParameter());
        static_assert(Match::hasRightChannels,
                      "lumcv::call: a view has other channels than the function's name tells; View::elements() makes "
                      "one channel of all");
        if constexpr (Match::works) {
            return Match::run(typename Match::EachArgument(), typename Match::EachParameter(), argument...);
        }
    }
}

/** @} */

}  // namespace lumcv

#endif
