#pragma once

#include <cstddef>
#include <nlohmann/json.hpp>
#include <string_view>

namespace parvex {

/// Keys stay in the order in which they were set.
using Json = nlohmann::ordered_json;

/// What our own writers stay far below. Deeper nesting would end the program where a value is written again, and more
/// keys in one object take a time that grows with their square, since they stay in order.
inline constexpr std::size_t kDeepestJson = 100;
inline constexpr std::size_t kMostJsonKeys = 1'000;
/// Each takes many times the memory of its text.
inline constexpr std::size_t kMostJsonValues = 1'000'000;

/// The value that a text from outside stands for. A std::exception that says what is wrong for one that is no JSON, and
/// a std::invalid_argument for one that passes those bounds. Cost: linear in the text.
Json ParseBoundedJson(std::string_view text);

/// The same of one of many texts, which may not hold more than `values` together: takes off what this one holds.
Json ParseBoundedJson(std::string_view text, std::size_t& values);

}  // namespace parvex
