#include <filesystem>
#include <fstream>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/site/HistoryFile.hpp"
#include "host/site/SiteCopy.hpp"
#include "host/site/SiteFile.hpp"
#include "host/site/testing/HistoryBench.hpp"

namespace vigil {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

class HistoryDamage : public HistoryBench {
  protected:
    /// A history that a process that died left behind, with damage in the middle, where nobody reads who only
    /// appends.
    void leaveDamaged(int notifications) {
        {
            const auto to = writer();
            for (int i = 0; i < notifications; ++i) {
                to->append(kRoof, std::nullopt, kStart.plus(i / 1000.0), batch(i / 3.0));
                if (i % 1000 == 999) to->flush();
            }
        }
        {
            SQLite::Database asIfItDied(file(), SQLite::OPEN_READWRITE);
            asIfItDied.exec("UPDATE facts SET value = 0");
            asIfItDied.exec("PRAGMA wal_checkpoint(TRUNCATE)");
        }
        std::fstream bytes(file(), std::ios::in | std::ios::out | std::ios::binary);
        bytes.seekp(static_cast<std::streamoff>(fs::file_size(file()) / 2 / 4096 * 4096));
        bytes << std::string(8192, '\xEE');
    }
};

TEST_F(HistoryDamage, EndsTheWatchesOfAProcessThatDiedAtTheLastThingItSaw) {
    {
        const auto to = writer();
        to->archived(plugIn("first"), kStart, ArchiveReason::Began);
        to->started(kFrost, kStart, WatchReason::Run);
        to->append(kRoof, std::nullopt, kStart.plus(100), batch(1));
        to->flush();
        fs::copy(file(), file() + "-copy");
        fs::copy(file() + "-wal", file() + "-copy-wal");
    }
    // The copy is what a process that died then would have left behind.
    fs::rename(file() + "-copy", file());
    fs::rename(file() + "-copy-wal", file() + "-wal");
    writer()->flush();
    const auto watches = reader()->watches(kFrost).value();
    ASSERT_EQ(watches.size(), 1U);
    EXPECT_EQ(watches[0].to, kStart.plus(100));
    EXPECT_EQ(watches[0].ended, WatchReason::Unknown);
    EXPECT_THAT(temperatures(kRoof), ElementsAre(1));
}

TEST_F(HistoryDamage, LetsOneWriterAtATimeWrite) {
    const auto to = writer();
    const auto second = HistoryWriter::open(site());
    ASSERT_FALSE(second);
    EXPECT_THAT(second.error().message, HasSubstr("is being written by another process"));
}

TEST_F(HistoryDamage, SetsADamagedFileAsideAndBeginsANewOne) {
    writer()->append(kRoof, std::nullopt, kStart, batch(1));
    damage();
    {
        const auto to = writer();
        ASSERT_TRUE(to);
        to->append(kRoof, std::nullopt, kStart, batch(2));
    }
    ASSERT_EQ(told.size(), 1U);
    EXPECT_THAT(told[0], HasSubstr("is damaged"));
    ASSERT_EQ(setAside().size(), 1U);
    EXPECT_THAT(told[0], HasSubstr(setAside()[0]));
    EXPECT_THAT(setAside()[0], testing::MatchesRegex(".*-history.damaged-20..-..-..T......Z"));
    EXPECT_THAT(temperatures(kRoof), ElementsAre(2));
}

TEST_F(HistoryDamage, SetsAFileThatIsNoHistoryAside) {
    SQLite::Database other(file(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
    other.exec("CREATE TABLE recipes(name TEXT)");
    ASSERT_TRUE(writer());
    ASSERT_EQ(told.size(), 1U);
    EXPECT_THAT(told[0], HasSubstr("it is no history"));
    EXPECT_EQ(setAside().size(), 1U);
}

TEST_F(HistoryDamage, FindsDamageThatAProcessLeftBehindAndTellsTheNewFileWhoWatches) {
    std::unique_ptr<HistoryWriter> to;
    // Who watches has to stand in the damaged file before its check is over, which takes longer for a longer
    // one.
    for (int notifications = 2000; !to; notifications *= 5) {
        ASSERT_LE(notifications, 250'000) << "each check was over before anything was written";
        leaveDamaged(notifications);
        to = writer();
        to->named(kRoof, "Roof");
        to->archived(plugIn("x"), kStart, ArchiveReason::Began);
        to->started(kFrost, kStart.plus(5000), WatchReason::Run);
        to->flush();
        if (setAside().empty()) break;
        to.reset();
        told.clear();
        for (const auto& entry : fs::directory_iterator(folder.path()))
            fs::remove(entry.path());
    }
    for (int i = 0; i < 500 && setAside().empty(); ++i) {
        to->append(kRoof, std::nullopt, kStart.plus(5000 + i), batch(1));
        to->flush();
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    to->append(kRoof, std::nullopt, kStart.plus(9000), batch(5));
    to->flush();
    ASSERT_EQ(setAside().size(), 1U);
    EXPECT_THAT(told, ElementsAre(HasSubstr("its check found damage")));
    EXPECT_EQ(reader()->stations().value().at(0).name, "Roof");
    EXPECT_EQ(reader()->watches(kFrost).value().size(), 1U);
    EXPECT_EQ(temperatures(kRoof).back(), 5);
}

TEST_F(HistoryDamage, IsForItsOwnerAlone) {
    const auto to = writer();
    to->append(kRoof, std::nullopt, kStart, batch(1));
    to->flush();
    for (const char* suffix : {"", "-wal", "-shm", "-lock"}) {
        const auto others =
            fs::status(file() + suffix).permissions() & (fs::perms::group_all | fs::perms::others_all);
        EXPECT_EQ(others, fs::perms::none) << suffix;
    }
}

TEST_F(HistoryDamage, SetsTheHistoryOfAnotherSiteAsideAndTellsNothingOfIt) {
    ASSERT_TRUE(SiteFile::create(site()));
    writer()->append(kRoof, std::nullopt, kStart, batch(1));
    EXPECT_THAT(temperatures(kRoof), ElementsAre(1));
    writer()->append(kRoof, std::nullopt, kStart.plus(1), batch(2));
    EXPECT_THAT(temperatures(kRoof), ElementsAre(1, 2));
    EXPECT_TRUE(told.empty());

    fs::remove(site());
    ASSERT_TRUE(SiteFile::create(site()));
    const auto refused = HistoryReader::open(site());
    ASSERT_FALSE(refused);
    EXPECT_THAT(refused.error().message, HasSubstr("belongs to another site"));
    writer()->append(kRoof, std::nullopt, kStart, batch(3));
    EXPECT_THAT(temperatures(kRoof), ElementsAre(3));
    ASSERT_EQ(told.size(), 1U);
    EXPECT_THAT(told[0], HasSubstr("belongs to another site; it is now " + file() + ".other-site-"));
}

TEST_F(HistoryDamage, StaysWithASiteThatIsImportedFromItsOwnCopy) {
    ASSERT_TRUE(SiteFile::create(site()));
    writer()->append(kRoof, std::nullopt, kStart, batch(1));
    std::ofstream lines(folder.path() + "/lines");
    ASSERT_TRUE(exportSiteLines(site(), [&](std::string_view line) { return bool(lines << line); }));
    lines.close();
    ASSERT_TRUE(exportSite(site(), folder.path() + "/copy", false));
    for (const char* from : {"/lines", "/copy"}) {
        ASSERT_TRUE(importSite(folder.path() + from, site(), /*replace=*/true));
        EXPECT_THAT(temperatures(kRoof), ElementsAre(1)) << from;
    }
    EXPECT_TRUE(told.empty());
}

TEST_F(HistoryDamage, SaysThatThereIsNoneYet) {
    const auto opened = HistoryReader::open(site());
    ASSERT_FALSE(opened);
    EXPECT_THAT(opened.error().message, HasSubstr("there is no history"));
}

TEST_F(HistoryDamage, TellsWhichRowCannotBeReadAndGoesOnBehindIt) {
    {
        const auto to = writer();
        for (int i = 0; i < 3; ++i)
            to->append(kRoof, std::nullopt, kStart.plus(i), batch(i));
    }
    SQLite::Database(file(), SQLite::OPEN_READWRITE)
        .exec("UPDATE notifications SET readings = x'FF' WHERE id = 2");
    auto source = reader()->source(kRoof).value();
    EXPECT_TRUE(source->next());
    const auto second = source->next();
    ASSERT_FALSE(second);
    EXPECT_THAT(second.error().message, HasSubstr("notification 2: the packed row is damaged"));
    const auto third = source->next();
    ASSERT_TRUE(third);
    EXPECT_EQ(third.value()->started, kStart.plus(2));
    EXPECT_FALSE(source->next().value());
}

TEST_F(HistoryDamage, WritesAgainWhenTheFileCanBeWrittenAgainAndTellsWhatWasLost) {
    const auto to = writer();
    to->append(kRoof, std::nullopt, kStart, batch(1));
    to->flush();
    {
        // Somebody else keeps the file to himself for longer than the writer waits.
        SQLite::Database other(file(), SQLite::OPEN_READWRITE);
        other.exec("BEGIN IMMEDIATE");
        to->append(kRoof, std::nullopt, kStart.plus(1), batch(2));
        to->fired(kRoof, kFrost, kStart.plus(1), kStart.plus(1), kStart.plus(1));
        to->flush();
        EXPECT_EQ(to->counts().failed, 1U);
        EXPECT_THAT(to->counts().failing, HasSubstr("cannot be written: "));
    }
    to->append(kRoof, std::nullopt, kStart.plus(2), batch(3));
    to->flush();
    EXPECT_THAT(temperatures(kRoof), ElementsAre(1, 3));
    EXPECT_EQ(to->counts().failing, "");
    EXPECT_EQ(reader()->losses(kRoof).value().size(), 1U);
    EXPECT_EQ(reader()->fires(kFrost).value().size(), 1U);
    EXPECT_THAT(told, ElementsAre(HasSubstr("cannot be written"), HasSubstr("is being written again")));
}

}  // namespace
}  // namespace vigil
