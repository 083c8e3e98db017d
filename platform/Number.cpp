#include "platform/Number.hpp"

#include <charconv>
#include <cmath>
#include <limits>

namespace vigil {

double Number::doubleValue() const {
    if (const auto* integer = std::get_if<std::int64_t>(&m_held)) return static_cast<double>(*integer);
    return *std::get_if<double>(&m_held);
}

float Number::floatValue() const {
    const double value = doubleValue();
    // The language leaves a conversion out of range undefined. The last double that still rounds to the
    // largest float lies half a step above it.
    constexpr double kEdge = 0x1.ffffffp127;
    if (value >= kEdge) return std::numeric_limits<float>::infinity();
    if (value <= -kEdge) return -std::numeric_limits<float>::infinity();
    return static_cast<float>(value);
}

std::int64_t Number::integerValue() const {
    if (const auto* integer = std::get_if<std::int64_t>(&m_held)) return *integer;
    const double value = *std::get_if<double>(&m_held);
    if (std::isnan(value)) return 0;
    if (value >= 0x1p63) return std::numeric_limits<std::int64_t>::max();
    if (value < -0x1p63) return std::numeric_limits<std::int64_t>::min();
    return static_cast<std::int64_t>(value);
}

void appendNumber(std::string& to, double value) {
    if (std::isnan(value)) {
        to += "NaN";
        return;
    }
    if (std::isinf(value)) {
        to += value > 0 ? "Infinity" : "-Infinity";
        return;
    }
    const double size = std::abs(value);
    const bool plain = size == 0 || (size >= 1e-5 && size < 1e17);
    char text[64];
    const auto end = std::to_chars(text, text + sizeof text, value,
                                   plain ? std::chars_format::fixed : std::chars_format::scientific);
    to.append(text, end.ptr);
}

std::string numberText(double value) {
    std::string text;
    appendNumber(text, value);
    return text;
}

}  // namespace vigil
