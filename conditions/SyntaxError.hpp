#pragma once

#include <cstddef>
#include <string>

#include "platform/Export.hpp"

namespace vigil {

/// What kind of mistake a text holds.
enum class SyntaxProblem {
    Unexpected,        ///< something else could have stood there
    NoMember,          ///< a key without the member behind it, or with an unknown one
    ReservedKey,       ///< AND, OR or CAST used as a key
    BadNumber,         ///< a number that breaks off or runs into something
    NumberTooLarge,    ///< larger than any finite number
    BadEscape,         ///< a backslash with something unknown behind it
    UnterminatedText,  ///< no closing quote
    TooDeep,           ///< more than kMaxParenthesisDepth levels of parentheses
    TooLong,           ///< more than kMaxTextBytes, as given or as printed
};

/// "unexpected", "no member", …
VIGIL_KIT const char* problemName(SyntaxProblem problem);

/// Why a text is no condition: where, what stands there, and what could have stood there.
struct VIGIL_KIT SyntaxError {
    std::size_t offset = 0;  ///< in bytes from the start of the text; never past its end
    std::size_t length = 0;  ///< of what was found, in bytes; 0 at the end of the text
    std::string found;       ///< "end of text", "\"OR\"", "the number 10", …
    std::string expected;    ///< "a comparison operator", …
    SyntaxProblem problem = SyntaxProblem::Unexpected;

    /// "expected a comparison operator but found end of text"
    std::string message() const;
};

}  // namespace vigil
