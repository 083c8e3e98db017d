#include <string>

#include <gtest/gtest.h>

#include "platform/Files.hpp"

namespace vigil {
namespace {

TEST(Utf8, TakesEveryLengthUpToTheLastCharacter) {
    for (const char* text : {"", "plain", "\x7F", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF",
                             "\xEE\x80\x80", "\xEF\xBF\xBF", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"})
        EXPECT_TRUE(isValidUtf8(text)) << text;
    EXPECT_TRUE(isValidUtf8(std::string_view("a\0b", 3)));
}

TEST(Utf8, RefusesOverlongFormsSurrogatesAndWhatLiesBeyond) {
    for (const char* text :
         {"\x80", "\xBF", "\xC0\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xED\xBF\xBF",
          "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF", "\xFE"})
        EXPECT_FALSE(isValidUtf8(text));
}

TEST(Utf8, RefusesCharactersThatAreCutShort) {
    for (const char* text :
         {"\xC3", "\xE2\x82", "\xF0\x9F\x98", "\xC3(", "\xE2\x28\xA1", "\xE2\x82\x28", "a\xC3"})
        EXPECT_FALSE(isValidUtf8(text));
}

}  // namespace
}  // namespace vigil
