#include "host/feeds/ReadingJson.hpp"

#include <cmath>
#include <limits>
#include <string>

#include <gtest/gtest.h>
#include <simdjson.h>

namespace vigil {
namespace {

const std::optional<Date> kNoon = Date(1000);

class ReadingJson : public testing::Test {
  protected:
    simdjson::dom::element parse(const std::string& text) {
        m_text = simdjson::padded_string(text);
        return m_parser.parse(m_text).value();
    }

    std::optional<AgentProperty> reading(const std::string& text) {
        const auto made = readingFromJson(parse(text), {.key = "k", .time = kNoon}, "readings.k");
        EXPECT_TRUE(made) << (made ? "" : made.error().message);
        return made ? made.value() : std::nullopt;
    }

    std::string errorOf(const std::string& text) {
        const auto made = readingFromJson(parse(text), {.key = "k", .time = kNoon}, "readings.k");
        return made ? "no error" : made.error().message;
    }

    simdjson::dom::parser m_parser;
    simdjson::padded_string m_text;
};

TEST_F(ReadingJson, aNumberIsANumericReadingThatPrintsItself) {
    const auto made = reading("8.5");
    ASSERT_TRUE(made);
    EXPECT_EQ(made->propertyName(), "k");
    EXPECT_EQ(made->name(), "k");
    EXPECT_EQ(made->value(), 8.5);
    EXPECT_EQ(made->unitValue(), 8.5);
    EXPECT_EQ(made->stringValue(), "8.5");
    EXPECT_EQ(made->unit(), "");
    EXPECT_EQ(made->type(), kNumericType);
    EXPECT_TRUE(made->visible());
    EXPECT_EQ(made->time(), kNoon);
}

TEST_F(ReadingJson, aWholeNumberBeyondTheSignedRangeIsANumber) {
    EXPECT_EQ(reading("18446744073709551615")->value(), 18446744073709551615.0);
    EXPECT_EQ(reading("-7")->value(), -7);
}

TEST_F(ReadingJson, aTextIsATextReadingWithoutNumbers) {
    const auto made = reading(R"("Ra\u0000in")");
    EXPECT_EQ(made->stringValue(), std::string("Ra\0in", 5));
    EXPECT_EQ(made->value(), 0);
    EXPECT_EQ(made->unitValue(), 0);
    EXPECT_EQ(made->type(), kTextType);
}

TEST_F(ReadingJson, theShortFormTakesInfinityForAText) {
    EXPECT_EQ(reading(R"("Infinity")")->type(), kTextType);
}

TEST_F(ReadingJson, aDateIsItsSecondsSince2001) {
    const auto made = reading(R"({"date":"2001-01-02T00:00:01+00:00"})");
    EXPECT_EQ(made->value(), 86401);
    EXPECT_EQ(made->unitValue(), 86401);
    EXPECT_EQ(made->type(), kDateType);
    EXPECT_EQ(made->stringValue(), "2001-01-02 00:00:01 +0000");
}

TEST_F(ReadingJson, nullIsAbsentAndSoIsALongFormOfNulls) {
    EXPECT_FALSE(reading("null"));
    EXPECT_FALSE(reading(R"({"value":null,"unit":"°C"})"));
    EXPECT_TRUE(reading(R"({"value":null,"unitValue":1})"));
}

TEST_F(ReadingJson, oneOfTheTwoNumbersStandsForTheOther) {
    EXPECT_EQ(reading(R"({"value":3})")->unitValue(), 3);
    EXPECT_EQ(reading(R"({"unitValue":4})")->value(), 4);
    const auto both = reading(R"({"value":3,"unitValue":37.4})");
    EXPECT_EQ(both->value(), 3);
    EXPECT_EQ(both->unitValue(), 37.4);
}

TEST_F(ReadingJson, theLongFormSetsEveryMember) {
    const auto made = reading(
        R"({"propertyName":"k","name":"Kay","value":1,"unitValue":2,"stringValue":"one","time":"2001-01-01",)"
        R"("type":"ABCD","visible":false,"unit":"m","unitStringValueWithUnitShort":"2 metres"})");
    EXPECT_EQ(made->name(), "Kay");
    EXPECT_EQ(made->value(), 1);
    EXPECT_EQ(made->unitValue(), 2);
    EXPECT_EQ(made->stringValue(), "one");
    EXPECT_EQ(made->time(), Date(0));
    EXPECT_EQ(fourCharText(made->type()), "ABCD");
    EXPECT_FALSE(made->visible());
    EXPECT_EQ(made->unit(), "m");
    EXPECT_EQ(made->unitStringValueWithUnitShort(), "2 metres");
}

TEST_F(ReadingJson, theKindFollowsFromWhatIsGiven) {
    EXPECT_EQ(reading(R"({"stringValue":"x"})")->type(), kTextType);
    EXPECT_EQ(reading(R"({"stringValue":"x","value":1})")->type(), kNumericType);
    EXPECT_EQ(reading(R"({"stringValue":"x","unitValue":1})")->type(), kNumericType);
    EXPECT_EQ(reading(R"({"date":"2001-01-01","stringValue":"x"})")->type(), kDateType);
    EXPECT_EQ(reading(R"({"value":1,"type":"KZSt"})")->type(), kTextType);
}

TEST_F(ReadingJson, theLongFormTakesNumbersThatAreNotFinite) {
    EXPECT_TRUE(std::isnan(reading(R"({"value":"NaN"})")->value()));
    EXPECT_EQ(reading(R"({"value":"Infinity"})")->value(), std::numeric_limits<double>::infinity());
    EXPECT_EQ(reading(R"({"unitValue":"-Infinity"})")->unitValue(), -std::numeric_limits<double>::infinity());
}

TEST_F(ReadingJson, aMistakeIsToldWithItsPath) {
    EXPECT_EQ(errorOf("true"), "readings.k: expected a number, a text, an object or null");
    EXPECT_EQ(errorOf("[1]"), "readings.k: expected a number, a text, an object or null");
    EXPECT_EQ(errorOf(R"({"value":"1"})"), "readings.k.value: expected a number");
    EXPECT_EQ(errorOf(R"({"name":1})"), "readings.k.name: expected a text");
    EXPECT_EQ(errorOf(R"({"value":1,"visible":1})"), "readings.k.visible: expected true or false");
    EXPECT_EQ(errorOf(R"({"value":1,"type":"KZNum"})"),
              "readings.k.type: expected a text of four characters");
    EXPECT_EQ(errorOf(R"({"value":1,"colour":1})"), "readings.k.colour: a reading has no such member");
    EXPECT_EQ(errorOf(R"({"date":5})"), "readings.k.date: expected a time as a text");
    EXPECT_EQ(errorOf("{}"), "readings.k: expected a value, a unitValue, a stringValue or a date");
    EXPECT_EQ(errorOf(R"({"value":1,"propertyName":"j"})"),
              "readings.k.propertyName: expected \"k\", the key it stands under");
}

TEST_F(ReadingJson, aLabelThatFitsIsUsedAgain) {
    const auto first = reading("1");
    const auto again =
        readingFromJson(parse("2"), {.key = "k", .time = kNoon, .like = first->label()}, "readings.k");
    EXPECT_EQ(again.value()->label(), first->label());
    const auto other =
        readingFromJson(parse(R"({"value":2,"unit":"m"})"), {.key = "k", .like = first->label()}, "");
    EXPECT_NE(other.value()->label(), first->label());
    EXPECT_EQ(other.value()->unit(), "m");
}

TEST_F(ReadingJson, anObjectGivesItsReadingsInTheirOrderWithKeysAsTheyStand) {
    const auto made =
        readingsFromJsonObject(parse(R"({"b c":1,"a":null,"1":"x","b c":2})"), kNoon, "readings");
    ASSERT_TRUE(made);
    EXPECT_EQ(made.value()->table()->keys(), (std::vector<std::string>{"b c", "1"}));
    EXPECT_EQ(made.value()->entries().size(), 3u);
    EXPECT_EQ(made.value()->objectForKey("b c")->value(), 2);
}

TEST_F(ReadingJson, anObjectWithAMistakeGivesNothingButItsPath) {
    const auto made = readingsFromJsonObject(parse(R"({"a":1,"b":{"value":{}}})"), kNoon, "readings");
    ASSERT_FALSE(made);
    EXPECT_EQ(made.error().message, "readings.b.value: expected a number");
    EXPECT_EQ(readingsFromJsonObject(parse("[]"), kNoon, "readings").error().message,
              "readings: expected an object from key to reading");
}

TEST_F(ReadingJson, aListGivesItsReadingsInItsOrder) {
    const auto made = readingsFromJsonList(
        parse(R"([{"propertyName":"b","value":1},{"propertyName":"a","stringValue":"x"}])"), kNoon,
        "properties");
    ASSERT_TRUE(made);
    EXPECT_EQ(made.value()->table()->keys(), (std::vector<std::string>{"b", "a"}));
}

TEST_F(ReadingJson, anEntryOfAListNeedsItsName) {
    EXPECT_EQ(
        readingsFromJsonList(parse(R"([{"propertyName":"b","value":1},{"value":1}])"), kNoon, "properties")
            .error()
            .message,
        "properties[1]: expected an object with its propertyName");
    EXPECT_EQ(readingsFromJsonList(parse(R"([{"propertyName":"b","value":[]}])"), kNoon, "properties")
                  .error()
                  .message,
              "properties[0].value: expected a number");
    EXPECT_EQ(readingsFromJsonList(parse("{}"), kNoon, "properties").error().message,
              "properties: expected a list of readings");
}

}  // namespace
}  // namespace vigil
