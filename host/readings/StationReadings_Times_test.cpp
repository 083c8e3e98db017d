#include <limits>

#include <gtest/gtest.h>

#include "host/readings/PacketSamples.hpp"
#include "host/readings/SensorClock.hpp"
#include "host/readings/StationReadings.hpp"

namespace vigil {
namespace {

using Kind = Taken::Kind;
using Verdict = SensorClock::Verdict;

constexpr double kNow = 8e8;

TEST(SensorClock, aStragglerIsLateAndWhatFollowsIsNot) {
    SensorClock clock;
    EXPECT_EQ(clock.judge(Date(100), Date(1000)), Verdict::InOrder);
    EXPECT_EQ(clock.judge(Date(100), Date(1001)), Verdict::InOrder) << "equal is not older";
    EXPECT_EQ(clock.judge(Date(99), Date(1002)), Verdict::Late);
    EXPECT_EQ(clock.judge(Date(101), Date(1003)), Verdict::InOrder);
}

TEST(SensorClock, aBacklogStaysLateInWhateverOrderItComes) {
    SensorClock clock;
    clock.judge(Date(10000), Date(10000));
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(clock.judge(Date(9000 + i), Date(10001 + i * 0.01)), Verdict::Late)
            << "oldest first, at once";
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(clock.judge(Date(9000 - i * 16), Date(10002 + i * 16)), Verdict::Late) << "newest first";
}

TEST(SensorClock, timesThatGoOnFromAnEarlierOneAreBelieved) {
    SensorClock clock;
    clock.judge(Date(10000), Date(500));
    // One o'clock comes a second time.
    EXPECT_EQ(clock.judge(Date(6416), Date(516)), Verdict::Late);
    EXPECT_EQ(clock.judge(Date(6416), Date(516.2)), Verdict::Late) << "the same transmission again";
    EXPECT_EQ(clock.judge(Date(6432), Date(532)), Verdict::Late);
    EXPECT_EQ(clock.judge(Date(6432), Date(532.2)), Verdict::Late);
    EXPECT_EQ(clock.judge(Date(6448), Date(548)), Verdict::SetBack);
    EXPECT_EQ(clock.judge(Date(6464), Date(564)), Verdict::InOrder);
}

TEST(SensorClock, aSenderOfManyPacketsASecondIsBelievedAfterSomeSeconds) {
    SensorClock clock;
    clock.judge(Date(10000), Date(500));
    int late = 0;
    double at = 500;
    while (late < 1000) {
        at += 0.1;
        const Verdict verdict = clock.judge(Date(9000 + at), Date(at));
        if (verdict == Verdict::SetBack) break;
        EXPECT_EQ(verdict, Verdict::Late);
        ++late;
    }
    EXPECT_NEAR(late, 50, 2);
}

class StationTimes : public ::testing::Test {
  protected:
    Kind take(double time, double at, double speed, std::string sensor = {}) {
        m_taken = m_station.take(
            timedSample(kNow + time, kNow + at, {numberSample("windSpeed", speed)}, std::move(sensor)),
            Date(kNow + at));
        return m_taken.kind;
    }
    std::optional<Date> timeOfWind() const { return m_taken.batch->objectForKey("windSpeed")->time(); }

