#include <algorithm>
#include <atomic>
#include <functional>

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>

#include "host/run/LedgerSound.hpp"
#include "host/run/LedgerSpeech.hpp"
#include "host/services/testing/PlayerBench.hpp"
#include "host/site/SiteFile.hpp"
#include "host/site/SiteWriter.hpp"
#include "tests/support/RecordingLog.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace vigil {
namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

/// A site whose effects are written down, and the real player on a device that nobody hears.
class LedgerPlay : public PlayerBench {
  protected:
    void begin(Player::Options given) {
        player(std::move(given));
        m_speech = std::make_unique<LedgerSpeech>(*m_player, m_ledger);
        m_sound = std::make_unique<LedgerSound>(*m_player, m_ledger);
    }
    SpeechSink::Id say(const std::optional<std::string>& text) {
        const std::size_t number = m_said++;
        return m_speech->speak(text, [this, number](bool finished) {
            const std::lock_guard lock(m_guard);
            m_reports.emplace_back(number, finished);
        });
    }
    std::vector<std::pair<std::size_t, bool>> reports() {
        const std::lock_guard lock(m_guard);
        return m_reports;
    }
    bool hasReports(std::size_t count) {
        return eventually([&] { return reports().size() >= count; });
    }
    std::vector<EffectRecord> written() {
        m_player->stop();
        m_writer.stop();
        auto effects = m_site->effects().value();
        std::sort(effects.begin(), effects.end(), [](const auto& a, const auto& b) { return a.id < b.id; });
        return effects;
    }
    std::unique_ptr<SiteFile> openSite() {
        const std::string path = m_siteFolder.path() + "/home.vigilsite";
        EXPECT_TRUE(SiteFile::create(path));
        return std::move(SiteFile::open(path, Access::Write)).value();
    }

    TemporaryFolder m_siteFolder;
    std::unique_ptr<SiteFile> m_site = openSite();
    std::atomic<int> m_time{100};
    std::function<Date()> m_clock = [this] { return Date(static_cast<double>(m_time++)); };
    SiteWriter m_writer{*m_site};
    FireDesk m_desk{m_writer, m_clock};
    RecordingLog m_log;
    EffectLedger m_ledger{m_desk, m_writer, m_log, m_clock};
    std::unique_ptr<LedgerSpeech> m_speech;
    std::unique_ptr<LedgerSound> m_sound;

  private:
    std::mutex m_guard;
    std::size_t m_said = 0;
    std::vector<std::pair<std::size_t, bool>> m_reports;
};

TEST_F(LedgerPlay, WhatIsSpokenStandsWithItsTimes) {
    auto given = options();
    given.setup.program = toneProgram(0.1);
    begin(given);
    say("Gale");
    say("Storm");
    ASSERT_TRUE(hasReports(2));
    EXPECT_THAT(reports(), ElementsAre(std::pair(std::size_t{0}, true), std::pair(std::size_t{1}, true)));
    const auto effects = written();
    ASSERT_THAT(effects, SizeIs(2));
    EXPECT_EQ(effects[0].kind, EffectRecord::Speech);
    EXPECT_EQ(effects[0].what, "Gale");
    for (const EffectRecord& effect : effects) {
        EXPECT_EQ(effect.state, EffectRecord::Ended);
        EXPECT_EQ(effect.result, "succeeded");
        ASSERT_TRUE(effect.started);
        EXPECT_GT(*effect.started, effect.queued);
        EXPECT_GT(*effect.ended, *effect.started);
    }
    EXPECT_GT(*effects[1].started, *effects[0].ended);
}

TEST_F(LedgerPlay, ASpeechWaitsUntilItsRecordStands) {
    auto given = options();
    given.setup.program = toneProgram(0.1);
    given.timing.held = kPatience;
    begin(given);
    SQLite::Database other(m_site->path(), SQLite::OPEN_READWRITE);
    other.exec("BEGIN IMMEDIATE");  // nobody else can commit meanwhile
    say("Gale");
    std::this_thread::sleep_for(milliseconds(500));
    EXPECT_THAT(reports(), IsEmpty());
    EXPECT_FALSE(std::filesystem::exists(path("said")));
    other.exec("ROLLBACK");
    ASSERT_TRUE(hasReports(1));
    EXPECT_TRUE(reports()[0].second);
    EXPECT_EQ(written()[0].result, "succeeded");
}

