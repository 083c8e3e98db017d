#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vigil {

/// A four-character code, the first character in the highest byte.
enum class FourCharCode : std::uint32_t {};

constexpr FourCharCode fourCharCode(std::string_view text) {
    std::uint32_t code = 0;
    for (std::size_t i = 0; i < 4; ++i)
        code = code << 8 | static_cast<unsigned char>(i < text.size() ? text[i] : ' ');
    return FourCharCode{code};
}

inline std::string fourCharText(FourCharCode code) {
    const auto bits = static_cast<std::uint32_t>(code);
    return {static_cast<char>(bits >> 24 & 0xFF), static_cast<char>(bits >> 16 & 0xFF),
            static_cast<char>(bits >> 8 & 0xFF), static_cast<char>(bits & 0xFF)};
}

inline constexpr FourCharCode kTextType = fourCharCode("KZSt");
inline constexpr FourCharCode kDateType = fourCharCode("KZDa");
/// Any other code is numeric; this is the one that the host gives.
inline constexpr FourCharCode kNumericType = fourCharCode("KZNu");

}  // namespace vigil
