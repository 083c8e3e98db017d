#include <cmath>

#include <gtest/gtest.h>

#include "host/kit/KeyedArchive.hpp"
#include "platform/Controls.hpp"
#include "tests/support/ArchiveSamples.hpp"

// Each limit is met exactly by what is written and read, and one more is refused by both sides.

namespace vigil {
namespace {

using tests::Sample;

class KeyedArchiveLimitsTest : public testing::Test {
  protected:
    static void SetUpTestSuite() { tests::registerArchiveSamples(); }

    /// "both" when it is written and read, else what the writer says.
    static std::string verdict(const std::shared_ptr<Object>& root, const ArchiveLimits& limits) {
        auto text = writeArchive(root, nullptr, limits);
        if (!text) return text.error().message;
        auto back = readArchive(text.value(), nullptr, limits);
        return back ? "both" : "only written: " + back.error().message;
    }

    /// What a reader with these limits says to what a writer without them wrote.
    static std::string readVerdict(const std::shared_ptr<Object>& root, const ArchiveLimits& limits) {
        auto text = writeArchive(root, nullptr);
        if (!text) return "not written: " + text.error().message;
        auto back = readArchive(text.value(), nullptr, limits);
        return back ? "read" : back.error().message;
    }

    static std::shared_ptr<Sample> lists(int levels) {
        Value value{ValueList{}};
        for (int i = 1; i < levels; ++i)
            value = Value(ValueList{value});
        auto root = std::make_shared<Sample>();
        root->entries[0] = value;
        return root;
    }

