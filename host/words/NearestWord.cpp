#include "host/words/NearestWord.hpp"

#include <algorithm>

namespace vigil {
namespace {

/// Words longer than this are not compared: the work grows with the square of the length.
constexpr std::size_t kLongestComparedWord = 64;

std::size_t distance(std::string_view a, std::string_view b) {
    std::vector<std::vector<std::size_t>> cost(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
    for (std::size_t i = 0; i <= a.size(); ++i)
        cost[i][0] = i;
    for (std::size_t j = 0; j <= b.size(); ++j)
        cost[0][j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t changed = cost[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            cost[i][j] = std::min({cost[i - 1][j] + 1, cost[i][j - 1] + 1, changed});
            const bool swapped = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
            if (swapped) cost[i][j] = std::min(cost[i][j], cost[i - 2][j - 2] + 1);
        }
    }
    return cost[a.size()][b.size()];
}

}  // namespace

std::string nearestWord(std::string_view word, const std::vector<std::string>& candidates) {
    if (word.size() > kLongestComparedWord) return {};
    std::string nearest;
    std::size_t least = std::max<std::size_t>(1, word.size() / 3) + 1;
    for (const std::string& candidate : candidates) {
        if (candidate.size() > kLongestComparedWord) continue;
        const std::size_t away = distance(word, candidate);
        if (away >= least) continue;
        nearest = candidate;
        least = away;
    }
    return nearest;
}

}  // namespace vigil
