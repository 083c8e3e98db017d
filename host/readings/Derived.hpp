#pragma once

#include <string_view>

namespace vigil {

// What follows from other readings. Temperatures in °C, speeds in m/s, humidity in %, directions in degrees.
// Pure functions, any thread.

/// The wind chill index of the North American weather services (2001). It is defined up to 10 °C and from
/// 4.8 km/h of wind; beyond that it is the temperature.
double windChill(double temperature, double windSpeed);

/// By the Magnus formula (17.62, 243.12 °C); humidity above 0.
double dewPoint(double temperature, double humidity);

/// The relative humidity that makes `dew` the dew point: the same formula turned round, at most 100.
double humidityOfDewPoint(double temperature, double dew);

/// The regression of Rothfusz (1990), defined from 80 °F (26.67 °C) and 40 %; beyond that it is the
/// temperature.
double heatIndex(double temperature, double humidity);

/// The heat index where it is warm, the wind chill where it is cold, else the temperature.
double feelsLike(double temperature, double humidity, double windSpeed);

/// One of the sixteen points "N", "NNE", …; any finite number of degrees.
std::string_view compassText(double direction);

}  // namespace vigil
