#include "host/feeds/wire/Rtl433Keys.hpp"

#include <algorithm>
#include <iterator>

namespace vigil {
namespace {

constexpr UnitSuffix kSuffixes[] = {
    {"_C", Unit::Celsius},
    {"_F", Unit::Fahrenheit},
    {"_m_s", Unit::MetresPerSecond},
    {"_ms", Unit::MetresPerSecond},
    {"_mps", Unit::MetresPerSecond},
    {"_km_h", Unit::KilometresPerHour},
    {"_kph", Unit::KilometresPerHour},
    {"_mi_h", Unit::MilesPerHour},
    {"_mph", Unit::MilesPerHour},
    {"_kn", Unit::Knots},
    {"_hPa", Unit::Hectopascal},
    {"_kPa", Unit::Kilopascal},
    {"_PSI", Unit::PoundPerSquareInch},
    {"_inHg", Unit::InchOfMercury},
    {"_mm", Unit::Millimetre},
    {"_cm", Unit::Centimetre},
    {"_in", Unit::Inch},
    {"_inch", Unit::Inch},
    {"_mm_h", Unit::MillimetrePerHour},
    {"_in_h", Unit::InchPerHour},
    {"_m", Unit::Metre},
    {"_km", Unit::Kilometre},
    {"_mi", Unit::Mile},
    {"_deg", Unit::Degree},
    {"_lux", Unit::Lux},
    {"_klx", Unit::Kilolux},
    {"_ug_m3", Unit::MicrogramPerCubicMetre},
    {"_ppm", Unit::PartsPerMillion},
    {"_V", Unit::Volt},
    {"_mV", Unit::Millivolt},
};

/// By the name without its unit.
constexpr WireKey kKeys[] = {
    {"temperature", "outsideTemp"},
    {"temperature_#", "extraTemp#"},
    {"humidity", "outsideHumidity", Unit::Percent},
    {"humidity_#", "extraHumidity#", Unit::Percent},
    {"dew_point", "dewPoint"},
    {"wind_dir", "windDir", Unit::Degree},
    {"direction", "windDir", Unit::Degree},
    {"wind_direction", "windDir", Unit::Degree},
    {"wind_avg", "windSpeed"},
    {"wind_speed", "windSpeed"},
    {"wind_max", "windGust"},
    {"wind_gust", "windGust"},
    {"gust_speed", "windGust"},
    {"rain", "rainTotal"},
    {"rainfall", "rainTotal"},
    {"rain_rate", "rainRate"},
    {"pressure", "pressure"},
    {"light", "illuminance"},
    {"uvi", "uvIndex"},
    {"uv", "uvIndex"},
    {"strike_count", "lightningCount"},
    {"storm_dist", "lightningDistance"},
    {"pm2_5", "pm25"},
    {"pm10", "pm10"},
    {"pm10_0", "pm10"},
    {"co2", "co2"},
    {"moisture", "soilMoisture1", Unit::Percent},
    {"battery", "batteryVoltage"},
};

constexpr std::string_view kReception[] = {
    "time",  "model", "id",   "channel", "type",  "mic",      "mod",          "freq",
    "freq1", "freq2", "rssi", "snr",     "noise", "protocol", "sequence_num",
};

}  // namespace

Rtl433Key rtl433Key(std::string_view member) {
    const UnitSuffix* suffix = findUnitSuffix(kSuffixes, member);
    const std::string_view name = suffix ? member.substr(0, member.size() - suffix->text.size()) : member;
    auto found = findWireKey(kKeys, name);
    // "rain" alone, or "light" without a unit, is a raw count that no two makers count alike.
    const bool usable = found.entry && (suffix || found.entry->unit != Unit::None || name == "uv" ||
                                        name == "uvi" || name == "strike_count");
    if (usable) return {std::move(found.key), suffix ? suffix->unit : found.entry->unit};
    return {std::string(name), suffix ? suffix->unit : Unit::None};
}

bool isReception(std::string_view member) {
    return std::find(std::begin(kReception), std::end(kReception), member) != std::end(kReception);
}

}  // namespace vigil
