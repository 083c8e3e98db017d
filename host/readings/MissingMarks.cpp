#include "host/readings/MissingMarks.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

namespace vigil {
namespace {

constexpr std::array<std::string_view, 8> kWords = {"mm", "na", "n/a", "nan", "null", "none", "-", "--"};

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\n";
    const std::size_t begin = text.find_first_not_of(kBlanks);
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

}  // namespace

bool isMissingWord(std::string_view text) {
    constexpr std::size_t kLongest = 4;
    const std::string_view word = trimmed(text);
    if (word.empty()) return true;
    if (word.size() > kLongest) return false;
    std::string lower(word);
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return std::find(kWords.begin(), kWords.end(), lower) != kWords.end();
}

bool isMissingNumber(double value) {
    return value == -9999 || value == -9999.9 || std::isnan(value);
}

bool isMissingWhereImplausible(double value) {
    return value == 999 || value == 9999 || value == 99999;
}

}  // namespace vigil
