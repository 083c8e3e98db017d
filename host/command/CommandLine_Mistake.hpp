#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <CLI/App.hpp>

namespace vigil {

/// A sentence for people about a command line that cannot be understood, with the nearest command or option
/// where one is near, and the help that applies.
std::string mistakeText(const CLI::App& app, const CLI::ParseError& mistake);

/// The candidate that differs from `word` in the fewest letters (changed, added, left out, or two
/// neighbours swapped), or an empty text when even that differs in more than a third of them.
std::string nearestWord(std::string_view word, const std::vector<std::string>& candidates);

}  // namespace vigil
