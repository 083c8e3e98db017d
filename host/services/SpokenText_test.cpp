#include "host/services/SpokenText.hpp"

#include <gtest/gtest.h>

#include "platform/Files.hpp"

namespace vigil {
namespace {

TEST(SpokenText, AnOrdinaryTextStaysAsItIs) {
    EXPECT_EQ(spokenText("Böen <b>bis</b> 90 & mehr, 21.5 °C ☂").text,
              "Böen <b>bis</b> 90 & mehr, 21.5 °C ☂");
    EXPECT_EQ(spokenText("Gale").leftOut, 0u);
}

TEST(SpokenText, NoTextAndBlanksAreNothingToSay) {
    EXPECT_EQ(spokenText(std::nullopt).text, "");
    EXPECT_EQ(spokenText("").text, "");
    EXPECT_EQ(spokenText(" \t\r\n \x7f").text, "");
}

TEST(SpokenText, ControlCharactersBecomeBlanks) {
    EXPECT_EQ(spokenText(std::string("a\0b\x1b[1mc\r\n.\r\nd\xc2\x85"
                                     "e",
                                     18))
                  .text,
              "a b [1mc  .  d e");
}

TEST(SpokenText, BytesThatAreNoUtf8BecomeBlanks) {
    EXPECT_EQ(spokenText("a\xff\xfe"
                         "b")
                  .text,
              "a  b");
    EXPECT_EQ(spokenText("cut \xe2\x82").text, "cut");
    EXPECT_EQ(spokenText("a\xed\xa0\x80z").text, "a   z") << "a surrogate";
    EXPECT_EQ(spokenText("\xc3\x28ok").text, "(ok");
}

TEST(SpokenText, PhonemesAreKeptApart) {
    EXPECT_EQ(spokenText("a [[[h@l'oU]] b").text, "a [ [ [h@l'oU]] b");
}

TEST(SpokenText, ALongTextIsCutBetweenTwoCharacters) {
    std::string text;
    for (std::size_t i = 0; i < kSpokenCharacters + 7; ++i)
        text += "ü";
    const SpokenText made = spokenText(text);
    EXPECT_EQ(made.text.size(), 2 * kSpokenCharacters);
    EXPECT_TRUE(isValidUtf8(made.text));
    EXPECT_EQ(made.leftOut, 7u);
    EXPECT_EQ(spokenText(std::string(kSpokenCharacters, 'a') + " \n").leftOut, 0u) << "nothing is lost";
    EXPECT_EQ(spokenText(std::string(kSpokenCharacters, 'a') + " b ").leftOut, 2u);
    EXPECT_EQ(spokenText(text.substr(0, 2 * kSpokenCharacters)).leftOut, 0u);
    EXPECT_EQ(spokenText(std::string(200000, 'x')).text.size(), kSpokenCharacters);
}

}  // namespace
}  // namespace vigil
