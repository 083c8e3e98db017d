#include "host/readings/Derived.hpp"

#include <algorithm>
#include <array>
#include <cmath>

namespace vigil {
namespace {

constexpr double kWarmest = 10;                   // °C, of the wind chill
constexpr double kStillest = 4.8 / 3.6;           // m/s, of the wind chill
constexpr double kCoolest = (80 - 32) * 5 / 9.0;  // °C, of the heat index: 80 °F
constexpr double kDriest = 40;                    // %, of the heat index
constexpr double kMagnusFactor = 17.62;
constexpr double kMagnusOffset = 243.12;

double magnusExponent(double temperature) {
    return kMagnusFactor * temperature / (kMagnusOffset + temperature);
}

}  // namespace

double windChill(double temperature, double windSpeed) {
    if (temperature > kWarmest || windSpeed < kStillest) return temperature;
    const double v = std::pow(windSpeed * 3.6, 0.16);
    return 13.12 + 0.6215 * temperature - 11.37 * v + 0.3965 * temperature * v;
}

double dewPoint(double temperature, double humidity) {
    const double exponent = std::log(humidity / 100) + magnusExponent(temperature);
    return kMagnusOffset * exponent / (kMagnusFactor - exponent);
}

double humidityOfDewPoint(double temperature, double dew) {
    return std::min(100.0, 100 * std::exp(magnusExponent(dew) - magnusExponent(temperature)));
}

double heatIndex(double temperature, double humidity) {
    if (temperature < kCoolest || humidity < kDriest) return temperature;
    const double t = temperature * 1.8 + 32;
    const double h = humidity;
    const double index = -42.379 + 2.04901523 * t + 10.14333127 * h - 0.22475541 * t * h -
                         0.00683783 * t * t - 0.05481717 * h * h + 0.00122874 * t * t * h +
                         0.00085282 * t * h * h - 0.00000199 * t * t * h * h;
    return (index - 32) / 1.8;
}

double feelsLike(double temperature, double humidity, double windSpeed) {
    return temperature >= kCoolest ? heatIndex(temperature, humidity) : windChill(temperature, windSpeed);
}

std::string_view compassText(double direction) {
    constexpr std::array<std::string_view, 16> kPoints = {"N", "NNE", "NE", "ENE", "E", "ESE", "SE", "SSE",
                                                          "S", "SSW", "SW", "WSW", "W", "WNW", "NW", "NNW"};
    const double turns = direction / 360 - std::floor(direction / 360);
    return kPoints[static_cast<std::size_t>(std::floor(turns * 16 + 0.5)) % kPoints.size()];
}

}  // namespace vigil
