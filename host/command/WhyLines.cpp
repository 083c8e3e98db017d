#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "host/command/JsonText.hpp"
#include "host/command/ReadingLines.hpp"
#include "host/command/TimeText.hpp"
#include "host/command/WhyAnswer.hpp"

namespace vigil {
namespace {

/// Six digits are enough for people, and hide what binary fractions add.
std::string numberText(double number) {
    return fmt::format("{:.6g}", number == 0 ? 0.0 : number);
}

std::string withUnit(double number, const std::string& unit) {
    return numberText(number) + (unit.empty() ? "" : " " + unit);
}

bool isDate(const ComparisonAnswer& answer) {
    return std::holds_alternative<Date>(answer.comparison.literal);
}

std::string valueText(const ComparisonAnswer& answer) {
    if (answer.absent) return "absent";
    if (answer.string) {
        std::string quoted;
        appendJsonText(quoted, *answer.string);
        return quoted;
    }
    if (isDate(answer)) return Date(*answer.number).description();
    return withUnit(*answer.number, answer.unit);
}

/// "0.4 °C more than it turns at": what separates the comparison from its opposite.
std::string marginText(const ComparisonAnswer& answer) {
    if (!answer.margin) return "";
    if (isDate(answer)) return fmt::format("{:.0f} s from turning", *answer.margin);
    return withUnit(*answer.margin, answer.unit) + " from turning";
}

std::string verdict(const ComparisonAnswer& answer) {
    return answer.holds ? "true " : "false";
}

std::string line(const ComparisonAnswer& answer, std::size_t width) {
    std::vector<std::string> notes;
    if (const auto margin = marginText(answer); !margin.empty()) notes.push_back(margin);
    if (answer.age && *answer.age != 0)
        notes.push_back(ageText(std::abs(*answer.age)) + (*answer.age < 0 ? " ahead" : " old"));
    if (answer.leftOut) notes.push_back("not judged, since it had not changed");
    std::string text =
        fmt::format("  {}  {:<{}}  is {}", verdict(answer), answer.text, width, valueText(answer));
    if (!notes.empty()) text += fmt::format("  ({})", fmt::join(notes, ", "));
    return text + "\n";
}

std::string reasonText(const WhyAnswer& answer) {
    const char* const would = answer.wouldHold ? "the condition would hold" : "the condition would not hold";
    switch (answer.reason) {
        case WhyAnswer::Reason::Fired:
            return "It fired: the condition holds.";
        case WhyAnswer::Reason::ConditionFalse:
            if (answer.onlyOnChange && answer.wouldHold)
                return "It did not fire: the condition holds, but not on what had changed.";
            return "It did not fire: the condition does not hold.";
        case WhyAnswer::Reason::Waiting:
            return fmt::format("It did not judge: it waits until {} ({}).",
                               answer.waitingUntil ? timeForPeople(*answer.waitingUntil) : "(null)", would);
        case WhyAnswer::Reason::NotWatching:
            return fmt::format("It did not watch then ({}).", would);
        case WhyAnswer::Reason::NoCondition:
            return "It did not fire: it has no condition.";
    }
    return "";
}

void appendNumberMember(std::string& to, const char* name, const std::optional<double>& number) {
    const bool finite = number && std::isfinite(*number);
    to += finite ? fmt::format(",\"{}\":{}", name, *number) : fmt::format(",\"{}\":null", name);
}

void appendComparison(std::string& to, const ComparisonAnswer& answer) {
    to += "{\"text\":";
    appendJsonText(to, answer.text);
    to += ",\"key\":";
    appendJsonText(to, answer.comparison.key);
    to += fmt::format(",\"holds\":{},\"absent\":{},\"unchanged\":{}", answer.holds, answer.absent,
                      answer.leftOut);
    if (answer.string) {
        to += ",\"value\":";
        appendJsonText(to, *answer.string);
    } else {
        appendNumberMember(to, "value", answer.number);
    }
    to += ",\"threshold\":";
    if (const auto* text = std::get_if<std::string>(&answer.comparison.literal))
        appendJsonText(to, *text);
    else if (const auto* date = std::get_if<Date>(&answer.comparison.literal))
        to += fmt::format("{}", date->secondsSinceReference());
    else
        to += fmt::format("{}", std::get<double>(answer.comparison.literal));
    to += ",\"unit\":";
    appendJsonText(to, answer.unit);
    appendNumberMember(to, "margin", answer.margin);
    appendNumberMember(to, "age", answer.age);
    to += '}';
}

}  // namespace

std::string whyText(const WhyAnswer& answer, const std::string& title, const std::string& station) {
    std::string text =
        fmt::format("{} on {}, by the readings of {}\n", title, station, timeForPeople(answer.time));
    if (!answer.condition.empty()) text += "  " + answer.condition + "\n";
    std::size_t width = 0;
    for (const ComparisonAnswer& comparison : answer.comparisons)
        width = std::max(width, comparison.text.size());
    for (const ComparisonAnswer& comparison : answer.comparisons)
        text += line(comparison, width);
    return text + reasonText(answer) + "\n";
}

std::string whyJson(const WhyAnswer& answer, const std::string& title, const std::string& station) {
    std::string json = "{\"monitor\":";
    appendJsonText(json, title);
    json += ",\"station\":";
    appendJsonText(json, station);
    json += fmt::format(",\"time\":\"{}\",\"reason\":\"{}\"", exactIsoText(answer.time),
                        whyReasonName(answer.reason));
    json += answer.waitingUntil ? ",\"waitingUntil\":\"" + exactIsoText(*answer.waitingUntil) + "\""
                                : ",\"waitingUntil\":null";
    json += fmt::format(",\"wouldHold\":{},\"onlyOnChange\":{},\"condition\":", answer.wouldHold,
                        answer.onlyOnChange);
    appendJsonText(json, answer.condition);
    json += ",\"comparisons\":[";
    for (const ComparisonAnswer& comparison : answer.comparisons) {
        if (json.back() == '}') json += ',';
        appendComparison(json, comparison);
    }
    return json + "]}\n";
}

}  // namespace vigil
