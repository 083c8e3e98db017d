#include "host_contract/AgentProperty.hpp"

#include <gtest/gtest.h>

#include "host_contract/ContractClasses.hpp"
#include "tests/support/MemoryArchive.hpp"

namespace vigil {
namespace {

AgentProperty gust() {
    auto label = std::make_shared<AgentPropertyLabel>();
    label->propertyName = "windGust";
    label->name = "Gust";
    label->unit = "km/h";
    label->visible = false;
    return {label, {.value = 10, .unitValue = 36, .time = Date(5)}};
}

TEST(AgentProperty, TextsThatAreNotGivenFollowFromTheNumbers) {
    EXPECT_EQ(gust().stringValue(), "10");
    EXPECT_EQ(gust().unitStringValueWithUnitShort(), "36 km/h");
    EXPECT_EQ(gust().description(), "windGust = 36 km/h");
    const auto plain = AgentProperty::number("uv", 0.1, std::nullopt);
    EXPECT_EQ(plain.unitStringValueWithUnitShort(), "0.1");
    EXPECT_EQ(plain.name(), "uv");
}

TEST(AgentProperty, GivenTextsStandAsTheyAre) {
    const AgentProperty property(
        gust().label(), {.value = 1, .stringValue = "one", .unitStringValueWithUnitShort = "just one"});
    EXPECT_EQ(property.stringValue(), "one");
    EXPECT_EQ(property.givenStringValue(), "one");
    EXPECT_EQ(property.unitStringValueWithUnitShort(), "just one");
    EXPECT_EQ(gust().givenStringValue(), std::nullopt);
}

TEST(AgentProperty, ATextReadingIsItsTextAndHasNoNumber) {
    const auto text = AgentProperty::text("windDirText", "NNE", Date(1));
    EXPECT_EQ(text.type(), kTextType);
    EXPECT_EQ(text.value(), 0);
    EXPECT_EQ(text.unitValue(), 0);
    EXPECT_EQ(text.stringValue(), "NNE");
    EXPECT_EQ(text.unitStringValueWithUnitShort(), "NNE");
    const AgentProperty without(text.label(), {.value = 3});
    EXPECT_EQ(without.stringValue(), "");
}

TEST(AgentProperty, ADateReadingIsItsSecondsAndPrintsAsADate) {
    const auto date = AgentProperty::date("sunrise", Date(60), std::nullopt);
    EXPECT_EQ(date.type(), kDateType);
    EXPECT_EQ(date.value(), 60);
    EXPECT_EQ(date.unitValue(), 60);
    EXPECT_EQ(date.stringValue(), "2001-01-01 00:01:00 +0000");
    EXPECT_EQ(date.unitStringValueWithUnitShort(), "2001-01-01 00:01:00 +0000");
}

TEST(AgentProperty, ACopyIsASnapshotOfEveryMember) {
    auto original = std::make_unique<AgentProperty>(gust());
    const AgentProperty copy = *original;
    original.reset();
    EXPECT_EQ(copy.description(), "windGust = 36 km/h");
    EXPECT_EQ(copy.time(), Date(5));
    EXPECT_FALSE(copy.visible());
}

class AgentPropertyArchive : public testing::Test {
  protected:
    AgentPropertyArchive() { registerContractClasses(); }
    static std::shared_ptr<AgentProperty> through(const AgentProperty& property) {
        return MemoryArchive(std::make_shared<AgentProperty>(property)).readAs<AgentProperty>(nullptr);
    }
};

TEST_F(AgentPropertyArchive, KeepsEveryMember) {
    const auto read = through(gust());
    ASSERT_TRUE(read);
    EXPECT_EQ(read->propertyName(), "windGust");
    EXPECT_EQ(read->name(), "Gust");
    EXPECT_EQ(read->unit(), "km/h");
    EXPECT_EQ(read->type(), kNumericType);
    EXPECT_FALSE(read->visible());
    EXPECT_EQ(read->value(), 10);
    EXPECT_EQ(read->unitValue(), 36);
    EXPECT_EQ(read->time(), Date(5));
    EXPECT_EQ(read->givenStringValue(), std::nullopt);
    EXPECT_EQ(through(AgentProperty::text("t", "", std::nullopt))->givenStringValue(), "");
    EXPECT_EQ(through(AgentProperty::date("d", Date(1), std::nullopt))->type(), kDateType);
    EXPECT_TRUE(through(AgentProperty::number("n", 1, std::nullopt))->visible());
}

TEST_F(AgentPropertyArchive, WritesOnlyWhatWasGiven) {
    MemoryArchive archive(std::make_shared<AgentProperty>(AgentProperty::number("uv", 3, std::nullopt)));
    EXPECT_EQ(archive.rootKeys(),
              (std::vector<std::string>{"propertyName", "name", "type", "value", "unitValue"}));
    EXPECT_EQ(archive.rootEntry("type"), Value("KZNu"));
}

TEST_F(AgentPropertyArchive, ATypeThatIsNoCodeOfFourCharactersIsRefused) {
    MemoryArchive archive(std::make_shared<AgentProperty>(gust()));
    archive.setRootEntry("type", Value("KZNum"));
    archive.read(nullptr);
    EXPECT_EQ(archive.refusals(),
              std::vector<std::string>{"AgentProperty.type: expected a code of four characters"});
}

TEST(FourCharCode, HoldsTheFirstCharacterInTheHighestByte) {
    EXPECT_EQ(static_cast<std::uint32_t>(kTextType), 0x4B5A5374U);
    EXPECT_EQ(fourCharText(kDateType), "KZDa");
    EXPECT_EQ(fourCharCode("ab"), fourCharCode("ab  "));
}

TEST(IsLaterThanDate, AnAbsentArgumentIsEarlierThanEveryDateAndAnAbsentReceiverLaterThanNone) {
    const std::optional<Date> none, past = Date::distantPast(), early = Date(1), late = Date(2);
    EXPECT_TRUE(isLaterThanDate(late, early));
    EXPECT_FALSE(isLaterThanDate(early, late));
    EXPECT_FALSE(isLaterThanDate(early, early));
    EXPECT_TRUE(isLaterThanDate(past, none));
    EXPECT_FALSE(isLaterThanDate(none, past));
    EXPECT_FALSE(isLaterThanDate(none, none));
}

}  // namespace
}  // namespace vigil
