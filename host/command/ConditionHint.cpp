#include "host/command/ConditionHint.hpp"

#include <algorithm>

namespace vigil {
namespace {

bool isWordByte(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

std::string upper(std::string_view word) {
    std::string same(word);
    for (char& c : same)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    return same;
}

struct Slip {
    std::string_view typed, meant;
};

/// Operators of other languages, the longer ones first.
constexpr Slip kSlips[] = {{"=>", "did you mean >=?"},
                           {"=<", "did you mean <=?"},
                           {"<=", ""},
                           {"&&", "did you mean AND?"},
                           {"&", "did you mean AND?"},
                           {"||", "did you mean OR?"},
                           {"|", "did you mean OR?"},
                           {"<>", "did you mean !=?"},
                           {"=", "did you mean ==, for equal?"},
                           {"'", "texts stand in double quotes"}};

std::string ofSlip(std::string_view rest) {
    for (const Slip& slip : kSlips)
        if (rest.starts_with(slip.typed)) return std::string(slip.meant);
    return {};
}

}  // namespace

std::string conditionHint(std::string_view text, const SyntaxError& error) {
    const std::size_t at = std::min(error.offset, text.size());
    const std::string_view rest = text.substr(at);
    const auto wordEnd = std::find_if_not(rest.begin(), rest.end(), isWordByte);
    const std::string_view word = rest.substr(0, static_cast<std::size_t>(wordEnd - rest.begin()));
    const std::string capitals = upper(word);
    if (word != capitals && (capitals == "AND" || capitals == "OR"))
        return "did you mean " + capitals + ", in capitals?";
    const bool behindDot = at > 0 && text[at - 1] == '.';
    const bool isKey = !word.empty() && !isDigit(word.front());
    if (error.problem == SyntaxProblem::NoMember && isKey && !behindDot)
        return "did you mean " + std::string(word) + ".unitValue?";
    const std::size_t comma = rest.find(',');
    if (comma != std::string_view::npos && comma == word.size() && at + comma > 0 &&
        isDigit(text[at + comma - 1]) && at + comma + 1 < text.size() && isDigit(text[at + comma + 1]))
        return "numbers are written with a point, as in 60.5";
    const bool breaksAnOperator = at > 0 && rest.starts_with('>') && text[at - 1] == '<';
    if (breaksAnOperator) return "did you mean !=?";
    if (rest.starts_with('=') && at > 0 && text[at - 1] == '=') return "did you mean ==, for equal?";
    return ofSlip(rest);
}

}  // namespace vigil
