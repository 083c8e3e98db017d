#include <algorithm>
#include <charconv>
#include <system_error>

#include "conditions/Characters.hpp"
#include "conditions/Lexer.hpp"

namespace vigil {
namespace {

// Whether a number written in digits is above 1 in size. Only asked of numbers that no double holds, so the
// one answer means "too large" and the other "too small".
bool isLarge(std::string_view digits, std::string_view exponent) {
    constexpr long kFar = 1'000'000'000;  // beyond any exponent that the longest text can make up for
    long power = 0;
    bool negative = false;
    for (const char c : exponent) {
        if (c == '-') negative = true;
        if (isDigit(c) && power < kFar) power = power * 10 + (c - '0');
    }
    const std::size_t point = std::min(digits.find('.'), digits.size());
    const std::size_t lead = digits.find_first_not_of("0.");
    const long places = static_cast<long>(point) - static_cast<long>(lead);
    return (negative ? -power : power) + places > 0;
}

}  // namespace

Token Lexer::number() {
    const std::size_t start = m_position;
    const auto flawed = [&](SyntaxProblem problem, const char* expected) {
        Token token = finish(TokenKind::Number, start);
        token.flaw = flawHere(problem, expected);
        return token;
    };
    const bool negative = at(m_position) == '-';
    if (negative || at(m_position) == '+') ++m_position;
    const std::size_t digitsStart = m_position;
    if (!digitHere()) return flawed(SyntaxProblem::BadNumber, "a digit");
    while (digitHere())
        ++m_position;
    if (at(m_position) == '.') {
        ++m_position;
        if (!digitHere()) return flawed(SyntaxProblem::BadNumber, "a digit");
        while (digitHere())
            ++m_position;
    }
    const std::size_t exponentStart = m_position;
    if (at(m_position) == 'e' || at(m_position) == 'E') {
        ++m_position;
        if (at(m_position) == '+' || at(m_position) == '-') ++m_position;
        if (!digitHere()) return flawed(SyntaxProblem::BadNumber, "a digit");
        while (digitHere())
            ++m_position;
    }
    if (isWordCharacter(at(m_position)) || at(m_position) == '.')
        return flawed(SyntaxProblem::BadNumber, "the end of the number");

    Token token = finish(TokenKind::Number, start);
    const std::string_view digits = m_text.substr(digitsStart, exponentStart - digitsStart);
    if (digits.find_first_not_of("0.") != std::string_view::npos) {
        const auto read =
            std::from_chars(m_text.data() + digitsStart, m_text.data() + m_position, token.number);
        if (read.ec == std::errc::result_out_of_range) {
            const std::string_view exponent = m_text.substr(exponentStart, m_position - exponentStart);
            token.number = 0;
            if (isLarge(digits, exponent))
                token.flaw = SyntaxError{start, token.length, describe(token),
                                         "a number of at most 1.7976931348623157e+308 in size",
                                         SyntaxProblem::NumberTooLarge};
        }
    }
    if (negative) token.number = -token.number;
    return token;
}

Token Lexer::text() {
    const std::size_t start = m_position++;
    std::string held;
    while (m_position < m_text.size() && m_text[m_position] != '"') {
        char c = m_text[m_position];
        if (c == '\\') {
            switch (at(m_position + 1)) {
                case '\\':
                    c = '\\';
                    break;
                case '"':
                    c = '"';
                    break;
                case '\'':
                    c = '\'';
                    break;
                case 'n':
                    c = '\n';
                    break;
                case 'r':
                    c = '\r';
                    break;
                case 't':
                    c = '\t';
                    break;
                default: {
                    Token token = finish(TokenKind::Text, start);
                    ++m_position;
                    token.flaw =
                        flawHere(SyntaxProblem::BadEscape, "\\, \", ', n, r or t behind the backslash");
                    return token;
                }
            }
            ++m_position;
        }
        held += c;
        ++m_position;
    }
    if (m_position == m_text.size()) {
        Token token = finish(TokenKind::Text, start);
        token.flaw = flawHere(SyntaxProblem::UnterminatedText, "a closing \"");
        return token;
    }
    ++m_position;
    Token token = finish(TokenKind::Text, start);
    token.text = std::move(held);
    return token;
}

}  // namespace vigil
