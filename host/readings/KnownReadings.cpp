#include "host/readings/KnownReadings.hpp"

#include <algorithm>

namespace vigil {
namespace {

constexpr KnownReading kKnown[] = {
    {"stationName", "Station Name", "", "", kTextType},
    {"stationModel", "Station Model", "", "", kTextType},
    {"readingTime", "Reading Time", "", "", kDateType},
    {"outsideTemp", "Outside Temperature", "°C", "°F"},
    {"insideTemp", "Inside Temperature", "°C", "°F"},
    {"outsideHumidity", "Outside Humidity", "%", "%"},
    {"insideHumidity", "Inside Humidity", "%", "%"},
    {"dewPoint", "Dew Point", "°C", "°F"},
    {"windChill", "Wind Chill", "°C", "°F"},
    {"heatIndex", "Heat Index", "°C", "°F"},
    {"feelsLike", "Feels Like", "°C", "°F"},
    {"windSpeed", "Wind Speed", "m/s", "mph"},
    {"windSpeedAvg", "Wind Speed 10 min Average", "m/s", "mph"},
    {"windGust", "Wind Gust", "m/s", "mph"},
    {"windDir", "Wind Direction", "°", "°"},
    {"windDirText", "Wind Direction (compass)", "", "", kTextType},
    {"barometer", "Barometer (sea level)", "hPa", "inHg"},
    {"pressure", "Station Pressure", "hPa", "inHg"},
    {"barometerTrend", "Barometer Trend", "hPa/3 h", "inHg/3 h"},
    {"rainRate", "Rain Rate", "mm/h", "in/h"},
    {"rainHourly", "Rain, last hour", "mm", "in"},
    {"rainDaily", "Rain, today", "mm", "in"},
    {"rainMonthly", "Rain, this month", "mm", "in"},
    {"rainYearly", "Rain, this year", "mm", "in"},
    {"rainLastTime", "Last Rain", "", "", kDateType},
    {"solarRadiation", "Solar Radiation", "W/m²", "W/m²"},
    {"illuminance", "Illuminance", "lx", "lx"},
    {"uvIndex", "UV Index", "", ""},
    {"soilTemp1", "Soil Temperature 1", "°C", "°F"},
    {"soilMoisture1", "Soil Moisture 1", "%", "%"},
    {"leafWetness1", "Leaf Wetness 1", "", ""},
    {"pm25", "PM 2.5", "µg/m³", "µg/m³"},
    {"co2", "CO2", "ppm", "ppm"},
    {"lightningCount", "Lightning Strikes", "", ""},
    {"lightningDistance", "Lightning Distance", "km", "mi"},
    {"lightningTime", "Last Lightning", "", "", kDateType},
    {"sunrise", "Sunrise", "", "", kDateType},
    {"sunset", "Sunset", "", "", kDateType},
    {"batteryOutdoor", "Outdoor Battery", "", "", kTextType},
};

}  // namespace

std::span<const KnownReading> knownReadings() {
    return kKnown;
}

const KnownReading* knownReading(std::string_view key) {
    const auto* found = std::find_if(std::begin(kKnown), std::end(kKnown),
                                     [key](const KnownReading& known) { return known.key == key; });
    return found == std::end(kKnown) ? nullptr : found;
}

}  // namespace vigil
