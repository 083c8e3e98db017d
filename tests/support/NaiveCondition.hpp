#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace vigil::test {

struct NaiveReading {
    double value = 0;
    double unitValue = 0;
    std::string stringValue;
};
using NaiveReadings = std::map<std::string, NaiveReading>;

/// What a condition's text says of some readings, found out in the simplest way there is: judged while it is
/// read, character by character, nothing kept. Nothing when the text is no condition. Shares no code with
/// what it checks. Recurses with the parentheses and knows no limits; made for short texts.
std::optional<bool> naiveVerdict(std::string_view text, const NaiveReadings& readings);

}  // namespace vigil::test
