#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "conditions/ConditionNode.hpp"
#include "conditions/SyntaxError.hpp"

namespace vigil {

enum class TokenKind {
    End,
    KeyPath,  ///< any word that is not a keyword, with what is joined to it by a dot
    And,
    Or,
    Cast,
    Operator,
    Number,
    Text,
    Open,
    Close,
    Comma,
    Other,  ///< a character with which no token begins
};

/// A piece of a condition's text. Its kind is that of its beginning; one that breaks its own rules further on
/// has a `flaw`, to be reported where such a token could have stood.
struct Token {
    TokenKind kind = TokenKind::End;
    std::size_t offset = 0;
    std::size_t length = 0;
    std::string_view key{};                                 ///< of a key path
    ComparisonMember member = ComparisonMember::UnitValue;  ///< of a key path
    ComparisonOperator op = ComparisonOperator::Equal;      ///< of an operator
    double number = 0;                                      ///< of a number
    std::string text{};                                     ///< of a text, without quotes and escapes
    std::optional<SyntaxError> flaw{};
};

/// Cuts a text into tokens. Blanks and tabs lie between them; other white space is no part of the language.
class Lexer {
  public:
    /// The text must outlive the lexer and its tokens.
    explicit Lexer(std::string_view text) : m_text(text) {}

    /// The next token; `End` for ever once the text is used up. After a token with a flaw nothing sensible
    /// follows.
    Token next();

    /// What stands there in words for people: "end of text", "\"OR\"", "the number 10", "a text".
    std::string describe(const Token& token) const;

  private:
    Token word();
    Token number();
    Token text();
    Token symbol();
    Token finish(TokenKind kind, std::size_t start);
    /// What stands at the current position, as a mistake there.
    SyntaxError flawHere(SyntaxProblem problem, std::string expected) const;

    char at(std::size_t position) const { return position < m_text.size() ? m_text[position] : '\0'; }
    bool digitHere() const;

    std::string_view m_text;
    std::size_t m_position = 0;
};

}  // namespace vigil
