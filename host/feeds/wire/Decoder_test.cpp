#include "host/feeds/wire/Decoder.hpp"

#include <cstdlib>
#include <ctime>
#include <limits>
#include <new>

#include <gtest/gtest.h>

#include "host/feeds/OpenRecorded.hpp"
#include "host/feeds/wire/MakeDecoder.hpp"

namespace vigil {
namespace {

std::unique_ptr<Decoder> decoderOf(const char* url) {
    return makeDecoder(FeedUrl::parse(url).value());
}

TEST(Decoder, GivesReadyReadingsBackAsTheyAre) {
    const auto label = std::make_shared<const AgentPropertyLabel>(
        AgentPropertyLabel{"windGust", "Wind Gust", "km/h", kNumericType, false});
    const auto readings = Readings::make(
        {AgentProperty(label, {.value = 7, .unitValue = 25.2, .stringValue = "7", .time = Date(100)}),
         AgentProperty::text("sky", "Rain", Date(200)),
         AgentProperty::date("sunset", Date(300), std::nullopt)});
    for (const char* url : {"csv:a.csv", "upload://a:1/", "simulated:"}) {
        std::vector<Packet> packets;
        decoderOf(url)->decode({.route = "Roof", .arrived = Date(500), .ready = readings}, packets, {});
        ASSERT_EQ(packets.size(), 1u) << url;
        const Packet& packet = packets[0];
        EXPECT_EQ(packet.identity, "Roof");
        EXPECT_EQ(packet.time, Date(200)) << "the latest of its readings";
        EXPECT_EQ(packet.arrived, Date(500));
        ASSERT_EQ(packet.readings.size(), 3u);
        const PacketReading& gust = packet.readings[0];
        EXPECT_EQ(gust.key, "windGust");
        EXPECT_EQ(gust.name, "Wind Gust");
        EXPECT_EQ(gust.value, 7);
        EXPECT_EQ(gust.unit, Unit::None) << "no conversion is wanted";
        EXPECT_EQ(gust.unitValue, 25.2);
        EXPECT_EQ(gust.unitText, "km/h");
        EXPECT_EQ(gust.text, "7");
        EXPECT_EQ(gust.time, Date(100));
        EXPECT_FALSE(gust.visible);
        EXPECT_EQ(packet.readings[1].type, kTextType);
        EXPECT_EQ(packet.readings[1].text, "Rain");
        EXPECT_EQ(packet.readings[2].type, kDateType);
        EXPECT_EQ(packet.readings[2].value, 300);
    }
}

TEST(Decoder, LeavesReadyNumbersThatNobodyHasConvertedToTheStation) {
    const auto label = std::make_shared<const AgentPropertyLabel>(
        AgentPropertyLabel{"outsideTemp", "Outside Temperature", "°F", kNumericType});
    const auto readings = Readings::make({AgentProperty(label, {.value = 50, .unitValue = 50})});
    std::vector<Packet> packets;
    decoderOf("csv:a.csv")->decode({.arrived = Date(500), .ready = readings}, packets, {});
    ASSERT_EQ(packets.size(), 1u);
    EXPECT_EQ(packets[0].time, std::nullopt);
    EXPECT_EQ(packets[0].readings.at(0).value, 50);
    EXPECT_EQ(packets[0].readings.at(0).unitValue, std::nullopt);
    EXPECT_EQ(packets[0].readings.at(0).unitText, "°F");
}

TEST(Decoder, TakesWhatTheSimulationGives) {
    const auto source = simulatedSource(7, {.station = "Hill", .count = 1});
    const auto given = source->next();
    ASSERT_TRUE(given && given.value());
    std::vector<Packet> packets;
    decoderOf("simulated:")->decode({.arrived = Date(0), .ready = given.value()->readings}, packets, {});
    ASSERT_EQ(packets.size(), 1u);
    EXPECT_EQ(packets[0].time, given.value()->time);
    EXPECT_EQ(packets[0].readings.size(), given.value()->readings->entries().size());
}

TEST(Decoder, WorksWithoutAnybodyWhoHearsOfProblems) {
    std::vector<Packet> packets;
    decoderOf("lines:-")->decode({.payload = "{", .arrived = Date(0)}, packets, {});
    decoderOf("upload://a:1/")->decode({.payload = "tempf=x&ID=1", .arrived = Date(0)}, packets, {});
    EXPECT_EQ(packets.size(), 1u);
}

TEST(Decoder, ThrowsNothingAndKeepsWhatWasThereBefore) {
    // A zone that cannot be asked stands for anything that goes wrong inside.
    const auto url = FeedUrl::parse("lines:-?form=rtl433").value();
    const auto decoder = makeDecoder(url, [](Date, Date) -> Date { throw std::bad_alloc(); });
    std::vector<Packet> packets(1);
    std::vector<std::string> problems;
    EXPECT_NO_THROW(
        decoder->decode({.payload = R"({"time":"2026-11-21 10:34:18","model":"M"})", .arrived = Date(0)},
                        packets, [&](const std::string& words) { problems.push_back(words); }));
    EXPECT_EQ(packets.size(), 1u);
    ASSERT_EQ(problems.size(), 1u);
    EXPECT_TRUE(problems[0].starts_with("the message cannot be read: ")) << problems[0];
}

TEST(Decoder, NeverTellsAPassword) {
    std::vector<Packet> packets;
    std::string told;
    const auto decoder = decoderOf("upload://a:1/");
    for (const char* message : {"ID=A&PASSWORD=hush&tempf=x", "PASSWORD=hush&tempf=-", "PASSWORD=hush"})
        decoder->decode({.payload = message, .arrived = Date(0)}, packets,
                        [&](const std::string& words) { told += words; });
    ASSERT_FALSE(told.empty());
    EXPECT_EQ(told.find("hush"), std::string::npos) << told;
    for (const Packet& packet : packets)
        for (const PacketReading& reading : packet.readings)
            EXPECT_EQ((reading.key + reading.text).find("hush"), std::string::npos);
}

/// The zone of the process, for as long as this lives.
class Zone {
  public:
    explicit Zone(const char* name) {
        if (const char* before = std::getenv("TZ")) m_before = before;
        ::setenv("TZ", name, 1);
        ::tzset();
    }
    ~Zone() {
        if (m_before)
            ::setenv("TZ", m_before->c_str(), 1);
        else
            ::unsetenv("TZ");
        ::tzset();
    }

