#include "platform/Property.hpp"

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "platform/Date.hpp"
#include "platform/Number.hpp"

namespace vigil {
namespace {

TEST(Property, ObserversHearOfEverySetAlsoOfAnEqualValue) {
    Property<int> property(1);
    int heard = 0;
    const auto token = property.observe([&] { heard += property.get(); });
    property.set(2);
    property.set(2);
    property.notify();
    EXPECT_EQ(heard, 6);
}

TEST(Property, AnObserverIsCalledForAsLongAsItsTokenLives) {
    Property<int> property;
    int first = 0, second = 0;
    auto token = property.observe([&] { ++first; });
    const auto other = property.observe([&] { ++second; });
    property.set(1);
    token.reset();
    property.set(2);
    const auto third = property.observe([] {});  // sweeps the dead one away
    property.set(3);
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 3);
}

TEST(Property, ObserversThatComeAtOnceFromSeveralThreadsAllHear) {
    for (int round = 0; round < 200; ++round) {
        Property<int> property;
        std::atomic<int> heard{0};
        Property<int>::Token tokens[2];
        std::thread other([&] { tokens[0] = property.observe([&] { ++heard; }); });
        tokens[1] = property.observe([&] { ++heard; });
        property.set(1);  // while the other may come in
        other.join();
        heard = 0;
        property.set(2);
        ASSERT_EQ(heard, 2);
    }
}

// A monitor has about fifty of them, the nodes of its rule editor counted.
TEST(Property, TakesLittleMemoryBesideItsValueWhileNobodyObserves) {
    EXPECT_LE(sizeof(Property<std::shared_ptr<int>>), sizeof(std::shared_ptr<int>) + 24);
    EXPECT_LE(sizeof(Property<std::string>), sizeof(std::string) + 24);
    EXPECT_LE(sizeof(Property<bool>), 40u);
}

TEST(Property, AnObserverMayReadSetOtherPropertiesAndLeaveDuringACall) {
    Property<int> a, b;
    Property<int>::Token token;
    token = a.observe([&] {
        b.set(a.get() + 1);
        token.reset();
    });
    a.set(4);
    a.set(8);
    EXPECT_EQ(b.get(), 5);
}

TEST(Property, ReadersNeverSeeAValueHalfSet) {
    Property<std::string> property(std::string(64, 'a'));
    std::atomic<bool> ended{false};
    std::thread reader([&] {
        while (!ended) {
            const std::string text = property.get();
            ASSERT_EQ(text, std::string(64, text.empty() ? '?' : text[0]));
        }
    });
    for (int i = 0; i < 2000; ++i)
        property.set(std::string(64, i % 2 ? 'a' : 'b'));
    ended = true;
    reader.join();
}

// The two dates of a pair are set together, so a reader must never see them differ.
TEST(Property, ReadersOfPlainBytesNeverSeeAValueHalfSet) {
    struct Pair {
        double first = 0;
        double second = 0;
    };
    Property<std::optional<Pair>> property;
    std::atomic<bool> ended{false};
    long seen = 0;
    std::thread reader([&] {
        double last = 0;
        while (!ended || seen == 0) {
            const auto pair = property.get();
            if (!pair) continue;
            ++seen;
            ASSERT_EQ(pair->first, pair->second);
            ASSERT_GE(pair->first, last) << "an older value came back";
            last = pair->first;
        }
    });
    for (int i = 1; i <= 20000; ++i)
        property.set(i % 7 == 0 ? std::nullopt : std::optional(Pair{double(i), double(i)}));
    property.set(Pair{20001, 20001});
    ended = true;
    reader.join();
    EXPECT_GT(seen, 0);
}

TEST(Property, GivesBackPlainValuesBitByBit) {
    EXPECT_EQ(Property<std::optional<Date>>().get(), std::nullopt);
    EXPECT_EQ(Property<std::optional<Date>>(Date(-0.5)).get(), Date(-0.5));
    EXPECT_EQ(Property<std::optional<Number>>(Number(7)).get(), Number(7));
    EXPECT_EQ(Property<std::optional<Number>>(Number(7.0)).get(), Number(7.0));
    EXPECT_TRUE(Property<bool>(true).get());
    Property<std::optional<bool>> flag;
    EXPECT_EQ(flag.get(), std::nullopt);
    flag.set(false);
    EXPECT_EQ(flag.get(), false);
}

TEST(Property, ARememberedValueIsRenewedAfterEverySet) {
    Property<std::shared_ptr<int>> property(std::make_shared<int>(1));
    Remembered<std::shared_ptr<int>> remembered;
    EXPECT_EQ(*remembered.of(property), 1);
    EXPECT_EQ(remembered.of(property), property.get());
    property.set(std::make_shared<int>(2));
    EXPECT_EQ(*remembered.of(property), 2);
    property.set(nullptr);
    EXPECT_EQ(remembered.of(property), nullptr);
}

}  // namespace
}  // namespace vigil
