#include "host/kit/KeyedArchive.hpp"

#include <bit>
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "host_contract/EvaluationDictionary.hpp"
#include "platform/Controls.hpp"
#include "tests/support/ArchiveSamples.hpp"

namespace vigil {
namespace {

using tests::ReferredStation;
using tests::Sample;

class KeyedArchiveTest : public testing::Test {
  protected:
    static void SetUpTestSuite() { tests::registerArchiveSamples(); }

    std::string written(const std::shared_ptr<Object>& root) {
        auto text = writeArchive(root, m_station.get());
        EXPECT_TRUE(text) << text.error().message;
        return text ? text.value() : std::string();
    }

    std::shared_ptr<Object> read(std::string_view text) {
        auto object = readArchive(text, m_station);
        EXPECT_TRUE(object) << object.error().message;
        return object ? object.value() : nullptr;
    }

    std::shared_ptr<Sample> again(const std::shared_ptr<Object>& root) {
        return std::dynamic_pointer_cast<Sample>(read(written(root)));
    }

    static std::string envelope(const std::string& root) {
        return R"({"format":"vigil-archive","version":1,"root":)" + root + "}";
    }

    std::shared_ptr<ReferredStation> m_station = std::make_shared<ReferredStation>();
};

TEST_F(KeyedArchiveTest, theBytesAreFrozen) {
    auto root = std::make_shared<Sample>();
    auto shared = std::make_shared<TextField>("say \"hi\"\n\x01");
    root->entries[0] = ValueList{Value(1), Value(1.0), Value(true), Value(), Value("text"), Value(shared)};
    root->entries[1] = ValueDictionary{{"$", Value(Date(725803200))}, {"b", Value(shared)}};
    root->entries[2] = Value(std::static_pointer_cast<Object>(m_station));
    root->entries[3] = ValueList{};
    root->entries[4] = ValueDictionary{};
    root->entries[5] = Value(std::numeric_limits<double>::infinity());
    root->entries[8] = Value("\xC3(");
    EXPECT_EQ(written(root), R"({
  "format": "vigil-archive",
  "version": 1,
  "root": {
    "$class": "Sample",
    "$id": 1,
    "a": [
      1,
      1.0,
      true,
      null,
      "text",
      {
        "$class": "TextField",
        "$id": 2,
        "stringValue": "say \"hi\"\n\u0001"
      }
    ],
    "b": {
      "$$": {"$date": 725803200.0},
      "b": {"$ref": 2}
    },
    "children": {"$station": true},
    "$$dollar": [],
    "$$$two": {},
    "": {"$real": "Infinity"},
    "$bytes:ffc0": {"$bytes": "c328"}
  }
}
)");
}

TEST_F(KeyedArchiveTest, everyKindReadsBackAsItself) {
    auto root = std::make_shared<Sample>();
    root->entries[0] = Value(std::int64_t{1});
    root->entries[1] = Value(1.0);
    root->entries[2] = Value(false);
    root->entries[3] = Value(std::string("\0 \x7F \xF0\x9F\x98\x80", 8));
    root->entries[4] = Value(Date(-0.25));
    root->entries[5] = ValueList{Value(), ValueList{}, Value(ValueDictionary{})};
    root->entries[6] = ValueDictionary{{"", Value()}, {"$ref", Value(7)}, {"$class", Value("x")}};
    root->entries[8] = Value("\xED\xA0\x80");
    const auto back = again(root);
    ASSERT_TRUE(back);
    EXPECT_EQ(back->entries, root->entries);
    EXPECT_TRUE(back->entries[7].isNothing());
}

TEST_F(KeyedArchiveTest, realsKeepEveryBitAndStayReals) {
    auto root = std::make_shared<Sample>();
    const ValueList reals{-0.0,
                          0.0,
                          0.1,
                          1e17,
                          5e-324,
                          2.2250738585072011e-308,
                          -1.7976931348623157e308,
                          123456789012345680.0,
                          9007199254740993.0,
                          4.35,
                          1e-5,
                          1e22,
                          std::numeric_limits<double>::infinity(),
                          -std::numeric_limits<double>::infinity()};
    root->entries[0] = reals;
    const auto back = again(root);
    ASSERT_TRUE(back);
    const auto* list = back->entries[0].as<ValueList>();
    ASSERT_TRUE(list);
    ASSERT_EQ(list->size(), reals.size());
    for (std::size_t i = 0; i < reals.size(); ++i) {
        ASSERT_TRUE((*list)[i].as<double>()) << i;
        EXPECT_EQ(std::bit_cast<std::uint64_t>(*(*list)[i].as<double>()),
                  std::bit_cast<std::uint64_t>(*reals[i].as<double>()))
            << i;
    }
}

TEST_F(KeyedArchiveTest, whatIsNoNumberStaysNoNumberAlsoInDates) {
    auto root = std::make_shared<Sample>();
    root->entries[0] = Value(std::nan(""));
    root->entries[1] = Value(Date(std::numeric_limits<double>::infinity()));
    root->entries[2] = Value(Date(std::nan("")));
    const auto back = again(root);
    ASSERT_TRUE(back);
    EXPECT_TRUE(std::isnan(*back->entries[0].as<double>()));
    EXPECT_EQ(back->entries[1].as<Date>()->secondsSinceReference(), std::numeric_limits<double>::infinity());
    EXPECT_TRUE(std::isnan(back->entries[2].as<Date>()->secondsSinceReference()));
}

TEST_F(KeyedArchiveTest, theEndsOfTheIntegersReadBack) {
    auto root = std::make_shared<Sample>();
    root->entries[0] = Value(std::numeric_limits<std::int64_t>::max());
    root->entries[1] = Value(std::numeric_limits<std::int64_t>::min());
    const auto back = again(root);
    ASSERT_TRUE(back);
    EXPECT_EQ(back->entries, root->entries);
}

TEST_F(KeyedArchiveTest, anObjectWrittenTwiceIsOneObjectAgain) {
    auto root = std::make_shared<Sample>();
    auto field = std::make_shared<TextField>("one");
    root->entries[0] = Value(field);
    root->entries[1] = ValueList{Value(std::make_shared<TextField>("one")), Value(field)};
    const auto back = again(root);
    ASSERT_TRUE(back);
    const auto first = *back->entries[0].as<std::shared_ptr<Object>>();
    const auto& list = *back->entries[1].as<ValueList>();
    EXPECT_NE(*list[0].as<std::shared_ptr<Object>>(), first);
    EXPECT_EQ(*list[1].as<std::shared_ptr<Object>>(), first);
}

TEST_F(KeyedArchiveTest, theStationIsTheOneThatTheReaderWasGiven) {
    auto root = std::make_shared<Sample>();
    root->entries[0] = Value(std::static_pointer_cast<Object>(m_station));
    const std::string text = written(root);
    const auto other = std::make_shared<ReferredStation>();
    auto back = readArchive(text, other);
    ASSERT_TRUE(back);
    const auto sample = std::dynamic_pointer_cast<Sample>(back.value());
    EXPECT_EQ(*sample->entries[0].as<std::shared_ptr<Object>>(), other);
    auto without = readArchive(text, nullptr);
    ASSERT_FALSE(without);
    EXPECT_EQ(without.error().message, "root.a: there is no station that this could refer to");
}

TEST_F(KeyedArchiveTest, aReferenceMayComeBeforeItsObject) {
    const auto back = std::dynamic_pointer_cast<Sample>(read(envelope(
        R"({"$class":"Sample","$id":7,"a":{"$ref":9},"b":{"$class":"TextField","$id":9,"stringValue":"x"}})")));
    ASSERT_TRUE(back);
    const auto field = *back->entries[0].as<std::shared_ptr<Object>>();
    EXPECT_EQ(field, *back->entries[1].as<std::shared_ptr<Object>>());
    EXPECT_EQ(std::dynamic_pointer_cast<TextField>(field)->stringValue(), "x");
}

TEST_F(KeyedArchiveTest, objectsAreCompleteWhenAnotherReceivesThem) {
    struct Looker : Object {
        std::string seen;
        std::string className() const override { return "Looker"; }
        bool initWithCoder(KeyedDecoder& coder) override {
            if (auto field = coder.decodeObject<TextField>("field")) seen = field->stringValue();
            return true;
        }
    };
    ClassRegistry::shared().add("Looker", &makeObject<Looker>);
    const auto looker = std::dynamic_pointer_cast<Looker>(read(envelope(
        R"({"$class":"Looker","$id":1,"field":{"$ref":2},"x":[{"$class":"TextField","$id":2,"stringValue":"full"}]})")));
    ASSERT_TRUE(looker);
    EXPECT_EQ(looker->seen, "full");
}

TEST_F(KeyedArchiveTest, entriesThatNobodyAsksForAreDropped) {
    const auto field = read(envelope(R"({"$class":"TextField","$id":1,"stringValue":"x","later":[1]})"));
    EXPECT_EQ(written(field), written(std::make_shared<TextField>("x")));
}

TEST_F(KeyedArchiveTest, readingsAndTheirDictionaryComeBack) {
    std::vector<AgentProperty> entries{AgentProperty::number("t", 21.5, Date(1)),
                                       AgentProperty::text("s", "wet", std::nullopt),
                                       AgentProperty::date("d", Date(12.5), Date(2))};
    auto root = std::make_shared<Sample>();
    root->entries[0] = EvaluationDictionary(Readings::make(entries)).archiveValue();
    const auto back = again(root);
    ASSERT_TRUE(back);
    const auto dictionary = EvaluationDictionary::fromArchive(*back->entries[0].as<ValueDictionary>());
    ASSERT_TRUE(dictionary);
    EXPECT_EQ(dictionary->keys(), (std::vector<std::string>{"t", "s", "d"}));
    EXPECT_EQ(dictionary->objectForKey("t")->value(), 21.5);
    EXPECT_EQ(dictionary->objectForKey("s")->stringValue(), "wet");
    EXPECT_EQ(dictionary->objectForKey("d")->type(), kDateType);
}

}  // namespace
}  // namespace vigil