  private:
    std::optional<std::string> m_before;
};

Date date(const char* text) {
    return parseDate(text).value();
}

TEST(HostLocalTime, IsThatOfTheProcessesZoneInWinterAndSummer) {
    const Zone zone("CET-1CEST,M3.5.0,M10.5.0/3");
    const Date near = date("2026-06-01T00:00:00Z");
    EXPECT_EQ(hostLocalTime(date("2026-01-15T12:00:00Z"), near), date("2026-01-15T11:00:00Z"));
    EXPECT_EQ(hostLocalTime(date("2026-07-15T12:00:00.5Z"), near), date("2026-07-15T10:00:00.5Z"));
}

TEST(HostLocalTime, OfAnHourThatComesTwiceIsTheOneNearerToTheArrival) {
    const Zone zone("CET-1CEST,M3.5.0,M10.5.0/3");
    const Date wallClock = date("2026-10-25T02:30:00Z");
    EXPECT_EQ(hostLocalTime(wallClock, date("2026-10-25T00:30:05Z")), date("2026-10-25T00:30:00Z"));
    EXPECT_EQ(hostLocalTime(wallClock, date("2026-10-25T01:30:05Z")), date("2026-10-25T01:30:00Z"));
}

TEST(HostLocalTime, OfAnHourThatIsLeftOutIsStillATime) {
    const Zone zone("CET-1CEST,M3.5.0,M10.5.0/3");
    EXPECT_EQ(hostLocalTime(date("2026-03-29T02:30:00Z"), date("2026-03-29T01:30:00Z")),
              date("2026-03-29T01:30:00Z"));
}

TEST(HostLocalTime, IsUtcWhereTheZoneIs) {
    const Zone zone("UTC0");
    const Date noon = date("2026-07-15T12:00:00Z");
    EXPECT_EQ(hostLocalTime(noon, noon), noon);
}

TEST(HostLocalTime, LeavesATimeThatNoCalendarHolds) {
    const Date far(1e300);
    EXPECT_EQ(hostLocalTime(far, Date(0)), far);
    const Date none(std::numeric_limits<double>::quiet_NaN());
    EXPECT_NE(hostLocalTime(none, Date(0)), none) << "NaN stays NaN";
}

}  // namespace
}  // namespace vigil