TEST_F(LedgerPlay, NothingToSayEndsAtOnceWithoutAPlayer) {
    begin({.helper = path("nobody")});
    say(std::nullopt);
    say(" \n");
    EXPECT_THAT(reports(), ElementsAre(std::pair(std::size_t{0}, false), std::pair(std::size_t{1}, false)));
    for (const EffectRecord& effect : written()) {
        EXPECT_EQ(effect.result, "failed");
        EXPECT_EQ(effect.detail, "there is nothing to say");
    }
}

TEST_F(LedgerPlay, ALongTextIsCutAndSaysSo) {
    auto given = options();
    given.setup.program = toneProgram(0.1);
    begin(given);
    say(std::string(200000, 'x'));
    ASSERT_TRUE(hasReports(1));
    EXPECT_FALSE(reports()[0].second) << "it was not spoken whole";
    const auto effects = written();
    ASSERT_THAT(effects, SizeIs(1));
    EXPECT_EQ(effects[0].result, "cut");
    EXPECT_EQ(effects[0].detail, "only its first 1000 characters were spoken, 199000 were left out");
    EXPECT_EQ(effects[0].what.size(), 1000u);
    EXPECT_EQ(fileText(path("said")).size(), 1000u);
}

TEST_F(LedgerPlay, WhatFailsStandsWithItsReason) {
    auto given = options();
    given.setup.program = path("nobody");
    begin(given);
    say("Gale");
    ASSERT_TRUE(hasReports(1));
    EXPECT_FALSE(reports()[0].second);
    EXPECT_FALSE(m_sound->play(path("bell.wav"), "No such file or directory"));
    EXPECT_TRUE(m_sound->play(write("junk.wav", "junk"), std::nullopt)) << "nobody has found out yet";
    ASSERT_TRUE(eventually([&] { return m_ledger.failures() == 3; }));
    const auto effects = written();
    ASSERT_THAT(effects, SizeIs(3));
    EXPECT_THAT(effects[0].detail, HasSubstr("there is no program"));
    EXPECT_EQ(effects[1].what, "bell.wav");
    EXPECT_EQ(effects[1].detail, "No such file or directory");
    EXPECT_THAT(effects[2].detail, HasSubstr("no wav, mp3, ogg or flac"));
    for (const EffectRecord& effect : effects)
        EXPECT_EQ(effect.result, "failed");
    EXPECT_THAT(m_log.lines(), SizeIs(3));
}

TEST_F(LedgerPlay, ASoundStandsWithItsTimes) {
    begin(options());
    EXPECT_TRUE(m_sound->play(tone("a.wav", 0.1), std::nullopt));
    ASSERT_TRUE(eventually([&] { return m_ledger.counts().contains({"sound", "succeeded"}); }));
    const auto effects = written();
    ASSERT_THAT(effects, SizeIs(1));
    EXPECT_EQ(effects[0].what, "a.wav");
    EXPECT_GT(*effects[0].ended, *effects[0].started);
}

TEST_F(LedgerPlay, AtTheStopEverySpeechIsAnsweredAtOnceAndNothingBegins) {
    auto given = options();
    given.setup.program = toneProgram(20);
    begin(given);
    say("one");
    say("two");
    ASSERT_TRUE(eventually([&] { return fileText(path("said")) == "one"; }));
    const auto before = Steady::now();
    m_ledger.stopEffects();
    m_speech->stopSpeaking();
    EXPECT_LT(Steady::now() - before, milliseconds(10000));
    EXPECT_THAT(reports(), SizeIs(2)) << "before anybody else has done anything";
    say("three");
    EXPECT_TRUE(m_sound->play(tone("a.wav", 20), std::nullopt));
    EXPECT_THAT(reports(), SizeIs(3));
    for (const auto& [number, finished] : reports())
        EXPECT_FALSE(finished);
    ASSERT_TRUE(eventually([&] { return m_ledger.failures() == 4; }));
    const auto effects = written();
    ASSERT_THAT(effects, SizeIs(4));
    for (const EffectRecord& effect : effects)
        EXPECT_EQ(effect.result, "interrupted") << effect.what;
    EXPECT_EQ(fileText(path("said")), "one");
    EXPECT_THAT(reports(), SizeIs(3));
}

TEST_F(LedgerPlay, OneThatNobodyWaitsForIsEnded) {
    auto given = options();
    given.setup.program = toneProgram(20);
    begin(given);
    const auto id = say("one");
    ASSERT_TRUE(eventually([&] { return fileText(path("said")) == "one"; }));
    m_speech->stop(id);
    EXPECT_TRUE(eventually([&] { return m_player->active() == 0; }));
    EXPECT_THAT(reports(), ElementsAre(std::pair(std::size_t{0}, false)));
    EXPECT_EQ(written()[0].result, "interrupted");
}

}  // namespace
}  // namespace vigil
