#include "conditions/Lexer.hpp"

#include "conditions/Characters.hpp"

namespace vigil {
namespace {

// Longer words are cut in messages.
constexpr std::size_t kMaxShownBytes = 40;

std::optional<TokenKind> keyword(std::string_view word) {
    if (word == "AND") return TokenKind::And;
    if (word == "OR") return TokenKind::Or;
    if (word == "CAST") return TokenKind::Cast;
    return std::nullopt;
}

std::optional<ComparisonMember> memberNamed(std::string_view word) {
    using enum ComparisonMember;
    for (const ComparisonMember member : {UnitValue, StringValue, Value})
        if (word == memberText(member)) return member;
    return std::nullopt;
}

}  // namespace

Token Lexer::next() {
    while (at(m_position) == ' ' || at(m_position) == '\t')
        ++m_position;
    if (m_position == m_text.size()) return finish(TokenKind::End, m_position);
    const char c = m_text[m_position];
    if (isLetter(c)) return word();
    if (isDigit(c) || c == '+' || c == '-') return number();
    if (c == '"') return text();
    return symbol();
}

Token Lexer::finish(TokenKind kind, std::size_t start) {
    return {.kind = kind, .offset = start, .length = m_position - start};
}

bool Lexer::digitHere() const {
    return isDigit(at(m_position));
}

SyntaxError Lexer::flawHere(SyntaxProblem problem, std::string expected) const {
    if (m_position == m_text.size()) return {m_position, 0, "end of text", std::move(expected), problem};
    const std::string_view rest = m_text.substr(m_position);
    return {m_position, characterLength(rest), describeCharacter(rest), std::move(expected), problem};
}

Token Lexer::word() {
    const std::size_t start = m_position;
    while (isWordCharacter(at(m_position)))
        ++m_position;
    const std::string_view first = m_text.substr(start, m_position - start);
    const auto reserved = keyword(first);
    if (at(m_position) != '.') {
        if (reserved) return finish(*reserved, start);
        Token token = finish(TokenKind::KeyPath, start);
        token.flaw = SyntaxError{start, token.length, describe(token),
                                 "a key with .unitValue, .stringValue or .value", SyntaxProblem::NoMember};
        return token;
    }
    const std::size_t memberStart = ++m_position;
    while (isWordCharacter(at(m_position)))
        ++m_position;
    Token token = finish(TokenKind::KeyPath, start);
    token.key = first;
    const std::string_view second = m_text.substr(memberStart, m_position - memberStart);
    if (reserved) {
        token.flaw = SyntaxError{start, first.size(), '"' + std::string(first) + '"',
                                 "a key other than AND, OR and CAST", SyntaxProblem::ReservedKey};
    } else if (second.empty()) {
        token.flaw = flawHere(SyntaxProblem::NoMember, "unitValue, stringValue or value");
    } else if (const auto member = memberNamed(second)) {
        token.member = *member;
    } else {
        const Token shown{.kind = TokenKind::KeyPath, .offset = memberStart, .length = second.size()};
        token.flaw = SyntaxError{memberStart, second.size(), describe(shown),
                                 "unitValue, stringValue or value", SyntaxProblem::NoMember};
    }
    return token;
}

Token Lexer::symbol() {
    const std::size_t start = m_position;
    const char c = m_text[m_position];
    const bool equals = at(m_position + 1) == '=';
    const auto op = [&](ComparisonOperator which, std::size_t length) {
        m_position += length;
        Token token = finish(TokenKind::Operator, start);
        token.op = which;
        return token;
    };
    if (c == '=' && equals) return op(ComparisonOperator::Equal, 2);
    if (c == '!' && equals) return op(ComparisonOperator::NotEqual, 2);
    if (c == '<') return equals ? op(ComparisonOperator::LessOrEqual, 2) : op(ComparisonOperator::Less, 1);
    if (c == '>')
        return equals ? op(ComparisonOperator::GreaterOrEqual, 2) : op(ComparisonOperator::Greater, 1);
    const TokenKind kind = c == '('   ? TokenKind::Open
                           : c == ')' ? TokenKind::Close
                           : c == ',' ? TokenKind::Comma
                                      : TokenKind::Other;
    m_position += kind == TokenKind::Other ? characterLength(m_text.substr(start)) : 1;
    return finish(kind, start);
}

std::string Lexer::describe(const Token& token) const {
    const std::string_view shown = m_text.substr(token.offset, token.length);
    const std::string cut =
        shown.size() <= kMaxShownBytes ? std::string(shown) : std::string(shown, 0, kMaxShownBytes) + "…";
    switch (token.kind) {
        case TokenKind::End:
            return "end of text";
        case TokenKind::Number:
            return "the number " + cut;
        case TokenKind::Text:
            return "a text";  // it may hold anything, a message must not
        case TokenKind::Other:
            return describeCharacter(shown);
        default:
            return '"' + cut + '"';
    }
}

}  // namespace vigil
