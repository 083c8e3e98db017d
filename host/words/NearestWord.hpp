#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vigil {

/// The candidate that differs from `word` in the fewest letters (changed, added, left out, or two
/// neighbours swapped), or an empty text when even that differs in more than a third of them.
std::string nearestWord(std::string_view word, const std::vector<std::string>& candidates);

}  // namespace vigil
