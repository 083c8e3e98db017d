#include "tests/support/ConditionGenerator.hpp"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string_view>
#include <utility>

#include "platform/Date.hpp"
#include "platform/Number.hpp"

namespace vigil::test {
namespace {

constexpr const char* kKeys[] = {"a", "b", "windChill", "k_9", "ORa", "ANDb", "CASTor", "missing"};
constexpr int kPresentKeys = 7;
constexpr const char* kTexts[] = {"", "Rain", "rain", "Rain ", "a\"b", "back\\slash", "\t", "Z", "ä", "10"};
constexpr double kValues[] = {0.0, -0.0, 1, 10, -1e300, 5e-324, 725803200, 0.1};

std::string spelled(const std::string& text) {
    std::string to = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') to += '\\';
        to += c;
    }
    return to + '"';
}

}  // namespace

void GeneratedReadings::addNumber(const std::string& key, double value, double unitValue,
                                  const std::optional<std::string>& text) {
    auto label = std::make_shared<AgentPropertyLabel>();
    label->propertyName = label->name = key;
    readings.setObject(
        AgentProperty(std::move(label), {.value = value, .unitValue = unitValue, .stringValue = text}));
    naive[key] = {value, unitValue, text ? *text : numberText(value)};
}

void GeneratedReadings::addText(const std::string& key, const std::string& text) {
    readings.setObject(AgentProperty::text(key, text, std::nullopt));
    naive[key] = {0, 0, text};
}

void GeneratedReadings::addDate(const std::string& key, double seconds, const std::string& text) {
    readings.setObject(AgentProperty::date(key, Date(seconds), std::nullopt));
    naive[key] = {seconds, seconds, text};
}

std::string ConditionGenerator::blanks(bool atLeastOne) {
    static constexpr const char* kBlanks[] = {"", " ", " ", " ", "  ", "\t", " \t "};
    return kBlanks[atLeastOne ? 1 + below(6) : below(7)];
}

std::string ConditionGenerator::number() {
    static constexpr const char* kNumbers[] = {"0",    "-0",     "+1",        "1.0",    "10",
                                               "1e1",  "1E+1",   "0.1",       "-1",     "00",
                                               "1e-5", "5e-324", "725803200", "-1e300", "1e-400"};
    return kNumbers[below(15)];
}

std::string ConditionGenerator::quoted() {
    return spelled(kTexts[below(10)]);
}

std::string ConditionGenerator::comparison() {
    static constexpr const char* kOperators[] = {"==", "!=", "<", "<=", ">", ">="};
    std::string text = kKeys[below(8)];
    const int member = below(4);
    text += member == 0 ? ".stringValue" : member == 1 ? ".value" : ".unitValue";
    text += blanks(false) + kOperators[below(6)] + blanks(false);
    if (member == 0) return text + quoted();
    if (member > 1) return text + number();
    return text + "CAST" + blanks(false) + "(" + blanks(false) + number() + blanks(false) + "," +
           blanks(false) + "\"NSDate\"" + blanks(false) + ")";
}

std::string ConditionGenerator::text(int comparisons) {
    const int left = 1 + below(comparisons);
    if (left == 1) {
        const std::string one = comparison();
        return below(4) > 0 ? one : "(" + blanks(false) + one + blanks(false) + ")";
    }
    const int first = 1 + below(left - 1);
    const std::string joined =
        text(first) + blanks(true) + (below(2) == 0 ? "AND" : "OR") + blanks(true) + text(left - first);
    return below(2) == 0 ? joined : "(" + joined + ")" + blanks(false);
}

GeneratedReadings ConditionGenerator::readings() {
    constexpr double kOdd[] = {std::numeric_limits<double>::quiet_NaN(),
                               std::numeric_limits<double>::infinity(),
                               -std::numeric_limits<double>::infinity()};
    GeneratedReadings made;
    for (int i = 0; i < kPresentKeys; ++i) {
        switch (below(5)) {
            case 0:
                break;
            case 1:
                made.addText(kKeys[i], kTexts[below(10)]);
                break;
            case 2: {
                const double seconds = kValues[below(8)];
                made.addDate(kKeys[i], seconds, Date(seconds).description());
                break;
            }
            case 3: {
                const double odd = kOdd[below(3)];
                made.addNumber(kKeys[i], odd, odd);
                break;
            }
            default: {
                const double value = kValues[below(8)];
                const double towards = below(2) == 0 ? 1e308 : -1e308;
                made.addNumber(kKeys[i], value, below(2) == 0 ? value : std::nextafter(value, towards),
                               below(4) == 0 ? std::optional<std::string>(kTexts[below(10)]) : std::nullopt);
            }
        }
    }
    return made;
}

char ConditionGenerator::anyByte() {
    static constexpr std::string_view kUsual = "ab.uV09 \t\"\\'()<>=!,+-eE_ANDOR";
    if (below(8) == 0) return static_cast<char>(below(256));
    return kUsual[static_cast<std::size_t>(below(static_cast<int>(kUsual.size())))];
}

std::string ConditionGenerator::damaged(std::string text) {
    const auto at = static_cast<std::size_t>(below(static_cast<int>(text.size()) + 1));
    const int how = below(3);
    if (how == 0 || at == text.size()) return text.insert(at, 1, anyByte());
    if (how == 1) return text.erase(at, 1);
    text[at] = anyByte();
    return text;
}

std::string ConditionGenerator::bytes(std::size_t most) {
    std::string made;
    const auto length = static_cast<std::size_t>(below(static_cast<int>(most) + 1));
    while (made.size() < length)
        made += anyByte();
    return made;
}

int longFactor() {
    const char* const set = std::getenv("VIGIL_LONG");
    if (!set || !*set) return 1;
    constexpr int kLong = 10;
    const int factor = std::atoi(set);
    return factor > 1 ? factor : kLong;
}

}  // namespace vigil::test