    /// Objects that hold each other in a row, all of them in one list, innermost first, so that the text is
    /// flat.
    static std::shared_ptr<Sample> flatChain(int length) {
        auto root = std::make_shared<Sample>();
        ValueList all;
        std::shared_ptr<Object> last;
        for (int i = 0; i < length; ++i) {
            auto next = std::make_shared<Sample>();
            if (last) next->entries[0] = Value(last);
            all.emplace_back(next);
            last = next;
        }
        root->entries[2] = all;
        return root;
    }
};

TEST_F(KeyedArchiveLimitsTest, depthOfLists) {
    EXPECT_EQ(verdict(lists(199), {}), "both");
    const std::string refused = verdict(lists(200), {});
    EXPECT_TRUE(refused.starts_with("root.a[0][0]")) << refused;
    EXPECT_TRUE(refused.ends_with(": more than 200 levels inside each other")) << refused;
    EXPECT_TRUE(readVerdict(lists(199), {.depth = 199}).ends_with("more than 199 levels inside each other"));
}

TEST_F(KeyedArchiveLimitsTest, aDateInTheLastLevelCountsAsALevel) {
    auto root = std::make_shared<Sample>();
    root->entries[0] = ValueList{Value(Date(1))};
    EXPECT_EQ(verdict(root, {.depth = 3}), "both");
    EXPECT_EQ(verdict(root, {.depth = 2}), "root: more than 2 levels inside each other");
    root->entries[0] = ValueList{Value(Date(HUGE_VAL))};
    EXPECT_EQ(verdict(root, {.depth = 4}), "both");
    EXPECT_EQ(verdict(root, {.depth = 3}), "root: more than 3 levels inside each other");
}

TEST_F(KeyedArchiveLimitsTest, depthAlongReferencesInAFlatText) {
    EXPECT_EQ(verdict(flatChain(198), {}), "both");
    EXPECT_EQ(verdict(flatChain(199), {}), "root: more than 200 levels inside each other");
    EXPECT_TRUE(readVerdict(flatChain(198), {.depth = 199}).ends_with("199 levels inside each other"));
}

TEST_F(KeyedArchiveLimitsTest, aDateAtTheEndOfAChainOfReferencesCountsItsOwnLevels) {
    for (const auto& [date, levels] : {std::pair(Date(1), 1), std::pair(Date(HUGE_VAL), 2)}) {
        const auto root = flatChain(100);
        const auto innermost = *(*root->entries[2].as<ValueList>())[0].as<std::shared_ptr<Object>>();
        std::dynamic_pointer_cast<Sample>(innermost)->entries[1] = Value(date);
        const std::size_t whole = 102 + static_cast<std::size_t>(levels);  // the root, its list, the chain
        EXPECT_EQ(verdict(root, {.depth = whole}), "both");
        EXPECT_EQ(verdict(root, {.depth = whole - 1}),
                  "root: more than " + std::to_string(whole - 1) + " levels inside each other");
        EXPECT_TRUE(readVerdict(root, {.depth = whole - 1}).ends_with("levels inside each other"));
    }
}

TEST_F(KeyedArchiveLimitsTest, depthAlongReferencesThatLeadForward) {
    const auto chain = [](int length) {
        std::string text = R"({"format":"vigil-archive","version":1,"root":{"$class":"Sample","$id":1,"a":[)";
        for (int i = 2; i < length; ++i)
            text += R"({"$class":"Sample","$id":)" + std::to_string(i) + R"(,"a":{"$ref":)" +
                    std::to_string(i + 1) + "}},";
        return text + R"({"$class":"Sample","$id":)" + std::to_string(length) + "}]}}";
    };
    EXPECT_TRUE(readArchive(chain(199), nullptr));
    const auto refused = readArchive(chain(50'000), nullptr);
    ASSERT_FALSE(refused);
    EXPECT_TRUE(refused.error().message.ends_with(": more than 200 levels inside each other"))
        << refused.error().message;
}

TEST_F(KeyedArchiveLimitsTest, aMillionLevelsAreRefusedAtOnce) {
    const std::string head = R"({"format":"vigil-archive","version":1,"root":)";
    for (const char* open : {"[", "{\"a\":"}) {
        std::string text = head;
        for (int i = 0; i < 1'000'000; ++i)
            text += open;
        const auto refused = readArchive(text, nullptr);
        ASSERT_FALSE(refused);
        EXPECT_TRUE(refused.error().message.ends_with(": more than 200 levels inside each other"));
    }
}

TEST_F(KeyedArchiveLimitsTest, numberOfObjects) {
    auto root = std::make_shared<Sample>();
    root->entries[0] = ValueList{Value(std::make_shared<TextField>()), Value(std::make_shared<TextField>())};
    EXPECT_EQ(verdict(root, {.objects = 3}), "both");
    EXPECT_EQ(verdict(root, {.objects = 2}), "root.a[1]: more than 2 objects");
    EXPECT_EQ(readVerdict(root, {.objects = 2}), "root.a[1]: more than 2 objects");
}

TEST_F(KeyedArchiveLimitsTest, numberOfValues) {
    auto root = std::make_shared<Sample>();
    // The envelope and its three members, the class and the number, the list, and in it: 1, a date and its
    // seconds, a date and its real and that one's text, an object with its class, number and text.
    root->entries[0] =
        ValueList{Value(1), Value(Date(1)), Value(Date(HUGE_VAL)), Value(std::make_shared<TextField>())};
    EXPECT_EQ(verdict(root, {.values = 17}), "both");
    EXPECT_EQ(verdict(root, {.values = 16}), "root.a[3].stringValue: more than 16 values");
    EXPECT_EQ(readVerdict(root, {.values = 16}), "root.a[3].stringValue: more than 16 values");
}

TEST_F(KeyedArchiveLimitsTest, lengthOfTheText) {
    const auto root = std::make_shared<TextField>(std::string(1000, 'x'));
    const std::size_t length = writeArchive(root, nullptr).value().size();
    EXPECT_EQ(verdict(root, {.bytes = length}), "both");
    EXPECT_EQ(verdict(root, {.bytes = length - 1}),
              "root: the archive is longer than " + std::to_string(length - 1) + " bytes");
    EXPECT_EQ(readVerdict(root, {.bytes = length - 1}),
              "archive: longer than " + std::to_string(length - 1) + " bytes");
}

}  // namespace
}  // namespace vigil
