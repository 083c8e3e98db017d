#include <gtest/gtest.h>

#include "host/readings/PacketSamples.hpp"
#include "host/readings/StationReadings.hpp"

namespace vigil {
namespace {

using Kind = Taken::Kind;

constexpr double kNow = 8e8;

class StationMerge : public ::testing::Test {
  protected:
    Taken take(double after, std::vector<PacketReading> readings, std::string sensor = {}) {
        return m_station.take(packetSample(kNow + after, std::move(readings), std::move(sensor)),
                              Date(kNow + after));
    }
    Taken takeRetained(double after, std::optional<Date> time, std::vector<PacketReading> readings) {
        Packet packet = packetSample(kNow + after, std::move(readings));
        packet.retained = true;
        packet.time = time;
        return m_station.take(packet, Date(kNow + after));
    }
    static double valueOf(const std::shared_ptr<const Readings>& batch, const char* key) {
        const AgentProperty* reading = batch ? batch->objectForKey(key) : nullptr;
        EXPECT_NE(reading, nullptr) << key;
        return reading ? reading->value() : -1e9;
    }

    StationReadings m_station{{.derive = false, .freshSeconds = 600}};
};

TEST_F(StationMerge, aStationThatSpeaksWholeIsJudgedAsItSpeaks) {
    take(0, {numberSample("windSpeed", 20), numberSample("outsideTemp", 5)});
    const Taken second = take(16, {numberSample("outsideTemp", 6)});
    EXPECT_EQ(second.batch->entries().size(), 1u);
    EXPECT_EQ(valueOf(m_station.current(), "windSpeed"), 20) << "it stays in the table";
    EXPECT_EQ(m_station.current()->objectForKey("windSpeed")->time(), Date(kNow));
    EXPECT_EQ(m_station.current()->objectForKey("outsideTemp")->time(), Date(kNow + 16));
}

TEST_F(StationMerge, besideTheNewsOfOneSensorStandWhatTheOthersSaidLately) {
    take(0, {numberSample("windSpeed", 20)}, "vane");
    const auto both = take(16, {numberSample("outsideTemp", 5)}, "shed").batch;
    EXPECT_EQ(both->entries().size(), 2u);
    EXPECT_EQ(valueOf(both, "windSpeed"), 20);
    EXPECT_EQ(both->objectForKey("windSpeed")->time(), Date(kNow)) << "with its own time";
    EXPECT_EQ(valueOf(take(600, {numberSample("outsideTemp", 6)}, "shed").batch, "windSpeed"), 20);
    const auto alone = take(601, {numberSample("outsideTemp", 7)}, "shed").batch;
    EXPECT_EQ(alone->objectForKey("windSpeed"), nullptr) << "a dead sensor says nothing";
    EXPECT_EQ(valueOf(m_station.current(), "windSpeed"), 20);
}

TEST_F(StationMerge, aSensorWithTwoKindsOfPacketsKeepsBoth) {
    take(0, {numberSample("windSpeed", 20), numberSample("windDir", 90)}, "5in1");
    const auto both = take(16, {numberSample("windSpeed", 21), numberSample("outsideTemp", 5)}, "5in1").batch;
    EXPECT_EQ(valueOf(both, "windSpeed"), 21);
    EXPECT_EQ(valueOf(both, "windDir"), 90);
    EXPECT_EQ(valueOf(both, "outsideTemp"), 5);
}

TEST_F(StationMerge, whatASensorSaysIsMissingIsLeftOutUntilItComesBack) {
    take(0, {numberSample("windSpeed", 20), numberSample("windDir", 90)}, "vane");
    EXPECT_EQ(take(16, {missingSample("windSpeed"), numberSample("windDir", 91)}, "vane")
                  .batch->objectForKey("windSpeed"),
              nullptr);
    EXPECT_EQ(take(32, {numberSample("outsideTemp", 5)}, "shed").batch->objectForKey("windSpeed"), nullptr);
    EXPECT_EQ(valueOf(take(48, {numberSample("windSpeed", 20)}, "vane").batch, "windSpeed"), 20);
    EXPECT_EQ(take(64, {missingSample("windSpeed"), missingSample("windDir")}, "vane").kind, Kind::Nothing);
    EXPECT_EQ(m_station.counts().empty, 1u);
    EXPECT_EQ(m_station.counts().missing, 3u);
}

TEST_F(StationMerge, aTransmissionRepeatedWithinTwoSecondsIsOneNotification) {
    EXPECT_EQ(take(0, {numberSample("windSpeed", 20), textSample("sky", "a")}, "vane").kind, Kind::News);
    EXPECT_EQ(take(0.3, {numberSample("windSpeed", 20), textSample("sky", "a")}, "vane").kind, Kind::Repeat);
    EXPECT_EQ(take(2, {numberSample("windSpeed", 20), textSample("sky", "a")}, "vane").kind, Kind::Repeat);
    EXPECT_EQ(take(2.01, {numberSample("windSpeed", 20), textSample("sky", "a")}, "vane").kind, Kind::News);
    EXPECT_EQ(take(2.5, {numberSample("windSpeed", 21), textSample("sky", "a")}, "vane").kind, Kind::News);
    EXPECT_EQ(take(2.6, {numberSample("windSpeed", 21), textSample("sky", "b")}, "vane").kind, Kind::News);
    EXPECT_EQ(take(2.7, {numberSample("windSpeed", 21), textSample("sky", "b")}, "other").kind, Kind::News)
        << "another sensor repeats nothing";
    EXPECT_EQ(m_station.counts().repeats, 2u);
    EXPECT_EQ(m_station.counts().packets, 7u);
}

TEST_F(StationMerge, repeatsOfTwoKindsOfPacketsMayAlternate) {
    const std::vector<PacketReading> wind = {numberSample("windSpeed", 20), numberSample("windDir", 90)};
    const std::vector<PacketReading> air = {numberSample("windSpeed", 20), numberSample("outsideTemp", 5)};
    EXPECT_EQ(take(0, wind, "5in1").kind, Kind::News);
    EXPECT_EQ(take(0.1, air, "5in1").kind, Kind::News);
    EXPECT_EQ(take(0.2, wind, "5in1").kind, Kind::Repeat);
    EXPECT_EQ(take(0.3, air, "5in1").kind, Kind::Repeat);
}

TEST_F(StationMerge, aRepeatThatTellsAnotherTimeIsNone) {
    EXPECT_EQ(m_station.take(timedSample(kNow - 100, kNow, {numberSample("windSpeed", 20)}), Date(kNow)).kind,
              Kind::News);
    EXPECT_EQ(m_station.take(timedSample(kNow - 99, kNow, {numberSample("windSpeed", 20)}), Date(kNow)).kind,
              Kind::Repeat);
    EXPECT_EQ(m_station.take(timedSample(kNow - 40, kNow, {numberSample("windSpeed", 20)}), Date(kNow)).kind,
              Kind::News);
}

TEST_F(StationMerge, aStationOfEqualValuesIsHeardAgainAndAgain) {
    int news = 0;
    for (int i = 0; i < 40; ++i)
        news += take(i * 1.5, {numberSample("windSpeed", 20)}).kind == Kind::News;
    EXPECT_EQ(news, 20) << "every second one is within two seconds of what was announced";
}

TEST_F(StationMerge, whatABrokerKeptIsShownButIsNoNews) {
    const Date long_ago(kNow - 86400);
    EXPECT_EQ(takeRetained(0, long_ago, {numberSample("windSpeed", 30)}).kind, Kind::Retained);
    EXPECT_EQ(valueOf(m_station.current(), "windSpeed"), 30);
    EXPECT_EQ(m_station.current()->objectForKey("windSpeed")->time(), long_ago);
    EXPECT_EQ(takeRetained(0, {}, {numberSample("windGust", 40)}).kind, Kind::Retained);
    EXPECT_FALSE(m_station.current()->objectForKey("windGust")->time()) << "nobody knows when";
    const auto batch = take(1, {numberSample("outsideTemp", 5)}, "shed").batch;
    EXPECT_EQ(batch->entries().size(), 1u) << "it is not fresh either";
    EXPECT_EQ(take(2, {numberSample("windSpeed", 30)}).kind, Kind::News) << "nor is its live twin a repeat";
    EXPECT_EQ(takeRetained(3, {}, {numberSample("windSpeed", 1)}).kind, Kind::Retained);
    EXPECT_EQ(valueOf(m_station.current(), "windSpeed"), 30) << "news is not undone";
    EXPECT_EQ(m_station.counts().retained, 3u);
}

TEST_F(StationMerge, theTableIsTheSameObjectWhileNothingIsTaken) {
    EXPECT_EQ(m_station.current()->entries().size(), 0u);
    take(0, {numberSample("windSpeed", 20)});
    const auto known = m_station.current();
    take(1, {numberSample("windSpeed", 20)});
    EXPECT_EQ(m_station.current(), known);
    take(16, {numberSample("windSpeed", 20)});
    EXPECT_NE(m_station.current(), known);
    EXPECT_EQ(known->objectForKey("windSpeed")->time(), Date(kNow)) << "a table given out never changes";
}

}  // namespace
}  // namespace vigil
