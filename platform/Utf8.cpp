#include "platform/Files.hpp"

namespace vigil {

Files::~Files() = default;

bool isValidUtf8(std::string_view bytes) {
    std::size_t i = 0;
    while (i < bytes.size()) {
        const auto lead = static_cast<unsigned char>(bytes[i++]);
        if (lead < 0x80) continue;
        int more = 0;
        unsigned least = 0;
        unsigned point = 0;
        if (lead >= 0xC2 && lead <= 0xDF)
            more = 1, least = 0x80, point = lead & 0x1Fu;
        else if (lead >= 0xE0 && lead <= 0xEF)
            more = 2, least = 0x800, point = lead & 0x0Fu;
        else if (lead >= 0xF0 && lead <= 0xF4)
            more = 3, least = 0x10000, point = lead & 0x07u;
        else
            return false;
        for (; more > 0; --more) {
            if (i == bytes.size()) return false;
            const auto next = static_cast<unsigned char>(bytes[i++]);
            if ((next & 0xC0u) != 0x80u) return false;
            point = point << 6 | (next & 0x3Fu);
        }
        if (point < least || point > 0x10FFFF || (point >= 0xD800 && point <= 0xDFFF)) return false;
    }
    return true;
}

}  // namespace vigil
