#include "platform/CallNote.hpp"

#include <future>

#include <gtest/gtest.h>

#include "platform/Controls.hpp"

namespace vigil {
namespace {

TEST(CallNote, TheInnermostNoteCountsAndEndsWithItsScope) {
    const auto outer = std::make_shared<TextField>();
    const auto inner = std::make_shared<TextField>();
    EXPECT_EQ(CallNote::current(), nullptr);
    {
        const CallNote::Scope first(outer);
        {
            const CallNote::Scope second(inner);
            EXPECT_EQ(CallNote::current(), inner);
        }
        EXPECT_EQ(CallNote::current(), outer);
        const CallNote::Scope hidden(nullptr);
        EXPECT_EQ(CallNote::current(), nullptr);
    }
    EXPECT_EQ(CallNote::current(), nullptr);
}

TEST(CallNote, EachThreadHasItsOwn) {
    const CallNote::Scope note(std::make_shared<TextField>());
    EXPECT_EQ(std::async(std::launch::async, [] { return CallNote::current(); }).get(), nullptr);
}

}  // namespace
}  // namespace vigil
