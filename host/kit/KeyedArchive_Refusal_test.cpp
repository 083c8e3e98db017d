#include <gtest/gtest.h>

#include "host/kit/KeyedArchive.hpp"
#include "platform/Controls.hpp"
#include "tests/support/ArchiveSamples.hpp"

namespace vigil {
namespace {

using tests::ReferredStation;
using tests::Sample;
using tests::Throwing;

class KeyedArchiveRefusalTest : public testing::Test {
  protected:
    static void SetUpTestSuite() { tests::registerArchiveSamples(); }

    std::string refusal(const std::shared_ptr<Object>& root) {
        auto text = writeArchive(root, m_station.get());
        return text ? "written: " + text.value() : text.error().message;
    }

    /// What a reader says to an object of class Sample with these members.
    std::string complaint(const std::string& members) {
        auto object = readArchive(envelope(R"({"$class":"Sample","$id":1)" + members + "}"), m_station);
        return object ? "read" : object.error().message;
    }

    static std::string envelope(const std::string& root) {
        return R"({"format":"vigil-archive","version":1,"root":)" + root + "}";
    }

    std::shared_ptr<ReferredStation> m_station = std::make_shared<ReferredStation>();
};

TEST_F(KeyedArchiveRefusalTest, anEntryOfAWrongKindIsRefusedWithItsPath) {
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

TEST_F(KeyedArchiveRefusalTest, pathsLeadThroughListsToTheFailingEntry) {
    EXPECT_EQ(
        complaint(R"(,"children":[1,[{"$class":"Sample","$id":2,"children":[{"$class":"No","$id":3}]}]])"),
        "root.children[1][0].children[0].$class: no class \"No\" is known");
    EXPECT_EQ(complaint(R"(,"odd \"key\"":{"$ref":5})"),
              "root[\"odd \\\"key\\\"\"]: no object has this \"$id\"");
}

TEST_F(KeyedArchiveRefusalTest, writersRefuseWhatNobodyCouldRead) {
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

TEST_F(KeyedArchiveRefusalTest, aClassThatWritesAKeyTwiceIsRefused) {
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

TEST_F(KeyedArchiveRefusalTest, readersKeepTheObjectsThatRefuseOrThrowAway) {
    EXPECT_EQ(complaint(R"(,"a":{"$class":"Refusing","$id":2})"), "root.a: no Refusing comes of it");
    EXPECT_EQ(complaint(R"(,"a":{"$class":"Throwing","$id":2})"),
              "root.a: Throwing threw while it was read: no thanks");
    EXPECT_EQ(complaint(R"(,"a":{"$class":"Unmakable","$id":2})"), "root.a: Unmakable threw: cannot be made");
}

}  // namespace
}  // namespace vigil
