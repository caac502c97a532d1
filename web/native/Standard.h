#pragma once
#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

// What the tree uses of C++20's library and Emscripten 3.1.6 lacks. Every source of its build includes this first.

namespace std {

template <class To, class From> constexpr To bit_cast(const From& from) noexcept
{
    return __builtin_bit_cast(To, from);
}

namespace ranges {

template <class Range, class Value, class Member>
constexpr auto find(Range& range, const Value& value, Member member)
{
    return std::find_if(
        std::begin(range), std::end(range), [&](const auto& item) { return item.*member == value; });
}

template <class Left, class Right> constexpr bool equal(const Left& left, const Right& right)
{
    return std::equal(std::begin(left), std::end(left), std::begin(right), std::end(right));
}

template <class Range, class Condition> constexpr auto count_if(const Range& range, Condition condition)
{
    return std::count_if(std::begin(range), std::end(range), condition);
}

} // namespace ranges

} // namespace std
