#pragma once

#include <cstddef>
#include <string>

#include "platform/Export.hpp"

namespace vigil {

/// Why a text is no condition: where, what stands there, and what could have stood there.
struct VIGIL_KIT SyntaxError {
    std::size_t offset = 0;  ///< in bytes from the start of the text
    std::size_t length = 0;  ///< of what was found, in bytes; 0 at the end of the text
    std::string found;       ///< "end of text", "\"OR\"", "the number 10", …
    std::string expected;    ///< "a comparison operator", …

    /// "expected a comparison operator but found end of text"
    std::string message() const;
};

}  // namespace vigil
