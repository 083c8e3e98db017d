#include "host/readings/KnownReadings.hpp"

#include <deque>
#include <iterator>
#include <string>
#include <unordered_map>
#include <vector>

namespace vigil {
namespace {

using enum Unit;

// The bounds lie beyond the records of the World Meteorological Organization's archive of extremes, so that
// no weather is taken for a mistake: air -89.2 to 56.7 °C, a gust of 113.3 m/s, sea-level pressure 870 to
// 1084.8 hPa, rain of 305 mm in 42 minutes, 1825 mm in a day, 9300 mm in a month, 26 470 mm in a year.
constexpr Bounds kAir{-95, 65};
constexpr Bounds kHumidity{0, 110};  // sensors in fog overshoot
constexpr Bounds kProbe{-95, 150};

constexpr KnownReading kKnown[] = {
    {"stationName", "Station Name", None, kTextType},
    {"stationModel", "Station Model", None, kTextType},
    {"readingTime", "Reading Time", None, kDateType},
    {"outsideTemp", "Outside Temperature", Celsius, kNumericType, kAir},
    {"insideTemp", "Inside Temperature", Celsius, kNumericType, {-60, 150}},
    {"outsideHumidity", "Outside Humidity", Percent, kNumericType, kHumidity},
    {"insideHumidity", "Inside Humidity", Percent, kNumericType, kHumidity},
    {"dewPoint", "Dew Point", Celsius, kNumericType, {-120, 45}},
    {"windChill", "Wind Chill", Celsius, kNumericType, {-150, 65}},
    {"heatIndex", "Heat Index", Celsius, kNumericType, {-95, 200}},
    {"feelsLike", "Feels Like", Celsius, kNumericType, {-150, 200}},
    {"windSpeed", "Wind Speed", MetresPerSecond, kNumericType, {0, 130}},
    {"windSpeedAvg", "Wind Speed 10 min Average", MetresPerSecond, kNumericType, {0, 130}},
    {"windGust", "Wind Gust", MetresPerSecond, kNumericType, {0, 130}},
    {"windDir", "Wind Direction", Degree, kNumericType, {0, 360}},
    {"windDirText", "Wind Direction (compass)", None, kTextType},
    {"barometer", "Barometer (sea level)", Hectopascal, kNumericType, {850, 1100}},
    {"pressure", "Station Pressure", Hectopascal, kNumericType, {300, 1100}},
    {"barometerTrend", "Barometer Trend", HectopascalPerThreeHours, kNumericType, {-100, 100}},
    {"rainRate", "Rain Rate", MillimetrePerHour, kNumericType, {0, 3000}},
    {"rainHourly", "Rain, last hour", Millimetre, kNumericType, {0, 600}},
    {"rainDaily", "Rain, today", Millimetre, kNumericType, {0, 2500}},
    {"rainMonthly", "Rain, this month", Millimetre, kNumericType, {0, 12000}},
    {"rainYearly", "Rain, this year", Millimetre, kNumericType, {0, 40000}},
    {"rainLastTime", "Last Rain", None, kDateType},
    {"solarRadiation", "Solar Radiation", WattPerSquareMetre, kNumericType, {0, 2000}},
    {"illuminance", "Illuminance", Lux, kNumericType, {0, 250000}},
    {"uvIndex", "UV Index", None, kNumericType, {0, 60}},
    {"soilTemp1", "Soil Temperature 1", Celsius, kNumericType, kProbe},
    {"soilMoisture1", "Soil Moisture 1", Percent, kNumericType, {0, 110}},
    {"leafWetness1", "Leaf Wetness 1", None, kNumericType, {0, 100}},
    {"pm25", "PM 2.5", MicrogramPerCubicMetre, kNumericType, {0, 10000}},
    {"co2", "CO2", PartsPerMillion, kNumericType, {0, 50000}},
    {"lightningCount", "Lightning Strikes", None, kNumericType, {0, 10000000}},
    {"lightningDistance", "Lightning Distance", Kilometre, kNumericType, {0, 500}},
    {"lightningTime", "Last Lightning", None, kDateType},
    {"sunrise", "Sunrise", None, kDateType},
    {"sunset", "Sunset", None, kDateType},
    {"batteryOutdoor", "Outdoor Battery", None, kTextType},
    // Of some stations only.
    {"batteryIndoor", "Indoor Battery", None, kTextType},
    {"insideDewPoint", "Inside Dew Point", Celsius, kNumericType, {-120, 60}},
    {"windSpeedAvg2m", "Wind Speed 2 min Average", MetresPerSecond, kNumericType, {0, 130}},
    {"windGust10m", "Wind Gust, last 10 min", MetresPerSecond, kNumericType, {0, 130}},
    {"windGustDaily", "Wind Gust, today", MetresPerSecond, kNumericType, {0, 130}},
    {"windGustDir", "Wind Gust Direction", Degree, kNumericType, {0, 360}},
    {"windDirAvg", "Wind Direction 10 min Average", Degree, kNumericType, {0, 360}},
    {"windDirAvg2m", "Wind Direction 2 min Average", Degree, kNumericType, {0, 360}},
    {"rainEvent", "Rain, this event", Millimetre, kNumericType, {0, 40000}},
    {"rainWeekly", "Rain, this week", Millimetre, kNumericType, {0, 12000}},
    {"rainTotal", "Rain, total", Millimetre, kNumericType, {0, 1000000}},
    {"vapourPressureDeficit", "Vapour Pressure Deficit", Hectopascal, kNumericType, {0, 200}},
    {"pm10", "PM 10", MicrogramPerCubicMetre, kNumericType, {0, 10000}},
};

/// Readings of which a station has several, numbered from `first`.
struct Family {
    std::string_view stem;
    std::string_view name;
    int first;
    int last;
    Unit held;
    Bounds bounds;
};

constexpr Family kFamilies[] = {
    {"soilTemp", "Soil Temperature", 2, 16, Celsius, kProbe},
    {"soilMoisture", "Soil Moisture", 2, 16, Percent, {0, 110}},
    {"leafWetness", "Leaf Wetness", 2, 8, None, {0, 100}},
    {"temp", "Temperature", 1, 8, Celsius, kProbe},
    {"humidity", "Humidity", 1, 8, Percent, kHumidity},
    {"extraTemp", "Extra Temperature", 1, 16, Celsius, kProbe},
    {"extraHumidity", "Extra Humidity", 1, 16, Percent, kHumidity},
    {"pm25_", "PM 2.5, channel", 2, 4, MicrogramPerCubicMetre, {0, 10000}},
    {"leak", "Leak", 1, 4, None, {0, 100}},
};

struct Known {
    std::deque<std::string> texts;  // of the families; a deque, since the rows point into them
    std::vector<KnownReading> rows;
    std::unordered_map<std::string_view, const KnownReading*> byKey;

