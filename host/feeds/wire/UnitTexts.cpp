#include "host/feeds/wire/UnitTexts.hpp"

#include <algorithm>
#include <array>
#include <utility>

namespace vigil {
namespace {

using Entry = std::pair<std::string_view, Unit>;

/// In the order of their texts, for the search by halves.
constexpr auto kTexts = [] {
    std::array texts{
        Entry{"%", Unit::Percent},
        Entry{"°", Unit::Degree},
        Entry{"deg", Unit::Degree},
        Entry{"°C", Unit::Celsius},
        Entry{"C", Unit::Celsius},
        Entry{"degC", Unit::Celsius},
        Entry{"°F", Unit::Fahrenheit},
        Entry{"F", Unit::Fahrenheit},
        Entry{"degF", Unit::Fahrenheit},
        Entry{"K", Unit::Kelvin},
        Entry{"m/s", Unit::MetresPerSecond},
        Entry{"km/h", Unit::KilometresPerHour},
        Entry{"kph", Unit::KilometresPerHour},
        Entry{"mph", Unit::MilesPerHour},
        Entry{"mi/h", Unit::MilesPerHour},
        Entry{"kn", Unit::Knots},
        Entry{"kt", Unit::Knots},
        Entry{"knots", Unit::Knots},
        Entry{"hPa", Unit::Hectopascal},
        Entry{"mbar", Unit::Hectopascal},
        Entry{"kPa", Unit::Kilopascal},
        Entry{"inHg", Unit::InchOfMercury},
        Entry{"psi", Unit::PoundPerSquareInch},
        Entry{"mm", Unit::Millimetre},
        Entry{"cm", Unit::Centimetre},
        Entry{"in", Unit::Inch},
        Entry{"mm/h", Unit::MillimetrePerHour},
        Entry{"cm/h", Unit::CentimetrePerHour},
        Entry{"in/h", Unit::InchPerHour},
        Entry{"m", Unit::Metre},
        Entry{"ft", Unit::Foot},
        Entry{"km", Unit::Kilometre},
        Entry{"mi", Unit::Mile},
        Entry{"W/m²", Unit::WattPerSquareMetre},
        Entry{"W/m2", Unit::WattPerSquareMetre},
        Entry{"lx", Unit::Lux},
        Entry{"lux", Unit::Lux},
        Entry{"klx", Unit::Kilolux},
        Entry{"µg/m³", Unit::MicrogramPerCubicMetre},
        Entry{"\xCE\xBCg/m³", Unit::MicrogramPerCubicMetre},  // the Greek letter instead of the sign
        Entry{"ug/m3", Unit::MicrogramPerCubicMetre},
        Entry{"ppm", Unit::PartsPerMillion},
        Entry{"V", Unit::Volt},
        Entry{"mV", Unit::Millivolt},
        Entry{"s", Unit::Second},
        Entry{"min", Unit::Minute},
        Entry{"hPa/3 h", Unit::HectopascalPerThreeHours},
        Entry{"inHg/3 h", Unit::InchOfMercuryPerThreeHours},
    };
    std::sort(texts.begin(), texts.end(), [](const Entry& a, const Entry& b) { return a.first < b.first; });
    return texts;
}();

}  // namespace

Unit unitOfText(std::string_view text) {
    const auto* found =
        std::lower_bound(kTexts.begin(), kTexts.end(), text,
                         [](const Entry& entry, std::string_view t) { return entry.first < t; });
    return found != kTexts.end() && found->first == text ? found->second : Unit::None;
}

}  // namespace vigil
