#include "host/settings/SettingsFile.hpp"

#include <cstdlib>

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/TemporaryFolder.hpp"

namespace vigil {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

SettingsReading parsed(const std::string& text) {
    return parseSettings(text, "/etc/vigil", "/users/ann");
}

std::vector<std::string> mistakes(const std::string& text) {
    std::vector<std::string> texts;
    for (const SettingsProblem& problem : parsed(text).problems)
        texts.push_back(problemText("f", problem));
    return texts;
}

TEST(SettingsFile, WhatIsSetIsTakenAndAllElseHasItsDefault) {
    const SettingsReading reading = parsed(
        "[speech]\nrate = 120\n[mail]\nmethod = \"sendmail\"\nfrom = \"vigil@example.org\"\n"
        "[run]\nhistory = false\nmetrics-port = 0\nlog-format = \"json\"\n");
    EXPECT_THAT(reading.problems, IsEmpty());
    EXPECT_EQ(reading.settings.speech.rate, 120);
    EXPECT_EQ(reading.settings.speech.program, "espeak-ng");
    EXPECT_EQ(reading.settings.mail.method, MailMethod::Sendmail);
    EXPECT_EQ(reading.settings.mail.from, "vigil@example.org");
    EXPECT_FALSE(reading.settings.run.history);
    EXPECT_EQ(reading.settings.run.metricsPort, 0);
    EXPECT_EQ(reading.settings.run.logFormat, LogFormat::Json);
    EXPECT_EQ(reading.settings.run.threads, 2);
    EXPECT_EQ(reading.settings.mail.port, std::nullopt);
    EXPECT_EQ(reading.places.size(), 6u);
    EXPECT_EQ(reading.places.at("run.metrics-port").line, 8u);
    EXPECT_EQ(reading.places.at("run.metrics-port").column, 16u);
}

TEST(SettingsFile, AnEmptyOneIsAllDefaults) {
    for (const char* text : {"", "\n\n", "# nothing\n", "[mail]\n", "\xEF\xBB\xBF[mail]\n"}) {
        const SettingsReading reading = parsed(text);
        EXPECT_THAT(reading.problems, IsEmpty()) << text;
        EXPECT_THAT(reading.places, IsEmpty()) << text;
    }
}

TEST(SettingsFile, APathIsWholeAndAProgramsNameStaysAName) {
    const SettingsReading reading = parsed(
        "[run]\nscripts = \"~/my scripts\"\n[site]\nfile = \"sites/roof.vigilsite\"\n"
        "[mail]\nca-file = \"/ca.pem\"\nsendmail = \"msmtp\"\n"
        "[sms]\ncommand = [\"./sms.sh\", \"./as it is\"]\nprogram = \"~/bin/inject\"\n");
    EXPECT_THAT(reading.problems, IsEmpty());
    EXPECT_EQ(reading.settings.run.scripts, "/users/ann/my scripts");
    EXPECT_EQ(reading.settings.site.file, "/etc/vigil/sites/roof.vigilsite");
    EXPECT_EQ(reading.settings.mail.caFile, "/ca.pem");
    EXPECT_EQ(reading.settings.mail.sendmail, "msmtp");
    EXPECT_THAT(reading.settings.sms.command, ElementsAre("/etc/vigil/sms.sh", "./as it is"));
    EXPECT_EQ(reading.settings.sms.program, "/users/ann/bin/inject");
}

TEST(SettingsFile, AMistakeTellsItsPlaceAndWhatWasExpected) {
    EXPECT_THAT(mistakes("[speech]\nrate = 700\nvoice = 3\n"),
                ElementsAre("f:2:8: speech.rate: expected a whole number from 80 to 450, found 700",
                            "f:3:9: speech.voice: expected a text, found 3"));
    EXPECT_THAT(
        mistakes("[run]\nthreads = 2.5\nhistory = \"yes\"\nscripts = 2026-01-01\n"),
        ElementsAre(
            "f:2:11: run.threads: expected a whole number from 1 to 64, found a number with a fraction",
            "f:3:11: run.history: expected true or false, found \"yes\"",
            "f:4:11: run.scripts: expected a path, found a date"));
    EXPECT_THAT(mistakes("[sms]\ncommand = [\"a\", 3]\n"),
                ElementsAre("f:2:11: sms.command: expected a list of texts, found a list of other things"));
    EXPECT_THAT(
        mistakes("[sms]\ncommand = [\"\", \"b\"]\n"),
        ElementsAre("f:2:11: sms.command: the list's first text is a program, and this one is empty"));
    EXPECT_THAT(mistakes("speech = 3\n"), ElementsAre("f:1:1: speech: expected a section [speech], found 3"));
}

TEST(SettingsFile, ANameThatIsNearlyRightIsSuggested) {
    EXPECT_THAT(mistakes("[spech]\nrate = 1\n"),
                ElementsAre("f:1:2: [spech]: there is no such section; did you mean [speech]?"));
    EXPECT_THAT(mistakes("[run]\n  log_level = 1\n"),
                ElementsAre("f:2:3: run.log_level: there is no such key; did you mean \"log-level\"?"));
    EXPECT_THAT(
        mistakes("[mail]\nmethod = \"smpt\"\n"),
        ElementsAre(
            "f:2:10: mail.method: expected \"none\", \"smtp\" or \"sendmail\", found \"smpt\"; did you "
            "mean \"smtp\"?"));
    EXPECT_THAT(mistakes("[mail]\nthreads = 1\n"),
                ElementsAre("f:2:1: mail.threads: there is no such key; it belongs into the section [run]"));
    EXPECT_THAT(mistakes("threads = 1\n"), ElementsAre("f:1:1: threads: belongs into the section [run]"));
    EXPECT_THAT(mistakes("[elsewhere]\n"), ElementsAre("f:1:2: [elsewhere]: there is no such section"));
}

TEST(SettingsFile, TextThatIsNoTomlIsToldWhereItBreaks) {
    EXPECT_THAT(mistakes("[sound]\ndevice = x\n"), ElementsAre(StartsWith("f:2:10: cannot be read: ")));
    EXPECT_THAT(mistakes("[sound]\ndevice = \"a\"\ndevice = \"b\"\n"),
                ElementsAre(StartsWith("f:3:10: cannot be read: ")));
    EXPECT_THAT(mistakes("[sound]\ndevice = \"\xFF\"\n"), ElementsAre(StartsWith("f:2:1")));
}

TEST(SettingsFile, NothingInItCanSteerATerminalOrAMessagesHeader) {
    const auto found =
        mistakes("[mail]\n\"a\\u001b[31m\" = 1\nfrom = \"a@b\\r\\nBcc: c@d\"\n[sound]\ndevice = \"a\\nb\"\n");
    ASSERT_EQ(found.size(), 3u);
    for (const std::string& text : found)
        EXPECT_EQ(text.find_first_of("\x1b\r\n"), std::string::npos) << text;
}

TEST(SettingsFile, AddressesHostsAndNamesOfSecretsAreLookedAt) {
    for (const char* from :
         {"ann", "@b", "a@", "a@b@c", "Ann <a@b>", "a@b, c@d", "a b@c", "-a@b", "\xC3\xA4@b"})
        EXPECT_THAT(
            mistakes("[mail]\nfrom = \"" + std::string(from) + "\"\n"),
            ElementsAre("f:2:8: mail.from: expected an e-mail address, found \"" + std::string(from) + "\""));
    for (const char* host : {"smtp://a", "a/b", "a b", "user@a"})
        EXPECT_THAT(mistakes("[mail]\nhost = \"" + std::string(host) + "\"\n"),
                    ElementsAre(HasSubstr("expected a host's name or address")));
    for (const char* secret : {"my secret", "pass=word", "p\xC3\xA4ss"})
        EXPECT_THAT(mistakes("[mail]\nuser = \"u\"\nsecret = \"" + std::string(secret) + "\"\n"),
                    ElementsAre(HasSubstr("mail.secret: expected the name of a secret")));
    EXPECT_THAT(
        mistakes("[mail]\nfrom = \"a.b+c@d-e.f\"\nhost = \"[::1]\"\nuser = \"u\"\nsecret = \"my-mail_1\"\n"),
        IsEmpty());
}

TEST(SettingsFile, AMethodWithoutWhatItNeedsIsAMistake) {
    EXPECT_THAT(mistakes("[mail]\nmethod = \"smtp\"\n"),
                ElementsAre("f:2:10: mail.method: \"smtp\" needs mail.host",
                            "f:2:10: mail.method: \"smtp\" needs mail.from"));
    EXPECT_THAT(mistakes("[mail]\nmethod = \"sendmail\"\n"),
                ElementsAre("f:2:10: mail.method: \"sendmail\" needs mail.from"));
    EXPECT_THAT(mistakes("[mail]\nuser = \"ann\"\n"),
                ElementsAre("f:2:8: mail.user: a login needs mail.secret"));
    EXPECT_THAT(mistakes("[mail]\nsecret = \"mail\"\n"),
                ElementsAre("f:2:10: mail.secret: a login needs mail.user"));
    EXPECT_THAT(mistakes("[sms]\nmethod = \"command\"\n"),
                ElementsAre("f:2:10: sms.method: \"command\" needs sms.command"));
    const auto login = [](const std::string& host) {
        return mistakes("[mail]\nmethod = \"smtp\"\nfrom = \"a@b\"\nuser = \"a\"\nsecret = \"s\"\nhost = \"" +
                        host + "\"\nsecurity = \"none\"\n");
    };
    EXPECT_THAT(login("127.0.0.1"), IsEmpty());
    EXPECT_THAT(
        login("mail.example.org"),
        ElementsAre("f:7:12: mail.security: a login at another machine needs \"starttls\" or \"tls\""));
    // One that is there and mistaken is told once.
    EXPECT_THAT(mistakes("[sms]\nmethod = \"command\"\ncommand = 3\n"),
                ElementsAre("f:3:11: sms.command: expected a list of texts, found 3"));
}

TEST(SettingsFile, LimitsHold) {
    const std::string text(kLongestSetting, 'x');
    EXPECT_THAT(mistakes("[sound]\ndevice = \"" + text + "\"\n"), IsEmpty());
    EXPECT_THAT(mistakes("[sound]\ndevice = \"" + text + "x\"\n"),
                ElementsAre("f:2:10: sound.device: a text has at most 1000 bytes, and this one 1001"));
    const auto list = [](std::size_t count) {
        std::string words = "[sms]\ncommand = [";
        for (std::size_t i = 0; i < count; ++i)
            words += "\"a\",";
        return words + "]\n";
    };
    EXPECT_THAT(mistakes(list(kMostSettingWords)), IsEmpty());
    EXPECT_THAT(mistakes(list(kMostSettingWords + 1)),
                ElementsAre("f:2:11: sms.command: a list has at most 32 texts, and this one 33"));
    EXPECT_THAT(mistakes("#" + std::string(kMostSettingsBytes - 1, 'x')), IsEmpty());
    EXPECT_THAT(mistakes("#" + std::string(kMostSettingsBytes, 'x')),
                ElementsAre("f:1:1: settings have at most 65536 bytes"));
}

TEST(SettingsFile, NoNestingOfItGoesDeep) {
    std::string dotted = "a";
    for (std::size_t i = 0; i < kMostSettingsDots; ++i)
        dotted += ".a";
    EXPECT_THAT(mistakes(dotted + " = 1\n"), ElementsAre("f:1:1: [a]: there is no such section"));
    EXPECT_THAT(mistakes("b." + dotted + " = 1\n"), ElementsAre("f:1:1: settings have at most 2000 dots"));
    EXPECT_THAT(mistakes("a = " + std::string(30000, '[')), ElementsAre(HasSubstr("cannot be read: ")));
}

TEST(SettingsFile, OneThatIsNotThereIsAllDefaultsAndOneThatCannotBeReadIsNot) {
    const TemporaryFolder folder;
    const auto missing = readSettings(folder.path() + "/none.toml");
    ASSERT_TRUE(missing);
    EXPECT_FALSE(missing.value().isThere);
    EXPECT_EQ(missing.value().settings.run.threads, 2);

    const auto there = readSettings(folder.write("a.toml", "[site]\nfile = \"b.vigilsite\"\n"));
    ASSERT_TRUE(there);
    EXPECT_TRUE(there.value().isThere);
    EXPECT_EQ(there.value().settings.site.file, folder.path() + "/b.vigilsite");

    const auto folderItself = readSettings(folder.path());
    ASSERT_FALSE(folderItself);
    EXPECT_EQ(folderItself.error().message, folder.path() + " cannot be read: it is no file");

    const std::string pipe = folder.path() + "/pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_FALSE(readSettings(pipe));
}

TEST(SettingsFile, StandsInTheUsersFolderForSettings) {
    const char* const before = std::getenv("XDG_CONFIG_HOME");
    const std::string kept = before ? before : "";
    setenv("XDG_CONFIG_HOME", "/settings", 1);
    EXPECT_EQ(defaultSettingsFile(), "/settings/vigil/vigil.toml");
    setenv("XDG_CONFIG_HOME", "settings", 1);
    EXPECT_EQ(defaultSettingsFile(), std::string(std::getenv("HOME")) + "/.config/vigil/vigil.toml");
    before ? setenv("XDG_CONFIG_HOME", kept.c_str(), 1) : unsetenv("XDG_CONFIG_HOME");
}

TEST(MailPort, IsTheUsualOneOfItsSecurityUnlessSet) {
    EXPECT_EQ(mailPort({.security = MailSecurity::None}), 25);
    EXPECT_EQ(mailPort({.security = MailSecurity::StartTls}), 587);
    EXPECT_EQ(mailPort({.security = MailSecurity::Tls}), 465);
    EXPECT_EQ(mailPort({.port = 2525, .security = MailSecurity::Tls}), 2525);
}

}  // namespace
}  // namespace vigil
