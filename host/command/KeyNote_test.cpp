#include "host/command/KeyNote.hpp"

#include <gtest/gtest.h>

namespace vigil {
namespace {

TEST(KeyNote, namesTheReadingThatIsNear) {
    EXPECT_EQ(keyNote("windspeed"), "note: no known reading is called windspeed; did you mean windSpeed?");
    EXPECT_EQ(keyNote("windSped"), "note: no known reading is called windSped; did you mean windSpeed?");
    EXPECT_EQ(keyNote("gustMean1", {"gustMean10"}),
              "note: no known reading is called gustMean1; did you mean gustMean10?");
}

TEST(KeyNote, saysNothingOfReadingsThatAreKnownOrOfAnotherKind) {
    for (const char* key : {"windSpeed", "soilTemp16", "gustMean10", "q", "waterLevelOfThePond"})
        EXPECT_EQ(keyNote(key, {"gustMean10"}), "") << key;
}

TEST(KeyNote, knowsTheKeysOfRollingReadings) {
    EXPECT_EQ(rollingKeys({"windSpeed mean 10", "nonsense", "t age"}),
              (std::vector<std::string>{"windSpeedMean10", "tAge"}));
}

}  // namespace
}  // namespace vigil
