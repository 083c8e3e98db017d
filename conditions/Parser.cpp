#include "conditions/Parser.hpp"

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "conditions/Lexer.hpp"
#include "conditions/Limits.hpp"

namespace vigil {
namespace {

SyntaxError tooDeep(std::size_t offset, std::size_t length) {
    return {offset, length, "one more",
            "at most " + std::to_string(kMaxParenthesisDepth) + " levels of parentheses",
            SyntaxProblem::TooDeep};
}

SyntaxError printsTooDeep(std::size_t offset, std::size_t length) {
    return {offset, length, "one with more",
            "a condition whose printed form has at most " + std::to_string(kMaxParenthesisDepth) +
                " levels of parentheses",
            SyntaxProblem::TooDeep};
}

// What stands between two parentheses, or in the whole text, as far as it has been read.
struct OpenGroup {
    std::size_t offset;
    std::vector<ConditionNode> orParts{};
    std::vector<ConditionNode> andParts{};
};

class Parser {
  public:
    explicit Parser(std::string_view text) : m_lexer(text), m_token(m_lexer.next()) {}

    Result<ConditionNode, SyntaxError> condition();

  private:
    // Each answers false once m_error is set.
    bool comparison();
    std::optional<ComparisonLiteral> literal(ComparisonMember member);
    std::optional<ComparisonLiteral> date();
    bool open();
    std::optional<ConditionNode> close(OpenGroup group);
    bool closeAndParts(OpenGroup& group);
    std::optional<ConditionNode> join(Connective connective, std::vector<ConditionNode> parts,
                                      std::size_t offset);

    bool at(TokenKind kind) const { return m_token.kind == kind; }
    void advance() { m_token = m_lexer.next(); }
    std::optional<Token> take(TokenKind kind, const char* expected);
    bool fail(const char* expected) {
        m_error = {m_token.offset, m_token.length, m_lexer.describe(m_token), expected};
        return false;
    }

    Lexer m_lexer;
    Token m_token;
    std::vector<OpenGroup> m_groups;
    SyntaxError m_error;
};

std::optional<Token> Parser::take(TokenKind kind, const char* expected) {
    if (!at(kind)) {
        fail(expected);
        return std::nullopt;
    }
    if (m_token.flaw) {
        m_error = *m_token.flaw;
        return std::nullopt;
    }
    Token taken = std::move(m_token);
    advance();
    return taken;
}

Result<ConditionNode, SyntaxError> Parser::condition() {
    m_groups.push_back({.offset = 0});
    for (;;) {
        while (at(TokenKind::Open))
            if (!open()) return m_error;
        if (!comparison()) return m_error;
        while (at(TokenKind::Close) && m_groups.size() > 1) {
            auto node = close(std::move(m_groups.back()));
            if (!node) return m_error;
            m_groups.pop_back();
            m_groups.back().andParts.push_back(std::move(*node));
            advance();
        }
        if (at(TokenKind::Or)) {
            if (!closeAndParts(m_groups.back())) return m_error;
        } else if (!at(TokenKind::And)) {
            break;
        }
        advance();
    }
    if (m_groups.size() > 1) {
        fail("\"AND\", \"OR\" or \")\"");
        return m_error;
    }
    if (!at(TokenKind::End)) {
        fail("\"AND\", \"OR\" or end of text");
        return m_error;
    }
    auto whole = close(std::move(m_groups.back()));
    if (!whole) return m_error;
    return std::move(*whole);
}

bool Parser::open() {
    if (m_groups.size() > kMaxParenthesisDepth) {
        m_error = tooDeep(m_token.offset, m_token.length);
        return false;
    }
    m_groups.push_back({.offset = m_token.offset});
    advance();
    return true;
}

bool Parser::comparison() {
    const auto path = take(TokenKind::KeyPath, "a comparison or \"(\"");
    if (!path) return false;
    const auto op = take(TokenKind::Operator, "a comparison operator");
    if (!op) return false;
    auto right = literal(path->member);
    if (!right) return false;
    m_groups.back().andParts.push_back(
        ConditionNode(Comparison{std::string(path->key), path->member, op->op, std::move(*right)}));
    return true;
}

std::optional<ComparisonLiteral> Parser::literal(ComparisonMember member) {
    if (member == ComparisonMember::Value) return date();
    if (member == ComparisonMember::StringValue) {
        auto text = take(TokenKind::Text, "a text in double quotes");
        if (!text) return std::nullopt;
        return std::move(text->text);
    }
    const auto number = take(TokenKind::Number, "a number");
    if (!number) return std::nullopt;
    return number->number;
}

std::optional<ComparisonLiteral> Parser::date() {
    if (!take(TokenKind::Cast, "a date such as CAST(725803200, \"NSDate\")")) return std::nullopt;
    if (!take(TokenKind::Open, "\"(\"")) return std::nullopt;
    const auto seconds = take(TokenKind::Number, "a number of seconds");
    if (!seconds) return std::nullopt;
    if (!take(TokenKind::Comma, "\",\"")) return std::nullopt;
    constexpr const char* kExpected = "\"NSDate\" in its double quotes";
    if (at(TokenKind::Text) && !m_token.flaw && m_token.text != "NSDate") {
        fail(kExpected);
        return std::nullopt;
    }
    if (!take(TokenKind::Text, kExpected)) return std::nullopt;
    if (!take(TokenKind::Close, "\")\"")) return std::nullopt;
    return Date(seconds->number);
}

bool Parser::closeAndParts(OpenGroup& group) {
    auto joined = join(Connective::And, std::move(group.andParts), group.offset);
    group.andParts.clear();
    if (joined) group.orParts.push_back(std::move(*joined));
    return joined.has_value();
}

std::optional<ConditionNode> Parser::close(OpenGroup group) {
    if (!closeAndParts(group)) return std::nullopt;
    return join(Connective::Or, std::move(group.orParts), group.offset);
}

// A group without parentheses of its own (AND inside OR) is printed with them, so the tree has to stay within
// the limit even where the text does.
std::optional<ConditionNode> Parser::join(Connective connective, std::vector<ConditionNode> parts,
                                          std::size_t offset) {
    if (parts.size() > 1)
        for (const ConditionNode& part : parts)
            if (part.depth() > kMaxParenthesisDepth) {
                m_error = printsTooDeep(offset, m_token.offset - offset);
                return std::nullopt;
            }
    return ConditionNode::compound(connective, std::move(parts));
}

}  // namespace

Result<ConditionNode, SyntaxError> parseCondition(std::string_view text) {
    if (text.size() > kMaxTextBytes)
        return SyntaxError{kMaxTextBytes, text.size() - kMaxTextBytes, std::to_string(text.size()) + " bytes",
                           "at most " + std::to_string(kMaxTextBytes) + " bytes of text",
                           SyntaxProblem::TooLong};
    return Parser(text).condition();
}

}  // namespace vigil
