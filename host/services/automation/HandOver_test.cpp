#include "host/services/automation/HandOver.hpp"

#include <gtest/gtest.h>

#include "host/services/automation/testing/HandOverTexts.hpp"
#include "tests/support/VectorFile.hpp"

namespace vigil {
namespace {

using test::VectorCase;

std::string textOf(const VectorCase& each) {
    if (const auto whole = each.text("whole")) return *whole;
    const std::string name = each.text("site").value_or("");
    if (const auto number = each.text("number")) return smsText(name, *number);
    return mailText(name, each.text("address").value_or("a@b.c"));
}

std::string printed(const Result<HandOver, HandOverError>& read) {
    if (!read) return read.error().sentence();
    if (const auto* mail = std::get_if<MailHandOver>(&read.value()))
        return "mail from <" + mail->sender + "> to <" + mail->recipient + "> subject <" + mail->subject +
               "> content <" + mail->content + ">";
    if (const auto* sms = std::get_if<SmsHandOver>(&read.value()))
        return "sms to <" + sms->number + "> text <" + sms->text + ">";
    return "viewer";
}

TEST(HandOverVectors, EachIsReadAsItSays) {
    for (const VectorCase& each : test::readVectors("automation", "hand_overs"))
        EXPECT_EQ(printed(readHandOver(textOf(each))), each.text("is").value_or("no `is`")) << each.place();
}

TEST(HandOver, EveryCutOfATextIsMalformedAtItsEnd) {
    for (const std::string& whole : {mailText("Roof", "a@b.c"), smsText("Roof", "45")}) {
        ASSERT_TRUE(readHandOver(whole));
        for (std::size_t size = 0; size < whole.size(); ++size) {
            const auto read = readHandOver(whole.substr(0, size));
            ASSERT_FALSE(read) << size;
            EXPECT_LE(read.error().offset, size);
            EXPECT_FALSE(read.error().expected.empty());
        }
    }
}

TEST(HandOver, EveryOtherByteOfTheFormMattersAndIsNamedWithItsPlace) {
    const std::string whole = mailText("Roof", "a@b.c");
    const std::size_t subject = whole.find("Vigil for Roof");
    const std::size_t content = whole.find("???");
    const std::size_t sender = whole.find("to \"Vigil\"") + 4;
    const std::size_t address = whole.find("a@b.c");
    for (std::size_t at = 0; at < whole.size(); ++at) {
        if ((at >= subject && at < subject + 14) || (at >= content && at < content + 3) ||
            (at >= sender && at < sender + 5) || (at >= address && at < address + 5))
            continue;
        std::string other = whole;
        other[at] = other[at] == '#' ? '%' : '#';
        const auto read = readHandOver(other);
        ASSERT_FALSE(read) << at;
        // A quote that is gone is missed where the text behind it ends.
        EXPECT_GE(read.error().offset, at) << other;
        if (whole[at] != '"') {
            EXPECT_EQ(read.error().offset, at);
        }
    }
}

TEST(HandOver, ALongTextIsRefusedWithoutBeingRead) {
    const auto read = readHandOver(mailText(std::string(kLongestHandOver, 'x'), "a@b.c"));
    ASSERT_FALSE(read);
    EXPECT_EQ(read.error().offset, kLongestHandOver);
    const std::size_t rest = kLongestHandOver - mailText("", "a@b.c").size();
    EXPECT_TRUE(readHandOver(mailText(std::string(rest, 'x'), "a@b.c"))) << "the longest that is read";
}

TEST(HandOver, WhatIsMalformedStillSaysWhichApplicationItMeant) {
    EXPECT_TRUE(addressesMessages("tell application \"Messages\"\nrubbish"));
    EXPECT_FALSE(addressesMessages("tell application \"Mail\"\nrubbish"));
    EXPECT_FALSE(addressesMessages(""));
}

}  // namespace
}  // namespace vigil
