#include "tests/support/ConditionVectors.hpp"

#include <charconv>
#include <cmath>
#include <optional>
#include <stdexcept>
#include <string_view>

#include "tests/support/VectorFile.hpp"

namespace vigil::test {
namespace {

std::string numberNotation(double value) {
    if (value == 0) return std::signbit(value) ? "-0" : "0";
    char text[40];
    return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

std::string literalNotation(const ComparisonLiteral& literal) {
    if (const auto* number = std::get_if<double>(&literal)) return numberNotation(*number);
    if (const auto* date = std::get_if<Date>(&literal))
        return "@" + numberNotation(date->secondsSinceReference());
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string bytes = "x";
    for (const char c : std::get<std::string>(literal)) {
        const auto byte = static_cast<unsigned char>(c);
        (bytes += kDigits[byte >> 4]) += kDigits[byte & 0xF];
    }
    return bytes;
}

const char* operatorNotation(ComparisonOperator op) {
    constexpr const char* kNames[] = {"EQ", "NE", "LT", "LE", "GT", "GE"};
    return kNames[static_cast<int>(op)];
}

class GivenReader {
  public:
    explicit GivenReader(std::string_view text) : m_rest(text) {}

    Given read() {
        Given given;
        if (!take("nothing")) do
                reading(given.readings);
            while (take(","));
        expect("=>");
        given.holds = take("true");
        if (!given.holds) expect("false");
        if (!m_rest.empty()) fail("the end");
        return given;
    }

  private:
    [[noreturn]] void fail(const std::string& wanted) const {
        throw std::runtime_error("expected " + wanted + " at: " + std::string(m_rest));
    }

    void skip() { m_rest.remove_prefix(std::min(m_rest.find_first_not_of(' '), m_rest.size())); }

    bool take(std::string_view wanted) {
        skip();
        if (!m_rest.starts_with(wanted)) return false;
        m_rest.remove_prefix(wanted.size());
        return true;
    }

    void expect(std::string_view wanted) {
        if (!take(wanted)) fail(std::string(wanted));
    }

    void reading(GeneratedReadings& to) {
        skip();
        const std::string key(m_rest.substr(0, m_rest.find_first_of(" =")));
        m_rest.remove_prefix(key.size());
        expect("=");
        if (take("@")) {
            const double seconds = number();
            to.addDate(key, seconds, Date(seconds).description());
        } else if (const auto text = quoted()) {
            to.addText(key, *text);
        } else {
            const double value = number();
            const double unitValue = take("/") ? number() : value;
            to.addNumber(key, value, unitValue, quoted());
        }
    }

    double number() {
        skip();
        if (take("NaN")) return std::nan("");
        if (take("-Infinity")) return -INFINITY;
        if (take("Infinity")) return INFINITY;
        double value = 0;
        const auto read = std::from_chars(m_rest.data(), m_rest.data() + m_rest.size(), value);
        if (read.ec != std::errc{}) fail("a number");
        m_rest.remove_prefix(static_cast<std::size_t>(read.ptr - m_rest.data()));
        return value;
    }

    std::optional<std::string> quoted() {
        if (!take("\"")) return std::nullopt;
        std::string raw;
        for (; !m_rest.empty() && m_rest[0] != '"'; m_rest.remove_prefix(1)) {
            if (m_rest.starts_with("\\\"")) m_rest.remove_prefix(1);
            // A pair is the business of unescaped(), so that "\\" before the closing quote does not open it.
            if (m_rest.starts_with("\\")) {
                raw += m_rest[0];
                m_rest.remove_prefix(1);
                if (m_rest.empty()) break;
            }
            raw += m_rest[0];
        }
        expect("\"");
        return unescaped(raw);
    }

    std::string_view m_rest;
};

}  // namespace

std::string treeNotation(const ConditionNode& node) {
    if (const Comparison* comparison = node.comparison())
        return comparison->key + " " + std::string(memberText(comparison->member)) + " " +
               operatorNotation(comparison->op) + " " + literalNotation(comparison->literal);
    std::string text = node.connective() == Connective::And ? "AND{ " : "OR{ ";
    for (const ConditionNode& part : node.parts())
        text += (&part == node.parts().data() ? "" : " ; ") + treeNotation(part);
    return text + " }";
}

Given readGiven(const std::string& text) {
    return GivenReader(text).read();
}

}  // namespace vigil::test
