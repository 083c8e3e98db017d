#include <algorithm>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include "host/command/RunChoice.hpp"
#include "host/command/testing/CommandBench.hpp"
#include "host/settings/SettingsTable.hpp"
#include "host/site/SiteFile.hpp"

namespace vigil {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

using SettingsCommand = CommandBench;

TEST_F(SettingsCommand, checkTellsEachMistakeWithItsPlaceAndEndsWith1) {
    const std::string file = set("[speech]\nrat = 3\nrate = 700\n");
    const CommandOutcome outcome = run({"settings", "check"});
    EXPECT_EQ(outcome.status, ExitStatus::No);
    EXPECT_EQ(outcome.results, file + ":2:1: speech.rat: there is no such key; did you mean \"rate\"?\n" +
                                   file +
                                   ":3:8: speech.rate: expected a whole number from 80 to 450, found 700\n");
    EXPECT_EQ(run({"settings", "check", "--json"}).results,
              "{\"file\":\"" + file +
                  "\",\"line\":2,\"column\":1,\"says\":\"speech.rat: there is no such key; did you mean "
                  "\\\"rate\\\"?\"}\n{\"file\":\"" +
                  file +
                  "\",\"line\":3,\"column\":8,\"says\":\"speech.rate: expected a whole number from 80 to "
                  "450, found "
                  "700\"}\n");
}

TEST_F(SettingsCommand, checkIsContentWithAFileThatIsRightAndWithNone) {
    const CommandOutcome none = run({"settings", "check"});
    EXPECT_EQ(none.status, ExitStatus::Yes);
    EXPECT_EQ(none.results, "There is no " + at("vigil.toml") + ", so every setting has its default.\n");
    const std::string file = set("[speech]\nrate = 100\n[sound]\ndevice = \"x\"\n");
    const CommandOutcome right = run({"settings", "check"});
    EXPECT_EQ(right.status, ExitStatus::Yes);
    EXPECT_EQ(right.results, file + " is right; keys that it sets: 2.\n");
    EXPECT_EQ(run({"settings", "check", "--json"}).results, "");
}

TEST_F(SettingsCommand, checkOfANamedFileLooksAtThatOne) {
    set("[speech]\nrate = 700\n");
    const std::string other = m_folder.write("other.toml", "[speech]\nrate = 100\n");
    EXPECT_EQ(run({"settings", "check", other}).status, ExitStatus::Yes);
    const CommandOutcome missing = run({"settings", "check", other + "x"});
    EXPECT_EQ(missing.status, ExitStatus::BadInput);
    EXPECT_EQ(missing.errors, "vigil: there is no file " + other + "x\n");
    EXPECT_EQ(run({"settings", "check", m_folder.path()}).status, ExitStatus::Environment);
}

TEST_F(SettingsCommand, checkLooksUpTheSecretThatIsNamed) {
    const std::string file = set("[mail]\nuser = \"ann\"\nsecret = \"my-mail\"\n");
    const CommandOutcome missing = run({"settings", "check"});
    EXPECT_EQ(missing.status, ExitStatus::No);
    EXPECT_THAT(missing.results, AllOf(StartsWith(file + ":3:10: mail.secret: "), HasSubstr(at("secrets"))));
    const std::string secrets = m_folder.write("vigil/secrets", "other = x\n");
    ASSERT_EQ(chmod(secrets.c_str(), 0600), 0);
    EXPECT_EQ(run({"settings", "check"}).results,
              file + ":3:10: mail.secret: " + secrets + " has no line \"my-mail = …\"\n");
    m_folder.write("vigil/secrets", "my-mail = x\n");
    EXPECT_EQ(run({"settings", "check"}).status, ExitStatus::Yes);
}

TEST_F(SettingsCommand, showTellsWhatHoldsAndWhoSaysSo) {
    const std::string file = set("[speech]\nrate = 100\n\n[sms]\ncommand = [\"send\", \"a b\"]\n");
    const CommandOutcome shown = run({"settings", "show"});
    EXPECT_EQ(shown.status, ExitStatus::Yes);
    EXPECT_THAT(shown.results, StartsWith(file + "\n[sound]\n"));
    EXPECT_THAT(shown.results, HasSubstr("\n  rate          line 2   100\n"));
    EXPECT_THAT(shown.results, HasSubstr("\n  command       line 5   [\"send\", \"a b\"]\n"));
    EXPECT_THAT(shown.results, HasSubstr("\n  port          default  587\n"));
    EXPECT_THAT(shown.results, HasSubstr("\n  scripts       default  \"" + at("scripts") + "\"\n"));
    EXPECT_THAT(shown.results, HasSubstr("\n  file          default  \"" + SiteFile::defaultFile() + "\"\n"));
    EXPECT_THAT(shown.results, HasSubstr("\n  metrics-port  default  no port\n"));

    const std::string json = run({"settings", "show", "--json"}).results;
    EXPECT_EQ(static_cast<std::size_t>(std::count(json.begin(), json.end(), '\n')), settingsTable().size());
    EXPECT_THAT(
        json,
        HasSubstr("{\"key\":\"speech.rate\",\"value\":100,\"source\":\"file\",\"line\":2,\"column\":8}\n"));
    EXPECT_THAT(json, HasSubstr("{\"key\":\"sms.command\",\"value\":[\"send\",\"a b\"],\"source\":\"file\""));
    EXPECT_THAT(json, HasSubstr("{\"key\":\"run.history\",\"value\":true,\"source\":\"default\"}\n"));
    EXPECT_THAT(json, HasSubstr("{\"key\":\"run.metrics-port\",\"value\":null,\"source\":\"default\"}\n"));
}

TEST_F(SettingsCommand, showOfAFileThatIsWrongTellsWhatIsWrongAndEndsWith2) {
    const std::string file = set("[speech]\nrate = 700\n");
    const CommandOutcome shown = run({"settings", "show"});
    EXPECT_EQ(shown.status, ExitStatus::BadInput);
    EXPECT_EQ(shown.results, "");
    EXPECT_THAT(shown.errors, StartsWith("vigil: " + file + ":2:8: speech.rate: "));
}

TEST_F(SettingsCommand, theSiteOfEveryCommandIsThatOfTheSettingsUnlessGiven) {
    const std::string mine = m_folder.path() + "/mine.vigilsite";
    set("[site]\nfile = \"../mine.vigilsite\"\n");
    const std::string& path = mine;
    EXPECT_THAT(run({"site", "create"}).results, StartsWith("Made the site " + path));
    EXPECT_TRUE(SiteFile::open(mine, Access::Read));
    for (const std::vector<std::string>& command : std::vector<std::vector<std::string>>{
             {"site", "check"}, {"site", "show"}, {"station", "list"}, {"actions"}})
        EXPECT_EQ(run(command).status, ExitStatus::Yes) << command.front();
    EXPECT_THAT(run({"monitor", "list"}).results, HasSubstr(path));
    EXPECT_THAT(run({"site", "show", "--site", mine + "x"}).errors, HasSubstr(mine + "x"));
    EXPECT_THAT(run({"history"}).errors, HasSubstr(path));
}

TEST_F(SettingsCommand, settingsThatAreWrongStopWhoeverNeedsThemAndNobodyElse) {
    const std::string site = m_folder.path() + "/a.vigilsite";
    EXPECT_EQ(run({"site", "create", "--site", site}).status, ExitStatus::Yes);
    set("[sound]\ndevise = \"x\"\n");
    for (const std::vector<std::string>& command :
         std::vector<std::vector<std::string>>{{"site", "show"},
                                               {"status"},
                                               {"history"},
                                               {"monitor", "list"},
                                               {"run"},
                                               {"run", "--site", site}}) {
        const CommandOutcome outcome = run(command);
        EXPECT_EQ(outcome.status, ExitStatus::BadInput) << command.front();
        EXPECT_THAT(outcome.errors, HasSubstr("vigil.toml:2:1: sound.devise: ")) << command.front();
    }
    EXPECT_EQ(run({"site", "show", "--site", site}).status, ExitStatus::Yes);
    EXPECT_EQ(run({"check", "a.unitValue < 1"}).status, ExitStatus::Yes);
}

RunSettings chosenBy(std::vector<std::string> words, const RunSettings& settings) {
    CLI::App app;
    RunChoice choice;
    addRunOptions(app, choice);
    app.parse(std::vector<std::string>(words.rbegin(), words.rend()));
    return chosen(choice, settings);
}

TEST(RunChoice, anOptionPrevailsOverItsSettingAndTheOthersStay) {
    RunSettings set;
    set.threads = 8;
    set.logLevel = 1;
    set.logFormat = LogFormat::Json;
    set.metricsPort = 9105;
    set.history = false;
    set.historyDays = 7;
    set.scripts = "/s";
    const RunSettings untouched = chosenBy({}, set);
    EXPECT_EQ(untouched.threads, 8);
    EXPECT_EQ(untouched.logLevel, 1);
    EXPECT_EQ(untouched.logFormat, LogFormat::Json);
    EXPECT_EQ(untouched.metricsPort, 9105);
    EXPECT_FALSE(untouched.history);
    EXPECT_EQ(untouched.historyDays, 7);
    EXPECT_EQ(untouched.scripts, "/s");
    const RunSettings all =
        chosenBy({"--threads", "3", "--log-level", "0", "--log-format", "journal", "--metrics-port", "0",
                  "--history", "--history-days", "30", "--scripts", "/t"},
                 set);
    EXPECT_EQ(all.threads, 3);
    EXPECT_EQ(all.logLevel, 0);
    EXPECT_EQ(all.logFormat, LogFormat::Journal);
    EXPECT_EQ(all.metricsPort, 0);
    EXPECT_TRUE(all.history);
    EXPECT_EQ(all.historyDays, 30);
    EXPECT_EQ(all.scripts, "/t");
    EXPECT_FALSE(chosenBy({"--no-history"}, {}).history);
}

TEST(RunChoice, anOptionHasTheRangeOfItsSetting) {
    for (const std::vector<std::string>& words :
         std::vector<std::vector<std::string>>{{"--threads", "0"},
                                               {"--threads", "65"},
                                               {"--log-level", "4"},
                                               {"--log-format", "xml"},
                                               {"--metrics-port", "65536"},
                                               {"--history-days", "0"},
                                               {"--history", "--no-history"}})
        EXPECT_THROW(chosenBy(words, {}), CLI::ParseError) << words.front();
}

}  // namespace
}  // namespace vigil
