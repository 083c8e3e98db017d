#include "host/feeds/wire/UploadKeys.hpp"

#include <algorithm>
#include <array>
#include <utility>

namespace vigil {
namespace {

using Kind = WireKey::Kind;
constexpr Unit kNone = Unit::None;

constexpr WireKey kKeys[] = {
    // temperature and humidity
    {"tempf", "outsideTemp", Unit::Fahrenheit},
    {"outtemp", "outsideTemp", Unit::Celsius},
    {"tempinf", "insideTemp", Unit::Fahrenheit},
    {"indoortempf", "insideTemp", Unit::Fahrenheit},
    {"intemp", "insideTemp", Unit::Celsius},
    {"humidity", "outsideHumidity", Unit::Percent},
    {"outhumi", "outsideHumidity", Unit::Percent},
    {"humidityin", "insideHumidity", Unit::Percent},
    {"indoorhumidity", "insideHumidity", Unit::Percent},
    {"inhumi", "insideHumidity", Unit::Percent},
    {"dewptf", "dewPoint", Unit::Fahrenheit},
    {"dewPointf", "dewPoint", Unit::Fahrenheit},
    {"dewpoint", "dewPoint", Unit::Celsius},
    {"windchillf", "windChill", Unit::Fahrenheit},
    {"windchill", "windChill", Unit::Celsius},
    {"heatindexf", "heatIndex", Unit::Fahrenheit},
    {"heatindex", "heatIndex", Unit::Celsius},
    {"feelsLikef", "feelsLike", Unit::Fahrenheit},
    {"feelslikef", "feelsLike", Unit::Fahrenheit},
    {"temp#f", "extraTemp#", Unit::Fahrenheit},
    {"humidity#", "extraHumidity#", Unit::Percent},
    {"bgt", "blackGlobeTemp", Unit::Fahrenheit},
    {"wbgt", "wetBulbGlobeTemp", Unit::Fahrenheit},
    {"vpd", "vapourPressureDeficit", Unit::InchOfMercury},
    // pressure
    {"baromrelin", "barometer", Unit::InchOfMercury},
    {"baromin", "barometer", Unit::InchOfMercury},
    {"relbaro", "barometer", Unit::Hectopascal},
    {"baromabsin", "pressure", Unit::InchOfMercury},
    {"absbaromin", "pressure", Unit::InchOfMercury},
    {"absbaro", "pressure", Unit::Hectopascal},
    // wind
    {"winddir", "windDir", Unit::Degree},
    {"winddir_avg10m", "windDirAvg", Unit::Degree},
    {"winddir_avg2m", "windDirAvg2m", Unit::Degree},
    {"windgustdir", "windGustDir", Unit::Degree},
    {"windgustdir_10m", "windGustDir10m", Unit::Degree},
    {"windspeedmph", "windSpeed", Unit::MilesPerHour},
    {"windspeed", "windSpeed", Unit::KilometresPerHour},
    {"windspdmph_avg10m", "windSpeedAvg", Unit::MilesPerHour},
    {"windspdmph_avg2m", "windSpeedAvg2m", Unit::MilesPerHour},
    {"windgustmph", "windGust", Unit::MilesPerHour},
    {"windgust", "windGust", Unit::KilometresPerHour},
    {"windgustmph_10m", "windGust10m", Unit::MilesPerHour},
    {"maxdailygust", "windGustDaily", Unit::MilesPerHour},
    // rain
    {"rainratein", "rainRate", Unit::InchPerHour},
    {"rainrate", "rainRate", Unit::MillimetrePerHour},
    {"rainin", "rainHourly", Unit::Inch},
    {"hourlyrainin", "rainHourly", Unit::Inch},
    {"hourlyrain", "rainHourly", Unit::Millimetre},
    {"eventrainin", "rainEvent", Unit::Inch},
    {"eventrain", "rainEvent", Unit::Millimetre},
    {"dailyrainin", "rainDaily", Unit::Inch},
    {"dailyrain", "rainDaily", Unit::Millimetre},
    {"weeklyrainin", "rainWeekly", Unit::Inch},
    {"weeklyrain", "rainWeekly", Unit::Millimetre},
    {"monthlyrainin", "rainMonthly", Unit::Inch},
    {"monthlyrain", "rainMonthly", Unit::Millimetre},
    {"yearlyrainin", "rainYearly", Unit::Inch},
    {"yearlyrain", "rainYearly", Unit::Millimetre},
    {"totalrainin", "rainTotal", Unit::Inch},
    {"totalrain", "rainTotal", Unit::Millimetre},
    {"rrain_piezo", "rainRatePiezo", Unit::InchPerHour},
    {"erain_piezo", "rainEventPiezo", Unit::Inch},
    {"hrain_piezo", "rainHourlyPiezo", Unit::Inch},
    {"drain_piezo", "rainDailyPiezo", Unit::Inch},
    {"wrain_piezo", "rainWeeklyPiezo", Unit::Inch},
    {"mrain_piezo", "rainMonthlyPiezo", Unit::Inch},
    {"yrain_piezo", "rainYearlyPiezo", Unit::Inch},
    // sun
    {"solarradiation", "solarRadiation", Unit::WattPerSquareMetre},
    {"uv", "uvIndex", kNone},
    {"UV", "uvIndex", kNone},
    {"light", "illuminance", Unit::Lux},
    // soil and leaves
    {"soiltempf", "soilTemp1", Unit::Fahrenheit},
    {"soiltemp#f", "soilTemp#", Unit::Fahrenheit},
    {"tf_ch#", "soilTemp#", Unit::Fahrenheit},
    {"soilmoisture", "soilMoisture1", Unit::Percent},
    {"soilmoisture#", "soilMoisture#", Unit::Percent},
    {"leafwetness", "leafWetness1", kNone},
    {"leafwetness#", "leafWetness#", kNone},
    {"leafwetness_ch#", "leafWetness#", kNone},
    // air
    {"pm25_ch1", "pm25", Unit::MicrogramPerCubicMetre},
    {"pm25_ch#", "pm25_#", Unit::MicrogramPerCubicMetre},
    {"pm25_avg_24h_ch#", "", Unit::MicrogramPerCubicMetre},
    {"AqPM2.5", "pm25", Unit::MicrogramPerCubicMetre},
    {"AqPM10", "pm10", Unit::MicrogramPerCubicMetre},
    {"pm25_co2", "", Unit::MicrogramPerCubicMetre},
    {"pm25_24h_co2", "", Unit::MicrogramPerCubicMetre},
    {"pm10_co2", "", Unit::MicrogramPerCubicMetre},
    {"pm10_24h_co2", "", Unit::MicrogramPerCubicMetre},
    {"tf_co2", "", Unit::Fahrenheit},
    {"humi_co2", "", Unit::Percent},
    {"co2", "co2", Unit::PartsPerMillion},
    {"co2_24h", "", Unit::PartsPerMillion},
    // lightning, water
    {"lightning", "lightningDistance", Unit::Kilometre},
    {"lightning_num", "lightningCount", kNone},
    {"lightning_time", "lightningTime", kNone, Kind::UnixTime},
    {"leak_ch#", "leak#", kNone},
    // batteries: flags
    {"wh65batt", "batteryOutdoor", kNone, Kind::Flag},
    {"lowbatt", "batteryOutdoor", kNone, Kind::Flag},
    {"battout", "batteryOutdoor", kNone, Kind::Flag},
    {"battery", "batteryOutdoor", kNone, Kind::Text},
    {"wh25batt", "batteryIndoor", kNone, Kind::Flag},
    {"battin", "batteryIndoor", kNone, Kind::Flag},
    {"wh26batt", "", kNone, Kind::Flag},
    {"batt#", "", kNone, Kind::Flag},
    {"batt_25", "", kNone, Kind::Flag},
    {"batt_co2", "", kNone, Kind::Flag},
    {"batt_lightning", "", kNone, Kind::Flag},
    {"hubbattery", "", kNone, Kind::Text},
    // batteries: volts
    {"wh40batt", "", Unit::Volt},
    {"wh68batt", "", Unit::Volt},
    {"wh80batt", "", Unit::Volt},
    {"wh90batt", "", Unit::Volt},
    {"ws90cap_volt", "", Unit::Volt},
    {"soilbatt#", "", Unit::Volt},
    {"tf_batt#", "", Unit::Volt},
    {"leaf_batt#", "", Unit::Volt},
    {"bgtbatt", "", Unit::Volt},
    // the console
    {"model", "stationModel", kNone, Kind::Text},
    {"stationtype", "", kNone, Kind::Text},
    {"softwaretype", "", kNone, Kind::Text},
    {"freq", "", kNone, Kind::Text},
    {"runtime", "", Unit::Second, Kind::Hidden},
    {"interval", "", Unit::Second, Kind::Hidden},
    {"heap", "", kNone, Kind::Hidden},
    {"rssi", "", kNone, Kind::Hidden},
    {"ws90_ver", "", kNone, Kind::Hidden},
    {"gain#_piezo", "", kNone, Kind::Hidden},
    // who sends, and when
    {"PASSKEY", "", kNone, Kind::Protocol},
    {"MAC", "", kNone, Kind::Protocol},
    {"ID", "", kNone, Kind::Protocol},
    {"PASSWORD", "", kNone, Kind::Protocol},
    {"id", "", kNone, Kind::Protocol},
    {"mt", "", kNone, Kind::Protocol},
    {"sensor", "", kNone, Kind::Protocol},
    {"dateutc", "", kNone, Kind::Protocol},
    {"action", "", kNone, Kind::Protocol},
    {"realtime", "", kNone, Kind::Protocol},
    {"rtfreq", "", kNone, Kind::Protocol},
};

constexpr std::array<std::pair<std::string_view, std::string_view>, 7> kGauges = {{
    {"rrain_piezo", "rainratein"},
    {"erain_piezo", "eventrainin"},
    {"hrain_piezo", "hourlyrainin"},
    {"drain_piezo", "dailyrainin"},
    {"wrain_piezo", "weeklyrainin"},
    {"mrain_piezo", "monthlyrainin"},
    {"yrain_piezo", "yearlyrainin"},
}};

}  // namespace

std::span<const WireKey> uploadKeys() {
    return kKeys;
}

std::optional<std::string_view> firstGaugeField(std::string_view name) {
    for (const auto& [second, first] : kGauges)
        if (second == name) return first;
    return std::nullopt;
}

Unit metricInstead(Unit unit) {
    switch (unit) {
        case Unit::Fahrenheit:
            return Unit::Celsius;
        case Unit::MilesPerHour:
            return Unit::KilometresPerHour;
        case Unit::InchOfMercury:
            return Unit::Hectopascal;
        case Unit::Inch:
            return Unit::Millimetre;
        case Unit::InchPerHour:
            return Unit::MillimetrePerHour;
        default:
            return unit;
    }
}

}  // namespace vigil
