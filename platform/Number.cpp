#include "platform/Number.hpp"

#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>

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

namespace {

/// `text` is a whole number in scientific notation, "-4.5e+16": the same digits, and zeros up to the point.
void appendUnrolled(std::string& to, std::string_view text) {
    const std::size_t e = text.find('e');
    int places = 0;
    std::from_chars(text.data() + e + 2, text.data() + text.size(), places);
    int digits = -1;  // before the point stands one
    for (const char c : text.substr(0, e)) {
        if (c == '.') continue;
        to += c;
        if (c != '-') ++digits;
    }
    to.append(static_cast<std::size_t>(places - digits), '0');
}

}  // namespace

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
    // From here on not every integer is a double, and plain notation would show more digits than it takes.
    constexpr double kAllIntegers = 0x1p53;
    const bool unrolls = size >= kAllIntegers && size < 1e17;
    const bool plain = size == 0 || (size >= 1e-5 && size < kAllIntegers);
    char text[64];
    const auto end = std::to_chars(text, text + sizeof text, value,
                                   plain ? std::chars_format::fixed : std::chars_format::scientific);
    const std::string_view written(text, static_cast<std::size_t>(end.ptr - text));
    if (unrolls)
        appendUnrolled(to, written);
    else
        to += written;
}

std::string numberText(double value) {
    std::string text;
    appendNumber(text, value);
    return text;
}

}  // namespace vigil
