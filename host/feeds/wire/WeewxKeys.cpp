#include "host/feeds/wire/WeewxKeys.hpp"

#include <algorithm>
#include <iterator>

#include "host/feeds/wire/WireKeys.hpp"

namespace vigil {
namespace {

constexpr UnitSuffix kSuffixes[] = {
    {"_F", Unit::Fahrenheit},
    {"_C", Unit::Celsius},
    {"_K", Unit::Kelvin},
    {"_mph", Unit::MilesPerHour},
    {"_kph", Unit::KilometresPerHour},
    {"_mps", Unit::MetresPerSecond},
    {"_knot", Unit::Knots},
    {"_inHg", Unit::InchOfMercury},
    {"_mbar", Unit::Hectopascal},
    {"_hPa", Unit::Hectopascal},
    {"_kPa", Unit::Kilopascal},
    {"_in", Unit::Inch},
    {"_cm", Unit::Centimetre},
    {"_mm", Unit::Millimetre},
    {"_inch_per_hour", Unit::InchPerHour},
    {"_cm_per_hour", Unit::CentimetrePerHour},
    {"_mm_per_hour", Unit::MillimetrePerHour},
    {"_Wpm2", Unit::WattPerSquareMetre},
    {"_watt_per_meter_squared", Unit::WattPerSquareMetre},
    {"_foot", Unit::Foot},
    {"_meter", Unit::Metre},
    {"_mile", Unit::Mile},
    {"_km", Unit::Kilometre},
    {"_lux", Unit::Lux},
    {"_volt", Unit::Volt},
    {"_microgram_per_meter_cubed", Unit::MicrogramPerCubicMetre},
    {"_ppm", Unit::PartsPerMillion},
    {"_percent", Unit::Percent},
    {"_degree_compass", Unit::Degree},
};

/// A quantity by its unit of the US system; the others follow. Of what is the same in all systems the unit
/// itself.
constexpr WireKey kKeys[] = {
    {"outTemp", "outsideTemp", Unit::Fahrenheit},
    {"inTemp", "insideTemp", Unit::Fahrenheit},
    {"dewpoint", "dewPoint", Unit::Fahrenheit},
    {"inDewpoint", "insideDewPoint", Unit::Fahrenheit},
    {"windchill", "windChill", Unit::Fahrenheit},
    {"heatindex", "heatIndex", Unit::Fahrenheit},
    {"appTemp", "feelsLike", Unit::Fahrenheit},
    {"humidex", "", Unit::Fahrenheit},
    {"extraTemp#", "", Unit::Fahrenheit},
    {"soilTemp#", "", Unit::Fahrenheit},
    {"leafTemp#", "", Unit::Fahrenheit},
    {"outHumidity", "outsideHumidity", Unit::Percent},
    {"inHumidity", "insideHumidity", Unit::Percent},
    {"extraHumid#", "extraHumidity#", Unit::Percent},
    {"windSpeed", "", Unit::MilesPerHour},
    {"windSpeed#", "windSpeedAvg", Unit::MilesPerHour},
    {"windGust", "", Unit::MilesPerHour},
    {"windGust#", "", Unit::MilesPerHour},
    {"windDir", "", Unit::Degree},
    {"windGustDir", "", Unit::Degree},
    {"windrun", "", Unit::Mile},
    {"barometer", "", Unit::InchOfMercury},
    {"pressure", "", Unit::InchOfMercury},
    {"altimeter", "", Unit::InchOfMercury},
    {"rain", "rainInterval", Unit::Inch},
    {"rainRate", "", Unit::InchPerHour},
    {"hourRain", "rainHourly", Unit::Inch},
    {"dayRain", "rainDaily", Unit::Inch},
    {"rain#", "rainLast#Hours", Unit::Inch},
    {"monthRain", "rainMonthly", Unit::Inch},
    {"yearRain", "rainYearly", Unit::Inch},
    {"stormRain", "rainEvent", Unit::Inch},
    {"totalRain", "rainTotal", Unit::Inch},
    {"ET", "evapotranspiration", Unit::Inch},
    {"cloudbase", "", Unit::Foot},
    {"radiation", "solarRadiation", Unit::WattPerSquareMetre},
    {"maxSolarRad", "", Unit::WattPerSquareMetre},
    {"UV", "uvIndex"},
    {"luminosity", "illuminance", Unit::Lux},
    {"soilMoist#", ""},
    {"leafWet#", "leafWetness#"},
    {"pm1_0", "pm1", Unit::MicrogramPerCubicMetre},
    {"pm2_5", "pm25", Unit::MicrogramPerCubicMetre},
    {"pm10_0", "pm10", Unit::MicrogramPerCubicMetre},
    {"co2", "", Unit::PartsPerMillion},
    {"lightning_strike_count", "lightningCount"},
    {"lightning_distance", "lightningDistance", Unit::Mile},
    {"consBatteryVoltage", "", Unit::Volt},
    {"heatingVoltage", "", Unit::Volt},
    {"supplyVoltage", "", Unit::Volt},
    {"referenceVoltage", "", Unit::Volt},
    {"interval", "", Unit::Minute},
};

struct OfSystems {
    Unit us, metric, metricWx;
};
constexpr OfSystems kSystems[] = {
    {Unit::Fahrenheit, Unit::Celsius, Unit::Celsius},
    {Unit::MilesPerHour, Unit::KilometresPerHour, Unit::MetresPerSecond},
    {Unit::InchOfMercury, Unit::Hectopascal, Unit::Hectopascal},
    {Unit::Inch, Unit::Centimetre, Unit::Millimetre},
    {Unit::InchPerHour, Unit::CentimetrePerHour, Unit::MillimetrePerHour},
    {Unit::Foot, Unit::Metre, Unit::Metre},
    {Unit::Mile, Unit::Kilometre, Unit::Kilometre},
};

std::string_view baseOf(std::string_view name, const UnitSuffix* suffix) {
    return suffix ? name.substr(0, name.size() - suffix->text.size()) : name;
}

}  // namespace

std::optional<WeewxSystem> weewxSystem(double number) {
    for (const WeewxSystem system : {WeewxSystem::Us, WeewxSystem::Metric, WeewxSystem::MetricWx})
        if (number == static_cast<double>(system)) return system;
    return std::nullopt;
}

std::optional<WeewxSystem> weewxSystemNamed(std::string_view name) {
    if (name == "us") return WeewxSystem::Us;
    if (name == "metric") return WeewxSystem::Metric;
    if (name == "metricwx") return WeewxSystem::MetricWx;
    return std::nullopt;
}

WeewxKey weewxKey(std::string_view name, std::optional<WeewxSystem> system) {
    const UnitSuffix* suffix = findUnitSuffix(kSuffixes, name);
    auto found = findWireKey(kKeys, baseOf(name, suffix));
    WeewxKey key{.key = found.entry ? std::move(found.key) : std::string(baseOf(name, suffix))};
    if (key.key.starts_with("soilMoist")) key.unitText = "cb";
    key.unit = suffix ? suffix->unit : found.entry ? found.entry->unit : Unit::None;
    if (suffix) return key;
    for (const OfSystems& each : kSystems) {
        if (each.us != key.unit) continue;
        key.unitUnknown = !system;
        if (system)
            key.unit = *system == WeewxSystem::Us       ? each.us
                       : *system == WeewxSystem::Metric ? each.metric
                                                        : each.metricWx;
        break;
    }
    return key;
}

bool isWeewxName(std::string_view name) {
    if (name == "usUnits" || name == "dateTime") return true;
    const UnitSuffix* suffix = findUnitSuffix(kSuffixes, name);
    return findWireKey(kKeys, baseOf(name, suffix)).entry != nullptr;
}

}  // namespace vigil
