#include <gmock/gmock.h>

#include "host/services/automation/Delivery.hpp"
#include "host/services/automation/testing/GammuBench.hpp"

namespace vigil {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

AutomationOptions base() {
    AutomationOptions options;
    options.helper = VIGIL_BINARY_DIR "/bin/vigil-helper";
    options.clock = systemNow;
    return options;
}

DeliveryResult sent(const AutomationOptions& options, const SmsHandOver& sms) {
    const StopSignal stop;
    return deliver(sms, options, stop);
}

/// How often the daemon noted that it has sent a part: a note bears a reference, the message itself none.
std::size_t notesIn(const std::string& file) {
    std::size_t count = 0;
    for (std::size_t at = 0; (at = file.find("\nMessageReference = 255\n", at)) != std::string::npos; ++at)
        ++count;
    return count;
}

void appendUtf8(std::string& to, unsigned long unit) {
    if (unit < 0x80) {
        to += static_cast<char>(unit);
    } else if (unit < 0x800) {
        to += static_cast<char>(0xC0 | unit >> 6);
        to += static_cast<char>(0x80 | (unit & 63));
    } else {
        to += static_cast<char>(0xE0 | unit >> 12);
        to += static_cast<char>(0x80 | (unit >> 6 & 63));
        to += static_cast<char>(0x80 | (unit & 63));
    }
}

/// The text of the message itself, behind the daemon's notes, from all of its parts: UTF-16 in hexadecimal.
std::string textIn(const std::string& file) {
    std::string text;
    for (std::size_t begin = file.find("[SMSBackup"); begin != std::string::npos;) {
        const std::size_t end = file.find("[SMSBackup", begin + 1);
        const std::string section = file.substr(begin, end - begin);
        begin = end;
        if (notesIn(section) > 0) continue;
        for (std::size_t at = section.find("\nText"); at != std::string::npos;
             at = section.find("\nText", at + 1)) {
            const std::size_t first = section.find(" = ", at) + 3;
            const std::string digits = section.substr(first, section.find('\n', first) - first);
            for (std::size_t i = 0; i + 4 <= digits.size(); i += 4)
                appendUtf8(text, std::stoul(digits.substr(i, 4), nullptr, 16));
        }
    }
    return text;
}

class Gammu : public testing::Test {
  protected:
    void SetUp() override {
        if (!GammuBench::isThere()) GTEST_SKIP() << "gammu-smsd is not installed";
        m_bench = std::make_unique<GammuBench>();
        m_options.sms.method = SmsOptions::Gammu;
        m_options.sms.config = m_bench->config();
    }
    std::unique_ptr<GammuBench> m_bench;
    AutomationOptions m_options = base();
};

TEST_F(Gammu, TheDaemonSendsTheTextByteForByte) {
    for (const std::string text : {"Vigil for Aarhus. ?????", "Vigil for \xC3\x85rhus \xE2\x82\xAC. ?????",
                                   "Vigil for `it's; $(a) \"b\" \\. ?????"}) {
        const DeliveryResult result = sent(m_options, {"4512345678", text});
        ASSERT_EQ(result.outcome, DeliveryResult::Accepted) << result.words;
        const std::string file = m_bench->sent("+4512345678");
        EXPECT_THAT(file, HasSubstr("Number = \"+4512345678\"\n"));
        EXPECT_EQ(textIn(file), text);
        EXPECT_EQ(notesIn(file), 1u) << "sent once";
    }
}

TEST_F(Gammu, ALongOneGoesOutInTwoParts) {
    std::string name;
    for (int i = 0; i < 90; ++i)
        name += "\xC3\xA5";
    const std::string text = "Vigil for " + name + ". ?????";
    ASSERT_EQ(sent(m_options, {"+45", text}).outcome, DeliveryResult::Accepted);
    const std::string file = m_bench->sent("+45");
    EXPECT_THAT(file, HasSubstr("[SMSBackup001]"));
    EXPECT_THAT(file, testing::Not(HasSubstr("[SMSBackup002]")));
    EXPECT_EQ(textIn(file), text);
    EXPECT_EQ(notesIn(file), 2u) << "each part once";
}

TEST_F(Gammu, ANameWithALineEndAddsNothingToTheMessagesFile) {
    ASSERT_EQ(sent(m_options, {"45", "a\nNumber = \"+666\"\r\n[SMSBackup001]"}).outcome,
              DeliveryResult::Accepted);
    const std::string file = m_bench->sent("+45");
    EXPECT_EQ(textIn(file), "a Number = \"+666\"  [SMSBackup001]");
    EXPECT_THAT(file, testing::Not(HasSubstr("\nNumber = \"+666\"")));
}

TEST_F(Gammu, ADaemonThatIsNotConfiguredIsAFailureWithItsWords) {
    m_options.sms.config = "/no/such/file";
    const DeliveryResult result = sent(m_options, {"45", "x"});
    EXPECT_EQ(result.outcome, DeliveryResult::Refused);
    EXPECT_THAT(result.words, HasSubstr("gammu-smsd-inject ended with exit status 2: "));
}

class Messages : public testing::Test {
  protected:
    /// A program that writes its words and its input down.
    std::string program(const std::string& rest) {
        const std::string path = m_folder.path() + "/program";
        m_folder.write("program", "#!/bin/sh\nfor word; do echo \"[$word]\"; done >> " + m_folder.path() +
                                      "/words\ncat > " + m_folder.path() + "/input\n" + rest);
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        return path;
    }
    std::string words() const { return bytesOf(m_folder.path() + "/words"); }
    void useCommand(const std::string& rest) {
        m_options.sms.method = SmsOptions::Command;
        m_options.sms.command = {program(rest), "--to"};
    }

