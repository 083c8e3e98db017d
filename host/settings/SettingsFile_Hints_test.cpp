#include <gmock/gmock.h>

#include "host/settings/SettingsFile.hpp"

// What would never work, and mistakes that people make often.

namespace vigil {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

std::vector<std::string> mistakes(const std::string& text) {
    std::vector<std::string> texts;
    const SettingsReading reading = parseSettings(text, "/etc/vigil", "/users/ann");
    for (const SettingsProblem& problem : reading.problems)
        texts.push_back(problem.says);
    return texts;
}

TEST(SettingsHints, APasswordIsNotSentInTheClearToANameThatLooksLikeThisMachine) {
    const std::string login =
        "[mail]\nmethod = \"smtp\"\nfrom = \"a@b.c\"\nuser = \"ann\"\nsecret = \"post\"\n"
        "security = \"none\"\nhost = ";
    EXPECT_THAT(mistakes(login + "\"127.0.0.1.example.org\"\n"),
                ElementsAre(HasSubstr("a login at another machine needs \"starttls\" or \"tls\"")));
    for (const char* host : {"127.0.0.1", "localhost", "::1", "[::1]"})
        EXPECT_THAT(mistakes(login + "\"" + host + "\"\n"), IsEmpty()) << host;
}

TEST(SettingsHints, WhatCannotBeSentFromOrToIsAMistake) {
    EXPECT_THAT(mistakes("[mail]\nfrom = \"vigil@my_host\"\n"), ElementsAre(HasSubstr("an e-mail address")));
    EXPECT_THAT(mistakes("[mail]\nhost = \"mail.example.org:2525\"\n"),
                ElementsAre(EndsWith("; the port stands in mail.port")));
    EXPECT_THAT(mistakes("[mail]\nhost = \"[::1]:25\"\n"), ElementsAre(EndsWith("stands in mail.port")));
    EXPECT_THAT(mistakes("[mail]\nhost = \"a:b:c\"\n"), ElementsAre(HasSubstr("a host's name or address")));
    for (const char* host : {"mail.example.org", "2001:db8::7", "[2001:db8::7]", "post.bücher.example"})
        EXPECT_THAT(mistakes("[mail]\nhost = \"" + std::string(host) + "\"\n"), IsEmpty()) << host;
}

TEST(SettingsHints, ATextWithoutItsQuotesIsToldSo) {
    const char* const note = "; a text stands in quotes, as in voice = \"de\"";
    for (const char* text : {"[speech]\nvoice = de\n", "[speech]\nvoice = \"de\nrate = 100\n",
                             "[run]\nscripts = /srv/scripts\n"})
        EXPECT_THAT(mistakes(text), ElementsAre(EndsWith(note))) << text;
    EXPECT_THAT(mistakes("[speech]\nrate = 1 2\n"), ElementsAre(Not(HasSubstr("quotes"))));
}

TEST(SettingsHints, APasswordIsSentToTheFileOfSecrets) {
    EXPECT_THAT(mistakes("[mail]\npassword = \"hush\"\n"),
                ElementsAre(AllOf(HasSubstr("mail.secret"), Not(HasSubstr("hush")))));
}

}  // namespace
}  // namespace vigil
