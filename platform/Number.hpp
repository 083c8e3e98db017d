#pragma once

#include <cstdint>
#include <string>
#include <variant>

#include "platform/Export.hpp"

namespace vigil {

/// A number that remembers whether it was an integer or a real, so that an archive gives back what went in.
class VIGIL_KIT Number {
  public:
    Number(int value) : m_held(static_cast<std::int64_t>(value)) {}
    Number(std::int64_t value) : m_held(value) {}
    Number(double value) : m_held(value) {}

    bool isInteger() const { return m_held.index() == 0; }
    double doubleValue() const;
    /// The value in single precision; what is too large for it becomes infinite.
    float floatValue() const;
    /// The value as an integer; a real is cut toward zero, one outside the range is the nearest end of it,
    /// NaN is 0.
    std::int64_t integerValue() const;

    /// Equal in kind and value (1 and 1.0 differ).
    friend bool operator==(const Number&, const Number&) = default;

  private:
    std::variant<std::int64_t, double> m_held;
};

/// The fewest digits that read back the same double: plain notation for 1e-5 <= |x| < 1e17 ("10", "0.1"),
/// else with an exponent ("1e+300"); "-0" for minus zero; "NaN", "Infinity" and "-Infinity" for the rest.
VIGIL_KIT void appendNumber(std::string& to, double value);
VIGIL_KIT std::string numberText(double value);

}  // namespace vigil
