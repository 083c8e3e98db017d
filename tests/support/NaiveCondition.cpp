#include "tests/support/NaiveCondition.hpp"

#include <cctype>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace vigil::test {
namespace {

struct NoCondition {};

class Reader {
  public:
    Reader(std::string_view text, const NaiveReadings& readings) : m_text(text), m_readings(readings) {}

    bool whole() {
        const bool verdict = alternatives();
        skip();
        if (!m_text.empty()) throw NoCondition{};
        return verdict;
    }

  private:
    bool alternatives() {
        bool any = conjunction();
        while (word("OR"))
            any |= conjunction();
        return any;
    }

    bool conjunction() {
        bool all = single();
        while (word("AND"))
            all &= single();
        return all;
    }

    bool single() {
        if (!mark("(")) return comparison();
        const bool inside = alternatives();
        if (!mark(")")) throw NoCondition{};
        return inside;
    }

    bool comparison() {
        skip();
        const std::string key = letters();
        if (key.empty() || std::isdigit(static_cast<unsigned char>(key[0])) || key[0] == '_')
            throw NoCondition{};
        if (key == "AND" || key == "OR" || key == "CAST") throw NoCondition{};
        if (m_text.substr(0, 1) != ".") throw NoCondition{};
        m_text.remove_prefix(1);
        const std::string member = letters();
        std::string op;
        for (const char* each : {"==", "!=", "<=", ">=", "<", ">"})
            if (op.empty() && mark(each)) op = each;
        const auto found = m_readings.find(key);
        const NaiveReading* reading = found == m_readings.end() ? nullptr : &found->second;
        if (member == "unitValue") return numbers(reading ? reading->unitValue : NAN, op, number());
        if (member == "value") return numbers(reading ? reading->value : NAN, op, date());
        if (member != "stringValue") throw NoCondition{};
        const std::string right = quoted();
        if (!reading) return numbers(NAN, op, 0);
        const std::string& left = reading->stringValue;
        const std::size_t common = left.size() < right.size() ? left.size() : right.size();
        int order = std::memcmp(left.data(), right.data(), common);
        if (order == 0) order = left.size() < right.size() ? -1 : left.size() > right.size() ? 1 : 0;
        return numbers(order, op, 0);
    }

    static bool numbers(double left, const std::string& op, double right) {
        if (op == "==") return left == right;
        if (op == "!=") return left != right;
        if (op == "<") return left < right;
        if (op == "<=") return left <= right;
        if (op == ">") return left > right;
        if (op == ">=") return left >= right;
        throw NoCondition{};
    }

    double number() {
        skip();
        std::string spelled;
        if (!m_text.empty() && (m_text[0] == '+' || m_text[0] == '-')) shift(spelled);
        digits(spelled);
        if (m_text.substr(0, 1) == ".") {
            shift(spelled);
            digits(spelled);
        }
        if (m_text.substr(0, 1) == "e" || m_text.substr(0, 1) == "E") {
            shift(spelled);
            if (!m_text.empty() && (m_text[0] == '+' || m_text[0] == '-')) shift(spelled);
            digits(spelled);
        }
        if (!m_text.empty() && (wordCharacter(m_text[0]) || m_text[0] == '.')) throw NoCondition{};
        const double read = std::strtod(spelled.c_str(), nullptr);
        if (std::isinf(read)) throw NoCondition{};
        return read;
    }

    double date() {
        if (!word("CAST") || !mark("(")) throw NoCondition{};
        const double seconds = number();
        if (!mark(",") || !mark("\"NSDate\"") || !mark(")")) throw NoCondition{};
        return seconds;
    }

    std::string quoted() {
        if (!mark("\"")) throw NoCondition{};
        std::string held;
        for (;;) {
            if (m_text.empty()) throw NoCondition{};
            if (mark1('"')) return held;
            if (!mark1('\\')) {
                shift(held);
                continue;
            }
            if (m_text.empty()) throw NoCondition{};
            const char escaped = m_text[0];
            m_text.remove_prefix(1);
            const char* const known = "\\\"'nrt";
            const char* const at = escaped == '\0' ? nullptr : std::strchr(known, escaped);
            if (!at) throw NoCondition{};
            held += "\\\"'\n\r\t"[at - known];
        }
    }

    void digits(std::string& to) {
        if (m_text.empty() || !std::isdigit(static_cast<unsigned char>(m_text[0]))) throw NoCondition{};
        while (!m_text.empty() && std::isdigit(static_cast<unsigned char>(m_text[0])))
            shift(to);
    }

    std::string letters() {
        std::string read;
        while (!m_text.empty() && wordCharacter(m_text[0]))
            shift(read);
        return read;
    }

    // A word that ends where it ends.
    bool word(std::string_view wanted) {
        skip();
        if (!m_text.starts_with(wanted)) return false;
        const std::string_view rest = m_text.substr(wanted.size());
        if (!rest.empty() && (wordCharacter(rest[0]) || rest[0] == '.')) return false;
        m_text = rest;
        return true;
    }

    bool mark(std::string_view wanted) {
        skip();
        if (!m_text.starts_with(wanted)) return false;
        m_text.remove_prefix(wanted.size());
        return true;
    }

    bool mark1(char wanted) {
        if (m_text.empty() || m_text[0] != wanted) return false;
        m_text.remove_prefix(1);
        return true;
    }

    void skip() {
        while (!m_text.empty() && (m_text[0] == ' ' || m_text[0] == '\t'))
            m_text.remove_prefix(1);
    }

    void shift(std::string& to) {
        to += m_text[0];
        m_text.remove_prefix(1);
    }

    static bool wordCharacter(char c) {
        return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';  // in the locale "C"
    }

    std::string_view m_text;
    const NaiveReadings& m_readings;
};

}  // namespace

std::optional<bool> naiveVerdict(std::string_view text, const NaiveReadings& readings) {
    try {
        return Reader(text, readings).whole();
    } catch (const NoCondition&) {
        return std::nullopt;
    }
}

}  // namespace vigil::test
