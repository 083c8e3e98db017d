#include "host/command/PeopleName.hpp"

#include <gtest/gtest.h>

namespace vigil {
namespace {

std::string read(std::string_view typed) {
    const auto name = nameFromUser("a name", typed);
    return name ? "<" + name.value() + ">" : name.error().message;
}

TEST(PeopleName, isTakenWithoutTheBlanksAroundIt) {
    EXPECT_EQ(read("  Pönd House "), "<Pönd House>");
    EXPECT_EQ(read("   "), "<>");
    EXPECT_EQ(read(""), "<>");
    EXPECT_EQ(read("\xC2\xA0"), "<\xC2\xA0>") << "the first character behind the controls";
}

TEST(PeopleName, hasNoControlCharactersAndNoOtherBytes) {
    for (const char* typed : {"a\nb", "a\tb", "\x1b[2J", "a\x7f", "a\xC2\x9B"})
        EXPECT_EQ(read(typed), "a name takes no line ends, tabs or other control characters");
    EXPECT_EQ(read("a\xFF"), "a name has to be UTF-8");
}

TEST(PeopleName, hasABoundInBytes) {
    EXPECT_EQ(read(std::string(kLongestPeopleName, 'a')), "<" + std::string(kLongestPeopleName, 'a') + ">");
    EXPECT_EQ(read(std::string(kLongestPeopleName + 1, 'a')),
              "a name has at most 256 bytes; this one has 257");
}

}  // namespace
}  // namespace vigil
