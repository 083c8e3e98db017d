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

// Recorded numbers have few decimals. A decimal of at most 15 digits that reads back as the number is the
// shortest one: no two of them read as the same double. Answers false for numbers that are no such decimal.
bool appendDecimal(std::string& to, double value) {
    constexpr int kDecimals = 4;
    constexpr std::int64_t kScale = 10000;
    constexpr double kMostScaled = 1e15;
    const double size = std::abs(value);
    const double scaled = size * static_cast<double>(kScale);
    if (!(scaled < kMostScaled)) return false;
    const auto nearest = static_cast<std::int64_t>(scaled + 0.5);
    // Zero is left to the other way, which knows its sign.
    if (nearest == 0 || static_cast<double>(nearest) / static_cast<double>(kScale) != size) return false;

    char text[32];
    char* at = text;
    if (value < 0) *at++ = '-';
    at = std::to_chars(at, text + sizeof text, nearest / kScale).ptr;
    if (auto rest = nearest % kScale) {
        *at++ = '.';
        for (int i = kDecimals; i-- > 0; rest /= 10)
            at[i] = static_cast<char>('0' + rest % 10);
        at += kDecimals;
        while (at[-1] == '0')
            --at;
    }
    to.append(text, at);
    return true;
}

}  // namespace

void appendNumber(std::string& to, double value) {
    if (appendDecimal(to, value)) return;
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
