#include "platform/Property.hpp"

#include <atomic>
#include <string>
#include <thread>

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace vigil
