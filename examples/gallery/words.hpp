// The words of a command line.
#pragma once

#include <charconv>
#include <string>
#include <string_view>

namespace gallery {

/// A number within bounds.
template <typename Number>
bool take(std::string_view word, Number least, Number most, Number& value)
{
    const char* last = word.data() + word.size();
    const auto [end, error] = std::from_chars(word.data(), last, value);
    return error == std::errc{} && end == last && value >= least && value <= most;
}

/// Any word that is not empty.
inline bool take(std::string_view word, std::string& value)
{
    value = word;
    return !word.empty();
}

}  // namespace gallery
