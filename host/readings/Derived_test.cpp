#include "host/readings/Derived.hpp"

#include <cmath>

#include <gtest/gtest.h>

#include "host/readings/Units.hpp"

namespace vigil {
namespace {

double celsius(double fahrenheit) {
    return *convert(fahrenheit, Unit::Fahrenheit, Unit::Celsius);
}

double fahrenheit(double value) {
    return *convert(value, Unit::Celsius, Unit::Fahrenheit);
}

struct Cell {
    double temperature;
    double other;
    double wanted;
};

// The wind chill chart of the US National Weather Service (2001), °F and mph, whole degrees.
TEST(Derived, windChillIsThatOfThePublishedChart) {
    for (const Cell& cell : {Cell{40, 5, 36},
                             {40, 25, 29},
                             {40, 60, 25},
                             {30, 10, 21},
                             {30, 15, 19},
                             {30, 30, 15},
                             {20, 10, 9},
                             {0, 5, -11},
                             {0, 15, -19},
                             {0, 30, -26},
                             {0, 60, -33},
                             {-20, 10, -41},
                             {-20, 60, -62},
                             {-45, 5, -63},
                             {-45, 10, -72},
                             {-45, 60, -98}}) {
        const double speed = *convert(cell.other, Unit::MilesPerHour, Unit::MetresPerSecond);
        EXPECT_NEAR(fahrenheit(windChill(celsius(cell.temperature), speed)), cell.wanted, 0.51)
            << cell.temperature << " °F, " << cell.other << " mph";
    }
}

TEST(Derived, windChillIsTheTemperatureWhereItIsWarmOrStill) {
    EXPECT_EQ(windChill(10.1, 20), 10.1);
    EXPECT_EQ(windChill(-5, 1.33), -5);
    EXPECT_LT(windChill(10, 10), 10);
    EXPECT_NE(windChill(-5, 1.34), -5);
}

// The heat index chart of the US National Weather Service, °F and percent, whole degrees.
TEST(Derived, heatIndexIsThatOfThePublishedChart) {
    for (const Cell& cell : {Cell{80, 40, 80},
                             {80, 100, 87},
                             {86, 90, 105},
                             {88, 75, 103},
                             {90, 50, 95},
                             {90, 60, 100},
                             {90, 100, 132},
                             {96, 50, 108},
                             {100, 40, 109},
                             {100, 50, 118},
                             {100, 60, 129},
                             {110, 40, 136}})
        EXPECT_NEAR(fahrenheit(heatIndex(celsius(cell.temperature), cell.other)), cell.wanted, 0.55)
            << cell.temperature << " °F, " << cell.other << " %";
}

TEST(Derived, heatIndexIsTheTemperatureWhereItIsCoolOrDry) {
    EXPECT_EQ(heatIndex(26.6, 90), 26.6);
    EXPECT_EQ(heatIndex(35, 39.9), 35);
    EXPECT_NE(heatIndex(celsius(80), 90), celsius(80));
}

// The dew point table of DIN 4108-5, °C and percent, a tenth of a degree.
TEST(Derived, dewPointIsThatOfThePublishedTable) {
    for (const Cell& cell : {Cell{30, 30, 10.5},
                             {30, 50, 18.4},
                             {30, 80, 26.2},
                             {30, 95, 29.1},
                             {20, 30, 1.9},
                             {20, 50, 9.3},
                             {20, 60, 12.0},
                             {20, 90, 18.3},
                             {10, 50, 0.1},
                             {10, 60, 2.6},
                             {10, 80, 6.7},
                             {10, 95, 9.2}})
        EXPECT_NEAR(dewPoint(cell.temperature, cell.other), cell.wanted, 0.11)
            << cell.temperature << " °C, " << cell.other << " %";
    for (const double temperature : {-30.0, 0.0, 41.5})
        EXPECT_NEAR(dewPoint(temperature, 100), temperature, 1e-9);
}

TEST(Derived, humidityIsTheDewPointTurnedRound) {
    for (const double temperature : {-20.0, 0.0, 12.5, 40.0})
        for (const double humidity : {1.0, 35.0, 99.0})
            EXPECT_NEAR(humidityOfDewPoint(temperature, dewPoint(temperature, humidity)), humidity, 1e-9);
}

TEST(Derived, itFeelsLikeTheHeatIndexOrTheWindChillOrTheTemperature) {
    EXPECT_EQ(feelsLike(35, 60, 10), heatIndex(35, 60));
    EXPECT_EQ(feelsLike(-5, 60, 10), windChill(-5, 10));
    EXPECT_EQ(feelsLike(18, 60, 10), 18);
}

TEST(Derived, theCompassHasSixteenPoints) {
    const std::pair<double, const char*> points[] = {
        {0, "N"},    {11.2, "N"},    {11.3, "NNE"},  {45, "NE"},   {90, "E"},  {112.5, "ESE"}, {180, "S"},
        {225, "SW"}, {292.5, "WNW"}, {348.7, "NNW"}, {348.8, "N"}, {360, "N"}, {-90, "W"},     {810, "E"}};
    for (const auto& [direction, text] : points)
        EXPECT_EQ(compassText(direction), text) << direction;
}

}  // namespace
}  // namespace vigil
