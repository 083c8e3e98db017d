#include "host/command/Printable.hpp"

#include <fmt/format.h>

namespace vigil {

std::string printable(std::string_view text, bool lines) {
    std::string shown;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= 0x20 && byte != 0x7F)
            shown += c;
        else if (c == '\n')
            shown += lines ? "\n" : "\\n";
        else
            shown += fmt::format("\\x{:02x}", byte);
    }
    return shown;
}

}  // namespace vigil