    StationReadings m_station{{}};
    Taken m_taken;
};

TEST_F(StationTimes, areThoseOfThePacketElseOfItsReadingElseOfItsArrival) {
    take(-30, 0, 1);
    EXPECT_EQ(timeOfWind(), Date(kNow - 30));
    Packet packet = packetSample(kNow + 5, {numberSample("windSpeed", 2), numberSample("windGust", 3)});
    packet.readings[1].time = Date(kNow - 7);
    m_taken = m_station.take(packet, Date(kNow + 6));
    EXPECT_EQ(timeOfWind(), Date(kNow + 5));
    EXPECT_EQ(m_taken.batch->objectForKey("windGust")->time(), Date(kNow - 7));
}

TEST_F(StationTimes, aPacketThatComesLateIsDropped) {
    EXPECT_EQ(take(0, 0, 1), Kind::News);
    EXPECT_EQ(take(-1, 3, 2), Kind::Late);
    EXPECT_EQ(take(-1, 4, 2, "other"), Kind::News) << "a sensor that is new has not sent a later one";
    EXPECT_EQ(take(16, 16, 3), Kind::News);
    EXPECT_EQ(m_station.counts().late, 1u);
    EXPECT_EQ(m_station.current()->objectForKey("windSpeed")->value(), 3);
}

TEST_F(StationTimes, aSensorWhoseClockWasSetBackIsHeardAgain) {
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(take(i * 16, i * 16, i), Kind::News);
    EXPECT_EQ(take(-3520, 80, 5), Kind::Late);
    EXPECT_EQ(take(-3504, 96, 6), Kind::Late);
    EXPECT_EQ(take(-3488, 112, 7), Kind::News);
    EXPECT_EQ(timeOfWind(), Date(kNow - 3488));
    EXPECT_EQ(take(-3472, 128, 8), Kind::News);
    EXPECT_EQ(m_station.counts().jumps, 1u);
    EXPECT_EQ(m_station.counts().late, 2u);
}

TEST_F(StationTimes, aTimeThatCannotBeIsTheArrival) {
    const double wrong[] = {3601, 1e300, -1e300, std::numeric_limits<double>::quiet_NaN(),
                            -std::numeric_limits<double>::infinity()};
    double at = 0;
    for (const double time : wrong) {
        EXPECT_EQ(take(time + at, at, at), Kind::News);
        EXPECT_EQ(timeOfWind(), Date(kNow + at));
        at += 16;
    }
    EXPECT_EQ(m_station.counts().wrongTimes, 5u);
    EXPECT_EQ(take(3600 + at, at, 1), Kind::News);
    EXPECT_EQ(timeOfWind(), Date(kNow + at + 3600)) << "an hour ahead is a time zone's mistake, and kept";
    Packet packet = packetSample(kNow + 200, {numberSample("windGust", 3)});
    packet.readings[0].time = Date(kNow + 86400);
    m_taken = m_station.take(packet, Date(kNow + 200));
    EXPECT_EQ(m_taken.batch->objectForKey("windGust")->time(), Date(kNow + 200));
    EXPECT_EQ(m_station.counts().wrongTimes, 6u);
}

TEST_F(StationTimes, equalRowsOfARecordingAreNoRepeatsHoweverFastTheyAreBrought) {
    const auto bring = [&](double recorded, double at) {
        Packet packet = timedSample(kNow + at, kNow + at, {numberSample("windSpeed", 3)});
        packet.recorded = Date(recorded);
        return m_station.take(packet, Date(kNow + at)).kind;
    };
    EXPECT_EQ(bring(300, 0), Kind::News);
    EXPECT_EQ(bring(600, 0.1), Kind::News) << "five minutes lay between them";
    EXPECT_EQ(bring(600, 0.2), Kind::Repeat) << "the same row twice";
    EXPECT_EQ(bring(900, 0.3), Kind::News);
    EXPECT_EQ(m_station.counts().repeats, 1u);
}

TEST_F(StationTimes, aRecordingMayBeOfTimesToCome) {
    Packet packet =
        timedSample(kNow + 9e6, kNow, {numberSample("windSpeed", 3), numberSample("windGust", 4)});
    packet.recorded = packet.time;
    packet.readings[1].time = Date(kNow + 8e6);
    m_taken = m_station.take(packet, Date(kNow));
    EXPECT_EQ(timeOfWind(), Date(kNow + 9e6));
    EXPECT_EQ(m_taken.batch->objectForKey("windGust")->time(), Date(kNow + 8e6));
    EXPECT_EQ(m_station.counts().wrongTimes, 0u);
    packet.time = packet.recorded = Date(std::numeric_limits<double>::quiet_NaN());
    m_station.take(packet, Date(kNow + 16));
    EXPECT_EQ(m_station.counts().wrongTimes, 1u) << "what is no time at all stays none";
}

TEST_F(StationTimes, theHostsClockMayBeSetBack) {
    EXPECT_EQ(take(0, 0, 1), Kind::News);
    EXPECT_EQ(take(16, 16, 1), Kind::News);
    EXPECT_EQ(take(-7200, -7200, 1), Kind::News) << "neither late nor a repeat";
    EXPECT_EQ(take(-7184, -7184, 2), Kind::News);
    EXPECT_EQ(m_station.counts().jumps, 1u);
    EXPECT_EQ(m_station.counts().late, 0u);
    EXPECT_EQ(take(-7186, -7186, 2), Kind::Late) << "a clock that is slowed down is not set back";
    EXPECT_EQ(m_station.counts().jumps, 1u);
}

TEST_F(StationTimes, whatIsFreshGrowsOldAlsoAfterTheHostsClockWasSetBack) {
    const auto gust = [&](double at) {
        m_taken =
            m_station.take(packetSample(kNow + at, {numberSample("windGust", 25)}, "shed"), Date(kNow + at));
        EXPECT_EQ(m_taken.kind, Kind::News);
        return m_taken.batch && m_taken.batch->objectForKey("windSpeed");
    };
    EXPECT_EQ(take(0, 0, 20, "vane"), Kind::News);
    EXPECT_TRUE(gust(10));
    EXPECT_TRUE(gust(-7200));
    EXPECT_TRUE(gust(-7200 + 597));
    EXPECT_FALSE(gust(-7200 + 601));
}

TEST_F(StationTimes, ofMoreSensorsThanAreRememberedTheOneHeardLongestAgoIsForgotten) {
    for (std::size_t i = 0; i <= StationReadings::kMostSensors; ++i)
        take(100, 100 + static_cast<double>(i), 1, "s" + std::to_string(i));
    EXPECT_EQ(take(50, 500, 2, "s1"), Kind::Late);
    EXPECT_EQ(take(50, 501, 2, "s0"), Kind::News);
}

}  // namespace
}  // namespace vigil
