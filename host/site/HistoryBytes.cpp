#include "host/site/HistoryBytes.hpp"

#include <array>
#include <bit>
#include <cmath>

namespace vigil {
namespace {

constexpr int kBitsAByte = 7;
constexpr int kMostCountBytes = 10;
constexpr unsigned kDigitsBits = 3;
constexpr std::uint64_t kRawNumber = 7;
constexpr double kLargestWhole = 9007199254740992.0;  // 2^53: beyond it whole numbers have gaps
constexpr std::array<double, DecimalForm::kMostDigits + 1> kPowers{1, 10, 100, 1000, 10000};
// Three bits are taken for the digits, so the number itself must leave them free.
constexpr std::int64_t kLargestTagged = std::int64_t{1} << 59;

std::uint64_t folded(std::int64_t value) {
    return static_cast<std::uint64_t>(value) << 1 ^ static_cast<std::uint64_t>(value >> 63);
}

std::int64_t unfolded(std::uint64_t value) {
    return static_cast<std::int64_t>(value >> 1 ^ (0 - (value & 1)));
}

}  // namespace

bool sameBits(double a, double b) {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

std::optional<DecimalForm> DecimalForm::of(double number) {
    for (int digits = 0; digits <= kMostDigits; ++digits) {
        const double scaled = std::nearbyint(number * kPowers[static_cast<std::size_t>(digits)]);
        if (!(std::abs(scaled) < kLargestWhole)) return std::nullopt;
        const DecimalForm form{static_cast<std::int64_t>(scaled), digits};
        if (sameBits(form.number(), number)) return form;
    }
    return std::nullopt;
}

// Both are exact, so the division rounds once, as reading the decimal text does.
double DecimalForm::number() const {
    return static_cast<double>(whole) / kPowers[static_cast<std::size_t>(digits)];
}

void PackedWriter::count(std::uint64_t value) {
    constexpr std::uint64_t kMore = 0x80;
    while (value >= kMore) {
        byte(static_cast<std::uint8_t>(value | kMore));
        value >>= kBitsAByte;
    }
    byte(static_cast<std::uint8_t>(value));
}

void PackedWriter::integer(std::int64_t value) {
    count(folded(value));
}

void PackedWriter::bits(double value) {
    auto rest = std::bit_cast<std::uint64_t>(value);
    for (std::size_t i = 0; i < sizeof rest; ++i, rest >>= 8)
        byte(static_cast<std::uint8_t>(rest));
}

void PackedWriter::bytes(std::string_view value) {
    count(value.size());
    m_to += value;
}

void PackedWriter::number(double value) {
    const auto form = DecimalForm::of(value);
    if (form && std::abs(form->whole) < kLargestTagged) {
        count(folded(form->whole) << kDigitsBits | static_cast<std::uint64_t>(form->digits));
    } else {
        count(kRawNumber);
        bits(value);
    }
}

void PackedReader::fail() {
    m_failed = true;
    m_at = m_from.size();
}

std::uint8_t PackedReader::byte() {
    if (m_at == m_from.size()) return fail(), std::uint8_t{0};
    return static_cast<std::uint8_t>(m_from[m_at++]);
}

std::uint64_t PackedReader::count() {
    std::uint64_t value = 0;
    for (int i = 0; i < kMostCountBytes; ++i) {
        const std::uint64_t next = byte();
        value |= (next & 0x7F) << i * kBitsAByte;
        if ((next & 0x80) == 0) return m_failed ? 0 : value;
    }
    return fail(), 0;
}

std::int64_t PackedReader::integer() {
    return unfolded(count());
}

double PackedReader::bits() {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < sizeof value; ++i)
        value |= std::uint64_t{byte()} << 8 * i;
    return std::bit_cast<double>(m_failed ? 0 : value);
}

std::string_view PackedReader::bytes() {
    const std::uint64_t size = count();
    if (size > left()) return fail(), std::string_view();
    m_at += static_cast<std::size_t>(size);
    return m_from.substr(m_at - static_cast<std::size_t>(size), static_cast<std::size_t>(size));
}

double PackedReader::number() {
    const std::uint64_t tagged = count();
    const auto digits = static_cast<int>(tagged & ((1U << kDigitsBits) - 1));
    if (digits == static_cast<int>(kRawNumber)) return bits();
    if (digits > DecimalForm::kMostDigits) return fail(), 0;
    return DecimalForm{unfolded(tagged >> kDigitsBits), digits}.number();
}

}  // namespace vigil
