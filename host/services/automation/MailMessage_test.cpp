#include "host/services/automation/MailMessage.hpp"

#include <gmock/gmock.h>

#include "host/services/automation/MailBody.hpp"
#include "host/services/automation/PlainText.hpp"

namespace vigil {
namespace {

const MailStamp kStamp{Date(816466459.75), "s1.42"};

MailHandOver mail(const std::string& subject, const std::string& content = "???\n",
                  const std::string& sender = "Vigil") {
    return {sender, "ann@mail.example.org", subject, content};
}

std::string composed(const MailHandOver& given) {
    return composeMail(given, kStamp, "weather@example.org");
}

/// The header's lines, folded ones joined, up to the empty one.
std::vector<std::string> header(const std::string& message) {
    std::vector<std::string> lines;
    for (std::size_t begin = 0; message.compare(begin, 2, "\r\n") != 0;) {
        const std::size_t end = message.find("\r\n", begin);
        if (end == std::string::npos) break;
        const std::string line = message.substr(begin, end - begin);
        if (line.starts_with(' '))
            lines.back() += line;
        else
            lines.push_back(line);
        begin = end + 2;
    }
    return lines;
}

TEST(MailMessage, APlainOneReadsAsItWasHandedOver) {
    EXPECT_EQ(composed(mail("Vigil for Aarhus")),
              "Date: Sun, 15 Nov 2026 20:14:19 +0000\r\n"
              "From: \"Vigil\"\r\n <weather@example.org>\r\n"
              "To: <ann@mail.example.org>\r\n"
              "Message-ID: <s1.42@example.org>\r\n"
              "Subject: Vigil for Aarhus\r\n"
              "MIME-Version: 1.0\r\n"
              "Content-Type: text/plain; charset=UTF-8\r\n"
              "Content-Transfer-Encoding: 7bit\r\n"
              "Auto-Submitted: auto-generated\r\n"
              "\r\n"
              "???\r\n");
}

TEST(MailMessage, ASubjectThatIsNoShortAsciiIsEncodedAndFolded) {
    EXPECT_EQ(headerText("Vigil for \xC3\x85rhus"), "=?UTF-8?B?VmlnaWwgZm9yIMOFcmh1cw==?=");
    EXPECT_EQ(headerText("ends with a blank "), "=?UTF-8?B?ZW5kcyB3aXRoIGEgYmxhbmsg?=");
    EXPECT_EQ(headerText("=?UTF-8?Q?no?="), "=?UTF-8?B?PT9VVEYtOD9RP25vPz0=?=");
    EXPECT_EQ(headerText(std::string(60, 'x')), std::string(60, 'x'));
    const std::string folded = headerText(std::string(61, 'x'));
    EXPECT_EQ(folded.find("\r\n "), 64u);
}

TEST(MailMessage, NoCharacterIsCutBetweenTwoEncodedWords) {
    std::string name;
    for (int i = 0; i < 100; ++i)
        name += "\xE2\x82\xAC";
    std::string text = headerText(name);
    // every word alone ends at a whole character: 39 bytes are 13 of them, 52 digits without padding
    for (std::size_t at = text.find("=?"); at != std::string::npos; at = text.find("=?UTF", at + 1)) {
        const std::size_t begin = at + 10;
        const std::size_t size = text.find("?=", begin) - begin;
        EXPECT_TRUE(size == 52 || text.find("=?UTF", at + 1) == std::string::npos) << size;
        EXPECT_EQ(text[begin + size - 1] == '=', false);
    }
}

TEST(MailMessage, NoLineOfTheHeaderComesFromASubjectOrASender) {
    const auto plain = header(composed(mail("x")));
    for (const std::string& nasty :
         {std::string("a\r\nBcc: evil@x.y"), std::string("a\nBcc: evil@x.y"), std::string("a\rBcc: evil@x.y"),
          std::string("a\0\x0B\x0C\x1B\x7F", 6),
          std::string("a\xC2\x85"
                      "Bcc: evil@x.y"),
          std::string("a\xE2\x80\xA8"
                      "Bcc: evil@x.y"),
          std::string("a\r\n\r\nbody"), std::string("\xFF\xC3"), std::string("\" <evil@x.y>, \"")}) {
        const auto lines = header(composed(mail(nasty, "???\n", nasty)));
        ASSERT_EQ(lines.size(), plain.size()) << nasty;
        for (std::size_t i = 0; i < lines.size(); ++i) {
            EXPECT_EQ(lines[i].substr(0, lines[i].find(':')), plain[i].substr(0, plain[i].find(':')));
            for (const char c : lines[i])
                EXPECT_TRUE(c >= ' ' && c <= '~') << lines[i];
        }
        EXPECT_EQ(lines[2], "To: <ann@mail.example.org>");
        EXPECT_TRUE(lines[1].ends_with(" <weather@example.org>")) << lines[1];
    }
}

TEST(MailMessage, AQuoteInASendersNameStaysInsideIt) {
    EXPECT_THAT(composed(mail("x", "y", "\" <evil@x.y>, \"")),
                testing::HasSubstr("From: \"\\\" <evil@x.y>, \\\"\"\r\n <weather@example.org>\r\n"));
    EXPECT_THAT(composed(mail("x", "y", "")), testing::HasSubstr("From: <weather@example.org>\r\n"));
}

TEST(MailMessage, ABodyThatIsNoShortAsciiIsQuoted) {
    EXPECT_EQ(mailBody("plain\nlines\n").text, "plain\r\nlines\r\n");
    EXPECT_STREQ(mailBody("plain").encoding, "7bit");
    const MailBody body = mailBody("\xC3\xA5 = 1 \n.\nend");
    EXPECT_STREQ(body.encoding, "quoted-printable");
    EXPECT_EQ(body.text, "=C3=A5 =3D 1=20\r\n.\r\nend\r\n");
    const MailBody longLine = mailBody(std::string(200, 'x'));
    EXPECT_EQ(longLine.text, std::string(75, 'x') + "=\r\n" + std::string(75, 'x') + "=\r\n" +
                                 std::string(50, 'x') + "\r\n");
    EXPECT_EQ(mailBody("").text, "");
}

TEST(MailMessage, DatesAreThoseOfTheCalendarAndNeverNonsense) {
    EXPECT_EQ(mailDate(Date(0)), "Mon, 01 Jan 2001 00:00:00 +0000");
    EXPECT_EQ(mailDate(Date::fromUnix(951782400)), "Tue, 29 Feb 2000 00:00:00 +0000");
    EXPECT_EQ(mailDate(Date::distantPast()), "Thu, 01 Jan 1970 00:00:00 +0000");
    EXPECT_EQ(mailDate(Date(std::numeric_limits<double>::quiet_NaN())), "Thu, 01 Jan 1970 00:00:00 +0000");
    EXPECT_EQ(mailDate(Date(std::numeric_limits<double>::infinity())), "Fri, 31 Dec 9999 23:59:59 +0000");
}

TEST(PlainText, WhatIsNoTextIsReplacedAndControlsAreBlanks) {
    EXPECT_EQ(mendedUtf8("a\xC3\xA5\xFF\xE2\x82"), "a\xC3\xA5\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(plainLine("a\tb\r\nc\xC2\x9B"), "a b  c ");
    EXPECT_EQ(plainLine("a\xC3\xA5\xE2\x82\xAC", 5), "a\xC3\xA5") << "no character is cut in two";
    EXPECT_EQ(plainLine("a\x1B[2J \n", 100), "a [2J");
    EXPECT_EQ(plainLine("", 3), "");
    EXPECT_EQ(plainLines("a\tb\r\nc\rd\n\re\x07"), "a\tb\nc\nd\n\ne ");
}

}  // namespace
}  // namespace vigil
