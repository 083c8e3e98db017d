#include "host/feeds/wire/WireTime.hpp"

#include "host/feeds/TimeForms.hpp"
#include "host/feeds/wire/WireReading.hpp"

namespace vigil {
namespace {

/// Whether "Z" or an offset stands behind the time of day.
bool namesZone(std::string_view text) {
    const auto colon = text.find(':');
    return colon != std::string_view::npos && text.find_first_of("Zz+-", colon) != std::string_view::npos;
}

}  // namespace

Result<std::optional<Date>> wireTime(std::string_view text, Date arrived, const WallClockZone& localTime) {
    if (text.starts_with('@')) return std::optional<Date>();
    if (const auto seconds = numberInText(text)) {
        const auto date = timeFromUnixSeconds(*seconds);
        if (!date) return date.error();
        return std::optional(date.value());
    }
    const auto date = parseDate(text);
    if (!date)
        return Error{quotedForPeople(text) + " is not a time; expected a form like 2026-11-21 10:34:18"};
    if (!localTime || namesZone(text)) return std::optional(date.value());
    return std::optional(localTime(date.value(), arrived));
}

}  // namespace vigil
