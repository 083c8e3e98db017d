#pragma once

#include <compare>
#include <string>
#include <string_view>

#include "platform/Export.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// An instant with sub-second precision: seconds since 2001-01-01 00:00:00 UTC, as a double. Not finite is
/// allowed (a wait of infinite length ends at one) and prints.
class VIGIL_KIT Date {
  public:
    /// Seconds from 1970-01-01 00:00:00 UTC, where Unix time starts, to this type's origin.
    static constexpr double kUnixOffset = 978307200.0;

    constexpr Date() = default;
    constexpr explicit Date(double secondsSinceReference) : m_seconds(secondsSinceReference) {}

    /// 0001-01-01 00:00:00 UTC (Gregorian calendar carried backwards). An ordinary date, earlier than any
    /// reading.
    static constexpr Date distantPast() { return Date(-63113904000.0); }
    static constexpr Date fromUnix(double seconds) { return Date(seconds - kUnixOffset); }

    constexpr double secondsSinceReference() const { return m_seconds; }
    constexpr double secondsSinceUnix() const { return m_seconds + kUnixOffset; }
    /// This date minus `other`, in seconds.
    constexpr double secondsSince(Date other) const { return m_seconds - other.m_seconds; }
    constexpr Date plus(double seconds) const { return Date(m_seconds + seconds); }

    /// "2026-11-21 10:34:18 +0000": UTC, the fraction dropped. A date that no calendar year of at most nine
    /// digits holds prints as its seconds ("inf seconds since 2001-01-01 00:00:00 +0000").
    std::string description() const;
    void appendDescription(std::string& to) const;

    /// "2026-11-21T10:34:18Z", with a fraction of `fractionDigits` (0 to 6) digits.
    std::string isoText(int fractionDigits = 0) const;

    friend constexpr auto operator<=>(Date, Date) = default;

  private:
    double m_seconds = 0;
};

/// Reads "2026-11-21T10:34:18.5+01:00": date, then optionally `T` or blanks and a time of day (seconds and
/// fraction optional), then optionally `Z` or an offset (`+01:00`, `+0100`, `+01`, a blank before it
/// allowed). Without an offset the time is UTC; a date alone is its midnight. Months, days and times may
/// lack leading zeros. Anything else, a day that its month does not have included, is an error that says
/// what was expected.
VIGIL_KIT Result<Date> parseDate(std::string_view text);

}  // namespace vigil
