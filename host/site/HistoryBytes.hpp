#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vigil {

/// A double as a whole number of at most 53 bits over a power of ten, where that gives exactly the same bits;
/// what people and sensors write ("8.5", "1013.2") is of this kind. Not -0, not what is not finite.
struct DecimalForm {
    static constexpr int kMostDigits = 4;  ///< behind the point

    std::int64_t whole = 0;
    int digits = 0;

    static std::optional<DecimalForm> of(double number);
    double number() const;
};

/// Writes the parts of a packed row, little end first.
class PackedWriter {
  public:
    explicit PackedWriter(std::string& to) : m_to(to) {}

    void byte(std::uint8_t value) { m_to += static_cast<char>(value); }
    /// Seven bits a byte, the lowest first.
    void count(std::uint64_t value);
    /// A small negative number is as short as a small positive one.
    void integer(std::int64_t value);
    void bits(double value);
    void bytes(std::string_view value);  ///< the length, then the bytes
    /// A decimal form with its digits in the lowest three bits, or 7 and the bits.
    void number(double value);

  private:
    std::string& m_to;
};

/// Reads them back. Past the end, or where a count is too long, everything reads as 0 and `failed` is true
/// from then on.
class PackedReader {
  public:
    explicit PackedReader(std::string_view from) : m_from(from) {}

    std::uint8_t byte();
    std::uint64_t count();
    std::int64_t integer();
    double bits();
    std::string_view bytes();
    double number();

    bool failed() const { return m_failed; }
    bool atEnd() const { return m_at == m_from.size(); }
    std::size_t left() const { return m_from.size() - m_at; }

  private:
    void fail();

    std::string_view m_from;
    std::size_t m_at = 0;
    bool m_failed = false;
};

/// Whether two doubles are the same to the bit: -0 is not 0, a NaN is itself.
bool sameBits(double a, double b);

}  // namespace vigil
