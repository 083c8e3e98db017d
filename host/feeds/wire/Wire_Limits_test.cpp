#include <gtest/gtest.h>

#include "host/feeds/Recorded.hpp"
#include "host/feeds/wire/MakeDecoder.hpp"
#include "host/feeds/wire/UploadFields.hpp"
#include "host/feeds/wire/WeewxReader.hpp"
#include "host/feeds/wire/WireReading.hpp"

namespace vigil {
namespace {

struct Outcome {
    std::vector<Packet> packets;
    std::vector<std::string> problems;
};

class Feed {
  public:
    explicit Feed(const char* url) : m_decoder(makeDecoder(FeedUrl::parse(url).value())) {}
    Outcome take(std::string payload, std::string route = {}) {
        Outcome outcome;
        m_decoder->decode({.route = std::move(route), .payload = std::move(payload), .arrived = Date(0)},
                          outcome.packets,
                          [&outcome](const std::string& words) { outcome.problems.push_back(words); });
        return outcome;
    }

  private:
    std::unique_ptr<Decoder> m_decoder;
};

std::string many(const char* begin, const char* each, const char* between, std::size_t count,
                 const char* end) {
    std::string text = begin;
    for (std::size_t i = 0; i < count; ++i) {
        if (i > 0) text += between;
        std::string one = each;
        one.replace(one.find('@'), 1, std::to_string(i));
        text += one;
    }
    return text + end;
}

TEST(WireLimits, AMessageGivesAtMostSoManyReadings) {
    const auto expectFull = [](const Outcome& fits, const Outcome& over) {
        EXPECT_TRUE(fits.problems.empty());
        ASSERT_EQ(fits.packets.size(), 1u);
        EXPECT_EQ(fits.packets[0].readings.size(), kMostReadingsOfMessage);
        ASSERT_EQ(over.packets.size(), 1u);
        EXPECT_EQ(over.packets[0].readings.size(), kMostReadingsOfMessage);
        ASSERT_EQ(over.problems.size(), 1u);
        EXPECT_EQ(over.problems[0],
                  "a message gives at most 512 readings; \"k512\" and all further ones are left out");
    };
    const auto lines = [](std::size_t count) {
        return Feed("lines:-").take(many("{\"readings\":{", "\"k@\":1", ",", count, "}}"));
    };
    expectFull(lines(512), lines(514));
    const auto radio = [](std::size_t count) {
        return Feed("lines:-?form=rtl433").take(many("{", "\"k@\":1", ",", count, "}"));
    };
    expectFull(radio(512), radio(514));
    const auto weewx = [](std::size_t count) {
        return Feed("lines:-?form=weewx").take(many("{", "\"k@\":1", ",", count, "}"));
    };
    expectFull(weewx(512), weewx(514));
    const auto upload = [](std::size_t count) {
        return Feed("upload://a:1/").take(many("ID=1&", "k@=1", "&", count, ""));
    };
    expectFull(upload(512), upload(514));
}

TEST(WireLimits, AMessageHasAtMostSoManyBytes) {
    Feed feed("lines:-");
    const std::string message = R"({"readings":{"a":1}})";
    const std::string longest = message + std::string(kLongestRow - message.size(), ' ');
    EXPECT_EQ(feed.take(longest).packets.size(), 1u);
    const Outcome over = feed.take(longest + " ");
    EXPECT_TRUE(over.packets.empty());
    EXPECT_EQ(over.problems, std::vector<std::string>{"more than 1048576 bytes; left out"});
    EXPECT_EQ(feed.take(message).packets.size(), 1u) << "the next message is none the worse";
}

TEST(WireLimits, AnUploadHasAtMostSoManyBytes) {
    const std::string begin = "PASSKEY=1&a=";
    const std::string longest = begin + std::string(kLongestUpload - begin.size(), 'x');
    EXPECT_EQ(parseUpload("POST", "/", "", longest).form, UploadFields::Form::Ecowitt);
    EXPECT_EQ(parseUpload("POST", "/", "", longest + "x").form, UploadFields::Form::None);
    EXPECT_EQ(parseUpload("GET", "/" + longest + "x", "", "").form, UploadFields::Form::None);
    const Outcome over = Feed("upload://a:1/").take(longest + "x");
    EXPECT_TRUE(over.packets.empty());
    EXPECT_EQ(over.problems, std::vector<std::string>{"upload: more than 65536 bytes; left out"});
}

TEST(WireLimits, SoManyFieldsOfAnUploadAreRead) {
    EXPECT_EQ(uploadFields(many("", "k@=1", "&", kMostUploadFields, "")).size(), kMostUploadFields);
    EXPECT_EQ(uploadFields(many("", "k@=1", "&", kMostUploadFields + 5, "")).size(), kMostUploadFields);
}

TEST(WireLimits, ANameHasAtMostSoManyBytes) {
    const std::string longest(kLongestName, 'n');
    const auto lines = [](const std::string& name) {
        return Feed("lines:-").take("{\"readings\":{\"" + name + "\":1}}");
    };
    const auto radio = [](const std::string& name) {
        return Feed("lines:-").take("{\"model\":\"M\",\"" + name + "\":1}");
    };
    const auto upload = [](const std::string& name) {
        return Feed("upload://a:1/").take("ID=1&" + name + "=1");
    };
    const auto weewx = [](const std::string& name) {
        return Feed("lines:-?form=weewx").take("{\"" + name + "\":1}");
    };
    const auto expectOne = [&longest](const auto& take) {
        const Outcome fits = take(longest);
        EXPECT_TRUE(fits.problems.empty());
        EXPECT_EQ(fits.packets.at(0).readings.size(), 1u);
        const Outcome over = take(longest + "n");
        EXPECT_EQ(over.problems.size(), 1u);
        EXPECT_TRUE(over.packets.at(0).readings.empty());
    };
    expectOne(lines);
    expectOne(radio);
    expectOne(upload);
    expectOne(weewx);
}

TEST(WireLimits, AValueOfATopicHasAtMostSoManyBytes) {
    Feed feed("mqtt://b/%23");
    EXPECT_EQ(feed.take(std::string(1024, 'x'), "home/note").packets.size(), 1u);
    const Outcome over = feed.take(std::string(1025, 'x'), "home/note");
    EXPECT_TRUE(over.packets.empty());
    EXPECT_EQ(over.problems, std::vector<std::string>{"weewx: note: more than 1024 bytes; left out"});
}

TEST(WireLimits, TheUnitSystemsOfSoManyGroupsAreRemembered) {
    Feed feed("mqtt://b/%23");
    for (std::size_t i = 0; i < WeewxReader::kMostGroups + 1; ++i)
        feed.take("1", std::to_string(i) + "/usUnits");
    const auto last = std::to_string(WeewxReader::kMostGroups - 1);
    EXPECT_EQ(feed.take("50", last + "/outTemp").packets.size(), 1u);
    EXPECT_TRUE(feed.take("50", std::to_string(WeewxReader::kMostGroups) + "/outTemp").packets.empty());
    feed.take("17", last + "/usUnits");
    EXPECT_EQ(feed.take("5", last + "/outTemp").packets.at(0).readings.at(0).unit, Unit::Celsius)
        << "a group that is known may change its system";
}

}  // namespace
}  // namespace vigil
