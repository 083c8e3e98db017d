#include "host/readings/RollingChoice.hpp"

#include <gtest/gtest.h>

#include "host/readings/KeyNames.hpp"

namespace vigil {
namespace {

TEST(RollingChoice, isReadPrintedAndNamed) {
    struct Row {
        const char* written;
        const char* text;
        const char* key;
        const char* words;
    };
    const Row rows[] = {
        {"windSpeed mean 10", "windSpeed mean 10", "windSpeedMean10", "mean of 10 min"},
        {"  windSpeed\tmin  1 ", "windSpeed min 1", "windSpeedMin1", "min of 1 min"},
        {"windSpeed max 1440", "windSpeed max 1440", "windSpeedMax1440", "max of 1440 min"},
        {"windSpeed age", "windSpeed age", "windSpeedAge", "age"},
        {"outsideTemp below 0", "outsideTemp below 0", "outsideTempMinutesBelow0", "minutes below 0"},
        {"outsideTemp below -0", "outsideTemp below 0", "outsideTempMinutesBelow0", "minutes below 0"},
        {"outsideTemp below -2.50", "outsideTemp below -2.5", "outsideTempMinutesBelowMinus2_5",
         "minutes below -2.5"},
        {"wind_Gust above 1000000000", "wind_Gust above 1000000000", "wind_GustMinutesAbove1000000000",
         "minutes above 1000000000"},
        {"x above 0.00001", "x above 0.00001", "xMinutesAbove0_00001", "minutes above 0.00001"},
    };
    for (const Row& row : rows) {
        const auto choice = RollingChoice::parse(row.written);
        ASSERT_TRUE(choice) << row.written << ": " << choice.error().message;
        EXPECT_EQ(choice.value().text(), row.text);
        EXPECT_EQ(choice.value().key(), row.key);
        EXPECT_EQ(choice.value().words(), row.words);
        EXPECT_EQ(keyFromName(row.key), row.key) << "is no key of the condition language";
        EXPECT_EQ(RollingChoice::parse(row.text).value(), choice.value());
    }
}

TEST(RollingChoice, whatIsNoneIsRefusedWithItsPlace) {
    const std::pair<const char*, const char*> rows[] = {
        {"", "byte 0: expected the key"},
        {"  2nd mean 10", "byte 2: expected a key"},
        {"wind.speed mean 10", "byte 0: expected a key"},
        {"AND mean 10", "byte 0: expected a key"},
        {"windSpeed", "byte 9: expected mean, min"},
        {"windSpeed minimum 10", "byte 10: expected mean, min"},
        {"windSpeed mean", "byte 14: expected whole minutes"},
        {"windSpeed mean 0", "byte 15: expected whole minutes"},
        {"windSpeed mean 1441", "byte 15: expected whole minutes"},
        {"windSpeed mean 2.5", "byte 15: expected whole minutes"},
        {"windSpeed age 10", "byte 14: expected nothing more"},
        {"outsideTemp below 0 °C", "byte 20: expected nothing more"},
        {"outsideTemp below", "byte 17: expected a number"},
        {"outsideTemp below 1e3", "byte 18: expected a number"},
        {"outsideTemp below inf", "byte 18: expected a number"},
        {"outsideTemp below 0.000001", "byte 18: expected a number"},
        {"outsideTemp above 1000000001", "byte 18: expected a number"},
    };
    for (const auto& [written, wanted] : rows) {
        const auto choice = RollingChoice::parse(written);
        ASSERT_FALSE(choice) << written;
        EXPECT_NE(choice.error().message.find(wanted), std::string::npos)
            << written << ": " << choice.error().message;
    }
}

TEST(RollingChoice, differentThresholdsHaveDifferentKeys) {
    const char* written[] = {"t below 25", "t below 2.5", "t below -2.5", "t below 0.25", "t above 25"};
    for (const char* one : written)
        for (const char* other : written)
            EXPECT_EQ(RollingChoice::parse(one).value().key() == RollingChoice::parse(other).value().key(),
                      one == other);
}

}  // namespace
}  // namespace vigil
