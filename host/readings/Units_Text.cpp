#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "host/readings/Units.hpp"

namespace vigil {
namespace {

using enum Unit;

/// As `plain` leaves them. "deg" stands for the sign of a degree.
constexpr std::pair<std::string_view, Unit> kSpellings[] = {
    {"degc", Celsius},
    {"c", Celsius},
    {"celsius", Celsius},
    {"degreec", Celsius},
    {"degf", Fahrenheit},
    {"f", Fahrenheit},
    {"fahrenheit", Fahrenheit},
    {"degreef", Fahrenheit},
    {"k", Kelvin},
    {"degk", Kelvin},
    {"kelvin", Kelvin},
    {"m/s", MetresPerSecond},
    {"mps", MetresPerSecond},
    {"ms", MetresPerSecond},
    {"meterpersecond", MetresPerSecond},
    {"km/h", KilometresPerHour},
    {"km/hr", KilometresPerHour},
    {"kmh", KilometresPerHour},
    {"kph", KilometresPerHour},
    {"kmph", KilometresPerHour},
    {"kmperhour", KilometresPerHour},
    {"mph", MilesPerHour},
    {"mi/h", MilesPerHour},
    {"mih", MilesPerHour},
    {"mileperhour", MilesPerHour},
    {"kn", Knots},
    {"kt", Knots},
    {"kts", Knots},
    {"knot", Knots},
    {"knots", Knots},
    {"hpa", Hectopascal},
    {"mbar", Hectopascal},
    {"mb", Hectopascal},
    {"hectopascal", Hectopascal},
    {"millibar", Hectopascal},
    {"kpa", Kilopascal},
    {"kilopascal", Kilopascal},
    {"inhg", InchOfMercury},
    {"\"hg", InchOfMercury},
    {"inchofmercury", InchOfMercury},
    {"psi", PoundPerSquareInch},
    {"lbf/in2", PoundPerSquareInch},
    {"mm", Millimetre},
    {"millimetre", Millimetre},
    {"millimeter", Millimetre},
    {"cm", Centimetre},
    {"centimetre", Centimetre},
    {"centimeter", Centimetre},
    {"in", Inch},
    {"inch", Inch},
    {"inches", Inch},
    {"\"", Inch},
    {"mm/h", MillimetrePerHour},
    {"mm/hr", MillimetrePerHour},
    {"mmh", MillimetrePerHour},
    {"mmperhour", MillimetrePerHour},
    {"cm/h", CentimetrePerHour},
    {"cm/hr", CentimetrePerHour},
    {"cmperhour", CentimetrePerHour},
    {"in/h", InchPerHour},
    {"in/hr", InchPerHour},
    {"inh", InchPerHour},
    {"inchperhour", InchPerHour},
    {"m", Metre},
    {"metre", Metre},
    {"meter", Metre},
    {"ft", Foot},
    {"foot", Foot},
    {"feet", Foot},
    {"km", Kilometre},
    {"kilometre", Kilometre},
    {"kilometer", Kilometre},
    {"mi", Mile},
    {"mile", Mile},
    {"miles", Mile},
    {"%", Percent},
    {"%rh", Percent},
    {"percent", Percent},
    {"deg", Degree},
    {"degree", Degree},
    {"degrees", Degree},
    {"degreecompass", Degree},
    {"w/m2", WattPerSquareMetre},
    {"w/m^2", WattPerSquareMetre},
    {"wm2", WattPerSquareMetre},
    {"wpm2", WattPerSquareMetre},
    {"wattpermetersquared", WattPerSquareMetre},
    {"lx", Lux},
    {"lux", Lux},
    {"klx", Kilolux},
    {"klux", Kilolux},
    {"kilolux", Kilolux},
    {"ug/m3", MicrogramPerCubicMetre},
    {"ug/m^3", MicrogramPerCubicMetre},
    {"ugm3", MicrogramPerCubicMetre},
    {"microgrampermetercubed", MicrogramPerCubicMetre},
    {"ppm", PartsPerMillion},
    {"v", Volt},
    {"volt", Volt},
    {"volts", Volt},
    {"mv", Millivolt},
    {"millivolt", Millivolt},
    {"s", Second},
    {"sec", Second},
    {"second", Second},
    {"seconds", Second},
    {"min", Minute},
    {"minute", Minute},
    {"minutes", Minute},
    {"hpa/3h", HectopascalPerThreeHours},
    {"mbar/3h", HectopascalPerThreeHours},
    {"mb/3h", HectopascalPerThreeHours},
    {"inhg/3h", InchOfMercuryPerThreeHours},
};

/// What one sign is written for. The micro sign and the Greek letter look alike.
constexpr std::array<std::pair<std::string_view, std::string_view>, 8> kSigns = {{
    {"°", "deg"},
    {"º", "deg"},
    {"℃", "degc"},
    {"℉", "degf"},
    {"²", "2"},
    {"³", "3"},
    {"\xC2\xB5", "u"},
    {"\xCE\xBC", "u"},
}};

std::string plain(std::string_view text) {
    std::string made;
    while (!text.empty()) {
        const auto* sign = std::find_if(kSigns.begin(), kSigns.end(),
                                        [&](const auto& known) { return text.starts_with(known.first); });
        if (sign != kSigns.end()) {
            made += sign->second;
            text.remove_prefix(sign->first.size());
            continue;
        }
        const char c = text.front();
        text.remove_prefix(1);
        if (c == ' ' || c == '\t' || c == '_' || c == '.') continue;
        made += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return made;
}

}  // namespace

std::optional<Unit> unitFromText(std::string_view text) {
    constexpr std::size_t kLongest = 40;  // bytes; no spelling is that long, whatever the signs in it
    if (text.empty() || text.size() > kLongest) return std::nullopt;
    const std::string wanted = plain(text);
    const auto* found = std::find_if(std::begin(kSpellings), std::end(kSpellings),
                                     [&](const auto& known) { return known.first == wanted; });
    if (found == std::end(kSpellings)) return std::nullopt;
    return found->second;
}

}  // namespace vigil
