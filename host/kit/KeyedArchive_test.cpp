#include "host/kit/KeyedArchive.hpp"

#include <bit>
#include <cmath>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/kit/KitClasses.hpp"
#include "host_contract/EvaluationDictionary.hpp"
#include "platform/Controls.hpp"
#include "tests/support/ArchiveSamples.hpp"

namespace vigil {
namespace {

using testing::HasSubstr;
using tests::Picky;
using tests::ReferredStation;
using tests::Refusing;
using tests::Sample;
using tests::Throwing;

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

    std::string refusal(const std::shared_ptr<Object>& root, const ArchiveLimits& limits = {}) {
        auto text = writeArchive(root, m_station.get(), limits);
        return text ? "written: " + text.value() : text.error().message;
    }

    /// What a reader says to an object of class Sample with these members.
    std::string complaint(const std::string& members, const ArchiveLimits& limits = {}) {
        auto object =
            readArchive(envelope(R"({"$class":"Sample","$id":1)" + members + "}"), m_station, limits);
        return object ? "read" : object.error().message;
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

TEST_F(KeyedArchiveTest, anEntryOfAWrongKindIsRefusedWithItsPath) {
    const auto refused = [&](const std::string& member) {
        auto object = readArchive(envelope(R"({"$class":"Picky","$id":1,)" + member + "}"), m_station);
        return object ? "read" : object.error().message;
    };
    EXPECT_EQ(refused(R"("flag":0)"), "root.flag: expected true or false");
    EXPECT_EQ(refused(R"("text":1)"), "root.text: expected a text");
    EXPECT_EQ(refused(R"("number":"1")"), "root.number: expected a number");
    EXPECT_EQ(refused(R"("date":1.0)"), "root.date: expected a date");
    EXPECT_EQ(refused(R"("list":{})"), "root.list: expected a list");
    EXPECT_EQ(refused(R"("dictionary":[])"), "root.dictionary: expected a dictionary");
    EXPECT_EQ(refused(R"("sample":{})"), "root.sample: expected an object");
    EXPECT_EQ(refused(R"("sample":{"$class":"TextField","$id":2})"),
              "root.sample: an object of class TextField cannot stand here");
    EXPECT_EQ(refused(R"("text":1,"flag":1)"), "root.flag: expected true or false");
    EXPECT_EQ(refused(R"("text":null)"), "read");
}

TEST_F(KeyedArchiveTest, pathsLeadThroughListsToTheFailingEntry) {
    EXPECT_EQ(
        complaint(R"(,"children":[1,[{"$class":"Sample","$id":2,"children":[{"$class":"No","$id":3}]}]])"),
        "root.children[1][0].children[0].$class: no class \"No\" is known");
    EXPECT_EQ(complaint(R"(,"odd \"key\"":{"$ref":5})"),
              "root[\"odd \\\"key\\\"\"]: no object has this \"$id\"");
}

TEST_F(KeyedArchiveTest, writersRefuseWhatNobodyCouldRead) {
    EXPECT_EQ(refusal(nullptr), "root: there is no object to write");
    EXPECT_EQ(refusal(m_station), "root: there is no object to write");

    auto root = std::make_shared<Sample>();
    root->entries[2] =
        ValueList{Value(std::static_pointer_cast<Object>(std::make_shared<ReferredStation>()))};
    EXPECT_EQ(refusal(root), "root.children[0]: no class \"ReferredStation\" is known to archives");

    root->entries[2] = Value(std::make_shared<Throwing>());
    EXPECT_EQ(refusal(root), "root.children: Throwing threw while it was written: no thanks");

    root->entries[2] = ValueDictionary{{"k", Value(1)}, {"k", Value(2)}};
    EXPECT_EQ(refusal(root), "root.children.k: the key is written twice");

    auto child = std::make_shared<Sample>();
    child->entries[0] = ValueList{Value(std::static_pointer_cast<Object>(root))};
    root->entries[2] = Value(child);
    EXPECT_EQ(refusal(root), "root.children.a[0]: the object is inside itself");
    child->entries[0] = {};
}

TEST_F(KeyedArchiveTest, aClassThatWritesAKeyTwiceIsRefused) {
    struct Twice : Object {
        std::string className() const override { return "Twice"; }
        void encodeWithCoder(KeyedEncoder& coder) const override {
            coder.encodeFlag("title", true);
            coder.encodeText("title", "x");
        }
    };
    ClassRegistry::shared().add("Twice", &makeObject<Twice>);
    EXPECT_EQ(refusal(std::make_shared<Twice>()), "root.title: the key is written twice");
}

TEST_F(KeyedArchiveTest, readersKeepTheObjectsThatRefuseOrThrowAway) {
    EXPECT_EQ(complaint(R"(,"a":{"$class":"Refusing","$id":2})"), "root.a: no Refusing comes of it");
    EXPECT_EQ(complaint(R"(,"a":{"$class":"Throwing","$id":2})"),
              "root.a: Throwing threw while it was read: no thanks");
    EXPECT_EQ(complaint(R"(,"a":{"$class":"Unmakable","$id":2})"), "root.a: Unmakable threw: cannot be made");
}

}  // namespace
}  // namespace vigil
