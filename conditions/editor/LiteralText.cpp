#include "conditions/editor/LiteralText.hpp"

#include <bit>
#include <cmath>
#include <cstdint>
#include <optional>

#include "conditions/ConditionPredicate.hpp"
#include "platform/Number.hpp"

namespace vigil {
namespace {

std::optional<double> numberFrom(std::string_view text) {
    // The language itself says what a number is. A text that would say more than one number gives a group.
    const auto said = ConditionPredicate::predicateWithFormat("k.unitValue == " + std::string(text));
    const Comparison* comparison = said ? said.value()->tree().comparison() : nullptr;
    if (!comparison) return std::nullopt;
    return std::get<double>(comparison->literal);
}

std::string dateText(Date date) {
    const double seconds = date.secondsSinceReference();
    const std::string text = date.isoText(seconds == std::floor(seconds) ? 0 : 6);
    const auto read = parseDate(text);
    const bool same = read && std::bit_cast<std::uint64_t>(read.value().secondsSinceReference()) ==
                                  std::bit_cast<std::uint64_t>(seconds);
    return same ? text : numberText(seconds);
}

}  // namespace

std::string literalText(const ComparisonLiteral& literal) {
    if (const auto* number = std::get_if<double>(&literal)) return numberText(*number);
    if (const auto* date = std::get_if<Date>(&literal)) return dateText(*date);
    return std::get<std::string>(literal);
}

Result<ComparisonLiteral> literalFromText(ComparisonMember member, std::string_view text) {
    if (member == ComparisonMember::StringValue) return ComparisonLiteral(std::string(text));
    const auto number = numberFrom(text);
    if (member == ComparisonMember::UnitValue) {
        if (!number) return Error{"\"" + std::string(text) + "\" is no number such as 10, -0.5 or 1e3"};
        return ComparisonLiteral(*number);
    }
    if (number) return ComparisonLiteral(Date(*number));
    const auto date = parseDate(text);
    if (!date) return date.error();
    return ComparisonLiteral(date.value());
}

ComparisonLiteral initialLiteral(ComparisonMember member) {
    switch (member) {
        case ComparisonMember::StringValue:
            return std::string();
        case ComparisonMember::Value:
            return Date();
        case ComparisonMember::UnitValue:
            break;
    }
    return 0.0;
}

bool literalFits(ComparisonMember member, const ComparisonLiteral& literal) {
    return literal.index() == initialLiteral(member).index();
}

}  // namespace vigil