    TemporaryFolder m_folder;
    AutomationOptions m_options = base();
};

TEST_F(Messages, ACommandGetsNumberAndTextAsItsLastWordsAndTheTextOnItsInput) {
    useCommand("exit 0\n");
    EXPECT_EQ(sent(m_options, {"45", "it's \"x\"; rm -rf / $(x)\n`y`"}).outcome, DeliveryResult::Accepted);
    EXPECT_EQ(words(), "[--to]\n[+45]\n[it's \"x\"; rm -rf / $(x) `y`]\n");
    EXPECT_EQ(bytesOf(m_folder.path() + "/input"), "it's \"x\"; rm -rf / $(x) `y`");
}

TEST_F(Messages, ACommandsExitStatusTellsWhetherAnotherAttemptIsWorthIt) {
    useCommand("echo no net >&2; exit 75\n");
    const DeliveryResult later = sent(m_options, {"45", "x"});
    EXPECT_EQ(later.outcome, DeliveryResult::Deferred);
    EXPECT_THAT(later.words, testing::EndsWith("ended with exit status 75: no net"));
    useCommand("exit 1\n");
    EXPECT_EQ(sent(m_options, {"45", "x"}).outcome, DeliveryResult::Refused);
    useCommand("kill -9 $$\n");
    EXPECT_EQ(sent(m_options, {"45", "x"}).outcome, DeliveryResult::Unknown);
    useCommand("sleep 100\n");
    m_options.sms.time = std::chrono::milliseconds(300);
    EXPECT_EQ(sent(m_options, {"45", "x"}).outcome, DeliveryResult::Unknown);
}

TEST_F(Messages, ANumberThatIsNoneIsRefusedBeforeAnythingIsStarted) {
    useCommand("exit 0\n");
    EXPECT_EQ(sent(m_options, {"-45", "x"}).words, "no telephone number begins with a minus sign");
    EXPECT_EQ(sent(m_options, {std::string(21, '4'), "x"}).words,
              "no telephone number has more than 20 digits");
    EXPECT_EQ(sent(m_options, {"45", std::string(1001, 'x')}).words, "the text is longer than 1000 bytes");
    EXPECT_EQ(words(), "");
    EXPECT_EQ(sent(m_options, {"+" + std::string(20, '4'), std::string(1000, 'x')}).outcome,
              DeliveryResult::Accepted);
}

TEST_F(Messages, WithTheModemsProgramAMessageIsCreatedAndThenSent) {
    m_options.sms.method = SmsOptions::Mmcli;
    m_options.sms.program = program(
        "case \"$1\" in -m) echo 'Successfully created new SMS: /org/freedesktop/ModemManager1/SMS/21';; "
        "esac\n");
    EXPECT_EQ(sent(m_options, {"45", "Vigil for Roof. ?????"}).outcome, DeliveryResult::Accepted);
    EXPECT_EQ(words(),
              "[-m]\n[any]\n[--messaging-create-sms=text='Vigil for Roof. ?????"
              "',number='+45']\n"
              "[-s]\n[/org/freedesktop/ModemManager1/SMS/21]\n[--send]\n");
}

TEST_F(Messages, WhatTheModemsProgramCannotBeGivenIsRefused) {
    m_options.sms.method = SmsOptions::Mmcli;
    m_options.sms.program = program("echo nothing\n");
    EXPECT_EQ(sent(m_options, {"45", "both ' and \""}).outcome, DeliveryResult::Refused);
    EXPECT_EQ(words(), "");
    EXPECT_THAT(sent(m_options, {"45", "x"}).words, HasSubstr("did not say which message it created"));
    SmsOptions options;
    EXPECT_THAT(mmcliWords(options, "+45", "it's").value(),
                ElementsAre("mmcli", "-m", "any", "--messaging-create-sms=text=\"it's\",number='+45'"));
    EXPECT_EQ(mmcliMessage("x /org/freedesktop/ModemManager1/SMS/"), "");
    EXPECT_EQ(mmcliMessage("x /org/freedesktop/ModemManager1/SMS/7 y"),
              "/org/freedesktop/ModemManager1/SMS/7");
}

TEST_F(Messages, OnlyTextsThatNeedItAreSentInTheWideAlphabet) {
    SmsOptions options;
    EXPECT_THAT(gammuWords(options, "+45", "plain"),
                ElementsAre("gammu-smsd-inject", "TEXT", "+45", "-len", "1000", "-textutf8", "plain"));
    options.config = "/etc/x";
    options.program = "/bin/inject";
    EXPECT_THAT(gammuWords(options, "+45", "a`b"),
                ElementsAre("/bin/inject", "-c", "/etc/x", "TEXT", "+45", "-len", "1000", "-unicode",
                            "-textutf8", "a`b"));
}

}  // namespace
}  // namespace vigil
