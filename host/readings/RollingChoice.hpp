#pragma once

#include <string>
#include <string_view>

#include "platform/Result.hpp"

namespace vigil {

/// A reading that the host makes of the history of another one, because the user chose so. As text:
///
///     windSpeed mean 10         over the last 10 minutes; also `min` and `max`
///     windSpeed age             minutes since the reading last came
///     outsideTemp below -2.5    minutes for which it has been below without interruption; also `above`
///
/// Minutes of a window are 1 to 1440, whole. A threshold is in the unit that the user reads, as in a
/// condition; 0 or 0.00001 to 1,000,000,000 in size.
struct RollingChoice {
    enum class Kind { Mean, Min, Max, Age, Below, Above };

    std::string source{};  ///< key of the reading it is made of
    Kind kind = Kind::Mean;
    double number = 0;  ///< minutes of a window, or the threshold; 0 for an age

    static constexpr double kMostMinutes = 1440;
    static constexpr double kLeastThreshold = 1e-5;
    static constexpr double kMostThreshold = 1e9;

    /// Words apart by blanks; an error has the byte: "rolling reading, byte 10: …". "windSpeed
    /// minimum 10" fails, `min` is the word.
    static Result<RollingChoice> parse(std::string_view text);

    /// The text that parses to this choice.
    std::string text() const;
    /// The key under which it is offered, one of the condition language: `windSpeedMean10`, `windSpeedAge`,
    /// `outsideTempMinutesBelowMinus2_5`.
    std::string key() const;
    /// For people, after the source's name: "mean of 10 min", "age", "minutes below -2.5".
    std::string words() const;

    friend bool operator==(const RollingChoice&, const RollingChoice&) = default;
};

}  // namespace vigil