    Known() : rows(std::begin(kKnown), std::end(kKnown)) {
        for (const Family& family : kFamilies)
            for (int number = family.first; number <= family.last; ++number)
                add(family, std::to_string(number));
        byKey.reserve(rows.size());
        for (const KnownReading& row : rows)
            byKey.emplace(row.key, &row);
    }

  private:
    void add(const Family& family, const std::string& number) {
        const std::string& key = texts.emplace_back(std::string(family.stem) + number);
        const std::string& name = texts.emplace_back(std::string(family.name) + " " + number);
        rows.push_back({key, name, family.held, kNumericType, family.bounds});
    }
};

const Known& known() {
    static const Known all;
    return all;
}

}  // namespace

std::span<const KnownReading> knownReadings() {
    return known().rows;
}

const KnownReading* knownReading(std::string_view key) {
    const auto found = known().byKey.find(key);
    return found == known().byKey.end() ? nullptr : found->second;
}

Bounds boundsOf(Quantity quantity) {
    switch (quantity) {
        case Quantity::Temperature:
            return {-150, 200};
        case Quantity::Speed:
            return {0, 130};
        case Quantity::Pressure:
            return {0, 2000};  // also of vapour
        case Quantity::PressureTrend:
            return {-100, 100};
        case Quantity::Depth:
            return {0, 40000};
        case Quantity::DepthRate:
            return {0, 3000};
        case Quantity::Height:
            return {-12000, 100000};
        case Quantity::Distance:
            return {0, 50000};
        case Quantity::Percentage:
            return {0, 110};
        case Quantity::Direction:
            return {-360, 360};
        case Quantity::Irradiance:
            return {0, 2000};
        case Quantity::Illuminance:
            return {0, 250000};
        case Quantity::MassConcentration:
            return {0, 10000};
        case Quantity::VolumeFraction:
            return {0, 1000000};
        case Quantity::Voltage:
            return {-1000, 1000};
        case Quantity::None:
        case Quantity::Duration:
            break;
    }
    return {};
}

}  // namespace vigil
