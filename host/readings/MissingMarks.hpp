#pragma once

#include <string_view>

namespace vigil {

// How senders say that a sensor has no value. Any thread.

/// Empty or blank; "MM", "NA", "N/A", "NaN", "null", "None", "-" or "--" in any case of letters, blanks
/// around it apart.
bool isMissingWord(std::string_view text);

/// -9999, -9999.9 and what is not a number: no sensor sends them as values.
bool isMissingNumber(double value);

/// 999, 9999 and 99999, which are a pressure, a count or a brightness as well: they mean "no value" only
/// where the quantity cannot have them.
bool isMissingWhereImplausible(double value);

}  // namespace vigil
