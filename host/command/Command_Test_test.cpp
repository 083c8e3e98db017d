#include <fstream>
#include <sstream>
#include <string>

#include <gmock/gmock.h>

#include "host/command/testing/CommandBench.hpp"
#include "host/services/ScriptRunner.hpp"
#include "host/services/testing/PlayerBench.hpp"
#include "host/setup/ServiceOptions.hpp"

namespace vigil {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

using TestCommand = CommandBench;

std::string fileText(const std::string& path) {
    std::ifstream file(path);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

TEST_F(TestCommand, saysThatNothingIsSetUpAndWhereToSetIt) {
    for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{
             {"test", "mail", "ann@example.org"}, {"test", "sms", "+49151"}}) {
        const CommandOutcome outcome = run(words);
        EXPECT_EQ(outcome.status, ExitStatus::No) << words[1];
        EXPECT_THAT(outcome.results, AllOf(StartsWith("Nothing was sent: no "), HasSubstr(at("vigil.toml"))));
    }
}

TEST_F(TestCommand, aWordThatIsNoCommandIsNamedWithTheNearestOne) {
    const std::vector<std::vector<std::string>> typed{
        {"test", "spech"}, {"settings", "chek"}, {"site", "creat"}, {"test", "xyzzy"}};
    const std::vector<std::string> told{"\"vigil test\" has no command \"spech\"; did you mean \"speech\"?",
                                        "\"vigil settings\" has no command \"chek\"; did you mean \"check\"?",
                                        "\"vigil site\" has no command \"creat\"; did you mean \"create\"?",
                                        "\"vigil test\" has no command \"xyzzy\";"};
    for (std::size_t i = 0; i < typed.size(); ++i) {
        const CommandOutcome outcome = run(typed[i]);
        EXPECT_EQ(outcome.status, ExitStatus::BadInput) << told[i];
        EXPECT_THAT(outcome.errors, HasSubstr(told[i]));
    }
    EXPECT_THAT(run({"test"}).errors, HasSubstr("A subcommand is required"));
}

TEST_F(TestCommand, aMailGoesToTheProgramThatIsSetAndItsEndIsTheAnswer) {
    program("mta", "echo \"$@\" >" + at("words") + "; cat >" + at("mail") + "\n");
    set("[mail]\nmethod = \"sendmail\"\nsendmail = \"./mta\"\nfrom = \"vigil@example.org\"\n");
    const CommandOutcome sent = run({"test", "mail", "ann@example.org"});
    EXPECT_EQ(sent.status, ExitStatus::Yes) << sent.results << sent.errors;
    EXPECT_THAT(sent.results,
                AllOf(StartsWith("to      ann@example.org\nfrom    vigil@example.org\nby      "),
                      HasSubstr("\ntook    "), HasSubstr("\nIt was sent: ")));
    EXPECT_THAT(fileText(at("words")), HasSubstr("-f vigil@example.org -- ann@example.org"));
    EXPECT_THAT(fileText(at("mail")),
                AllOf(HasSubstr("\nTo: <ann@example.org>\n"), HasSubstr("Subject: Vigil test")));

    for (const auto& [exit, says] :
         std::vector<std::pair<int, const char*>>{{67, "It was not sent, and trying again would not help."},
                                                  {75, "It was not sent. A monitor's"}}) {
        program("mta", "cat >/dev/null; echo no such user >&2; exit " + std::to_string(exit) + "\n");
        const CommandOutcome refused = run({"test", "mail", "ann@example.org"});
        EXPECT_EQ(refused.status, ExitStatus::No) << exit;
        EXPECT_THAT(refused.results, AllOf(HasSubstr("no such user"), HasSubstr(says)));
    }
}

TEST_F(TestCommand, aServerThatIsNotThereIsNoSuccess) {
    // Port 9 of this machine: discard, which nobody serves.
    set("[mail]\nmethod = \"smtp\"\nhost = \"127.0.0.1\"\nport = 9\nsecurity = \"none\"\nfrom = "
        "\"a@example.org\"\n");
    const CommandOutcome outcome = run({"test", "mail", "--json", "ann@example.org"});
    EXPECT_EQ(outcome.status, ExitStatus::No);
    EXPECT_THAT(
        outcome.results,
        AllOf(StartsWith(
                  "{\"test\":\"mail\",\"done\":false,\"to\":\"ann@example.org\",\"from\":\"a@example.org\""),
              HasSubstr("\"by\":\"smtp, 127.0.0.1 port 9, security none, without a login\""),
              HasSubstr("\"answer\":\""), HasSubstr("\"says\":\"It was not sent. ")));
}

TEST_F(TestCommand, aShortMessageGoesToTheCommandThatIsSet) {
    program("send", "printf '%s|' \"$@\" >" + at("words") + "\n");
    set("[sms]\nmethod = \"command\"\ncommand = [\"./send\", \"--from\", \"a b\"]\n");
    const CommandOutcome sent = run({"test", "sms", "+49151"});
    EXPECT_EQ(sent.status, ExitStatus::Yes) << sent.results << sent.errors;
    EXPECT_THAT(fileText(at("words")), StartsWith("--from|a b|+49151|Vigil test from "));
    program("send", "echo no credit >&2; exit 3\n");
    const CommandOutcome refused = run({"test", "sms", "+49151", "--json"});
    EXPECT_EQ(refused.status, ExitStatus::No);
    EXPECT_THAT(refused.results, AllOf(HasSubstr("\"done\":false"), HasSubstr("no credit")));
}

TEST_F(TestCommand, whatIsNoAddressAndNoNumberIsNotTried) {
    program("send", "touch " + at("sent") + "\n");
    set("[sms]\nmethod = \"command\"\ncommand = [\"./send\"]\n"
        "[mail]\nmethod = \"sendmail\"\nsendmail = \"./send\"\nfrom = \"a@example.org\"\n");
    for (const char* address : {"ann", "a@b, c@d", "a@b\r\nBcc: c@d"})
        EXPECT_EQ(run({"test", "mail", address}).status, ExitStatus::BadInput) << address;
    for (const char* number : {"", "+", "12a", "12;reboot", "12\n"})
        EXPECT_EQ(run({"test", "sms", number}).status, ExitStatus::BadInput) << number;
    EXPECT_FALSE(std::filesystem::exists(at("sent")));
}

class TestCommandOnNoDevice : public CommandBench {
  protected:
    /// A driver that takes every sound in its own time and makes nothing of it.
    TestCommandOnNoDevice() { setenv("SDL_AUDIODRIVER", "dummy", 1); }
    ~TestCommandOnNoDevice() override { unsetenv("SDL_AUDIODRIVER"); }
    /// A program that speaks for so long.
    std::string speaker(double seconds) const {
        m_folder.write("vigil/speech.wav", toneWav(seconds));
        return program("say", "cat >" + at("said") + "; cat " + at("speech.wav") + "\n");
    }
};

TEST_F(TestCommandOnNoDevice, aSoundIsPlayedToItsEnd) {
    const std::string file = m_folder.write("tone.wav", toneWav(0.5));
    const CommandOutcome played = run({"test", "sound", file});
    EXPECT_EQ(played.status, ExitStatus::Yes) << played.results << played.errors;
    EXPECT_THAT(played.results,
                AllOf(StartsWith("file    " + file + "\ndevice  the default one\nbegan   after "),
                      HasSubstr("\nIt was played to its end.")));
    const CommandOutcome own = run({"test", "sound", "--json"});
    EXPECT_EQ(own.status, ExitStatus::Yes) << own.results << own.errors;
    EXPECT_THAT(own.results,
                AllOf(StartsWith("{\"test\":\"sound\",\"done\":true,\"file\":\""), HasSubstr("chime.wav\"")));
    const auto at = own.results.find("\"seconds\":");
    ASSERT_NE(at, std::string::npos);
    EXPECT_GT(std::stod(own.results.substr(at + 10)), 0.3);
}

TEST_F(TestCommandOnNoDevice, whatCannotBePlayedIsNoSuccess) {
    EXPECT_EQ(run({"test", "sound", m_folder.path() + "/none.wav"}).status, ExitStatus::BadInput);
    const CommandOutcome noSound = run({"test", "sound", m_folder.write("a.wav", "no sound")});
    EXPECT_EQ(noSound.status, ExitStatus::No);
    EXPECT_THAT(noSound.results, AllOf(HasSubstr("\nanswer  "), HasSubstr("\nThe file cannot be played.\n")));
    setenv("SDL_AUDIODRIVER", "none of the drivers", 1);
    const CommandOutcome noDevice = run({"test", "sound"});
    EXPECT_EQ(noDevice.status, ExitStatus::No);
    EXPECT_THAT(noDevice.results, HasSubstr("\nIt was not played: no device took it.\n"));
}

TEST_F(TestCommandOnNoDevice, aTextIsSpokenByTheProgramThatIsSet) {
    speaker(0.2);
    set("[speech]\nprogram = \"./say\"\n");
    const CommandOutcome spoken = run({"test", "speech", "Frost at 3 o'clock"});
    EXPECT_EQ(spoken.status, ExitStatus::Yes) << spoken.results << spoken.errors;
    EXPECT_THAT(fileText(at("said")), HasSubstr("Frost at 3 o'clock"));
    EXPECT_THAT(spoken.results, StartsWith("text    Frost at 3 o'clock\nprogram " + at("say") + "\n"));
    set("[speech]\nprogram = \"no-such-speaker\"\n");
    const CommandOutcome silent = run({"test", "speech"});
    EXPECT_EQ(silent.status, ExitStatus::No);
    EXPECT_THAT(silent.results, HasSubstr("\nIt was not said: "));
}

TEST(ServiceOptions, takeEverythingOfSoundAndSpeechFromTheSettings) {
    Settings settings;
    settings.sound.device = "d";
    settings.speech = {.program = "p", .voice = "v", .rate = 90, .language = "l"};
    const Player::Options options = playerOptions(settings, "/bin");
    EXPECT_EQ(options.setup.device, "d");
    EXPECT_EQ(options.setup.program, "p");
    EXPECT_EQ(options.setup.voice, "v");
    EXPECT_EQ(options.setup.language, "l");
    EXPECT_EQ(options.setup.rate, 90u);
    EXPECT_EQ(options.helper, helperPath("/bin"));
}

TEST(ServiceOptions, takeEverythingOfMailAndMessagesFromTheSettings) {
    Settings settings;
    settings.mail = {.method = MailMethod::Smtp,
                     .host = "h",
                     .security = MailSecurity::Tls,
                     .user = "u",
                     .secret = "s",
                     .from = "f",
                     .caFile = "c",
                     .sendmail = "m"};
    settings.sms = {.method = SmsMethod::Mmcli, .command = {"a"}, .program = "p", .config = "g"};
    const AutomationOptions options = automationOptions(settings, "/bin");
    EXPECT_EQ(options.mail.method, MailOptions::Smtp);
    EXPECT_EQ(options.mail.host, "h");
    EXPECT_EQ(options.mail.port, 465);
    EXPECT_EQ(options.mail.security, MailOptions::Tls);
    EXPECT_EQ(options.mail.user, "u");
    EXPECT_EQ(options.mail.secret, "s");
    EXPECT_EQ(options.mail.from, "f");
    EXPECT_EQ(options.mail.caFile, "c");
    EXPECT_EQ(options.mail.sendmail, "m");
    EXPECT_EQ(options.sms.method, SmsOptions::Mmcli);
    EXPECT_THAT(options.sms.command, testing::ElementsAre("a"));
    EXPECT_EQ(options.sms.program, "p");
    EXPECT_EQ(options.sms.config, "g");
}

}  // namespace
}  // namespace vigil
