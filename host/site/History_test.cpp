#include <cmath>
#include <filesystem>
#include <fstream>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/site/HistoryFile.hpp"
#include "host/site/HistoryReader.hpp"
#include "host/site/HistoryWriter.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace vigil {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr RecordId kRoof = 1;
constexpr RecordId kBarn = 2;
constexpr RecordId kFrost = 7;
constexpr double kMinute = 60;
constexpr double kDay = 86400;
const Date kStart(794826000);

class History : public testing::Test {
  protected:
    std::string site() { return folder.path() + "/home.vigilsite"; }
    std::string file() { return site() + "-history"; }
    std::unique_ptr<HistoryWriter> writer(HistoryOptions options = {}) {
        options.flushEvery = std::chrono::milliseconds(0);
        options.tell = [this](const std::string& sentence) { told.push_back(sentence); };
        auto opened = HistoryWriter::open(site(), std::move(options));
        EXPECT_TRUE(opened) << opened.error().message;
        return opened ? std::move(opened).value() : nullptr;
    }
    std::unique_ptr<HistoryReader> reader() {
        auto opened = HistoryReader::open(site());
        EXPECT_TRUE(opened) << opened.error().message;
        return opened ? std::move(opened).value() : nullptr;
    }
    static std::shared_ptr<const Readings> batch(double temperature) {
        return Readings::make({AgentProperty::number("outsideTemp", temperature, kStart)});
    }
    /// Temperatures of the station's notifications in a range.
    std::vector<double> temperatures(RecordId station, HistoryRange range = {}) {
        std::vector<double> all;
        auto source = reader()->source(station, range);
        if (!source) return ADD_FAILURE() << source.error().message, all;
        for (;;) {
            const auto next = source.value()->next();
            if (!next) return ADD_FAILURE() << next.error().message, all;
            if (!next.value()) return all;
            all.push_back(next.value()->readings->objectForKey("outsideTemp")->value());
        }
    }
    static PlugInRecord plugIn(const std::string& archive) {
        return {.id = kFrost, .station = kRoof, .className = "Monitor", .title = "Frost", .archive = archive};
    }
    void damage() {
        std::fstream bytes(file(), std::ios::in | std::ios::out | std::ios::binary);
        bytes.seekp(0);
        bytes << std::string(8192, 'x');
    }
    std::vector<std::string> setAside() {
        std::vector<std::string> found;
        for (const auto& entry : fs::directory_iterator(folder.path()))
            if (const auto name = entry.path().filename().string();
                name.find("damaged-") != std::string::npos && !name.ends_with("-wal"))
                found.push_back(name);
        return found;
    }

    TemporaryFolder folder;
    std::vector<std::string> told;
};

TEST_F(History, GivesBackWhatEachStationSaidInARange) {
    {
        const auto to = writer();
        to->named(kRoof, "Roof");
        for (int i = 0; i < 5; ++i) {
            to->append(kRoof, 100 + i, kStart.plus(i * kMinute), batch(i));
            to->append(kBarn, std::nullopt, kStart.plus(i * kMinute), batch(-i));
        }
    }
    EXPECT_THAT(temperatures(kRoof), ElementsAre(0, 1, 2, 3, 4));
    EXPECT_THAT(temperatures(kBarn, {kStart.plus(kMinute), kStart.plus(3 * kMinute)}), ElementsAre(-1, -2));
    const auto stations = reader()->stations();
    ASSERT_TRUE(stations);
    ASSERT_EQ(stations.value().size(), 2U);
    EXPECT_EQ(stations.value()[0].name, "Roof");
    EXPECT_EQ(stations.value()[0].notifications, 5U);
    EXPECT_EQ(stations.value()[0].first, kStart);
    EXPECT_EQ(stations.value()[1].last, kStart.plus(4 * kMinute));
    const auto latest = reader()->latest(kRoof, kStart.plus(2.5 * kMinute));
    ASSERT_TRUE(latest);
    ASSERT_TRUE(latest.value());
    EXPECT_EQ(latest.value()->sequence, 102U);
    EXPECT_EQ(latest.value()->started, kStart.plus(2 * kMinute));
    EXPECT_FALSE(reader()->latest(kRoof, kStart.plus(-1)).value());
}

TEST_F(History, KeepsTheOrderOfArrivalWhenTheClockIsSetBack) {
    {
        const auto to = writer();
        to->append(kRoof, std::nullopt, kStart.plus(10), batch(1));
        to->append(kRoof, std::nullopt, kStart.plus(5), batch(2));
        to->append(kRoof, std::nullopt, kStart.plus(6), batch(3));
    }
    EXPECT_THAT(temperatures(kRoof), ElementsAre(1, 2, 3));
}

TEST_F(History, IsReadWhileItIsWritten) {
    const auto to = writer();
    to->append(kRoof, std::nullopt, kStart, batch(1));
    to->flush();
    const auto from = reader();
    auto source = from->source(kRoof).value();
    to->append(kRoof, std::nullopt, kStart.plus(1), batch(2));
    to->flush();
    EXPECT_TRUE(source->next().value());
    EXPECT_FALSE(source->next().value()) << "a source sees the file as it was when it was made";
    EXPECT_THAT(temperatures(kRoof), ElementsAre(1, 2));
}

TEST_F(History, CommitsByItselfAfterAWhile) {
    auto opened = HistoryWriter::open(site(), {.flushEvery = std::chrono::milliseconds(20)});
    ASSERT_TRUE(opened);
    opened.value()->append(kRoof, std::nullopt, kStart, batch(1));
    for (int i = 0; i < 500 && opened.value()->counts().written == 0; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_EQ(opened.value()->counts().written, 1U);
    EXPECT_THAT(temperatures(kRoof), ElementsAre(1));
}

TEST_F(History, GoesOnWithAStationAfterItWasClosed) {
    for (int run = 0; run < 3; ++run) {
        const auto to = writer();
        to->append(kRoof, std::nullopt, kStart.plus(run), batch(run));
    }
    EXPECT_THAT(temperatures(kRoof), ElementsAre(0, 1, 2));
    const auto database = openHistoryForReading(file());
    EXPECT_EQ(database->execAndGet("SELECT count(*) FROM layouts").getInt(), 1) << "the layout is used again";
    EXPECT_TRUE(told.empty());
}

TEST_F(History, StoresATextThatRepeatsOnce) {
    {
        const auto to = writer();
        for (int i = 0; i < 50; ++i)
            to->append(kRoof, std::nullopt, kStart.plus(i),
                       Readings::make({AgentProperty::text("sky", "overcast with showers", kStart)}));
        for (int i = 0; i < 50; ++i)
            to->append(kRoof, std::nullopt, kStart.plus(i),
                       Readings::make({AgentProperty::text("sky", "text " + std::to_string(i), kStart)}));
    }
    const auto database = openHistoryForReading(file());
    EXPECT_EQ(database->execAndGet("SELECT count(*) FROM texts").getInt(), 1);
    auto source = reader()->source(kRoof).value();
    for (int i = 0; i < 100; ++i) {
        const auto next = source->next();
        ASSERT_TRUE(next.value());
        EXPECT_EQ(next.value()->readings->objectForKey("sky")->stringValue(),
                  i < 50 ? "overcast with showers" : "text " + std::to_string(i - 50));
    }
}

TEST_F(History, RefusesTheNewestWhenTooManyWaitAndWritesTheLossDown) {
    {
        auto opened = HistoryWriter::open(site(), {.flushEvery = std::chrono::minutes(1), .mostQueued = 3});
        ASSERT_TRUE(opened);
        HistoryWriter& to = *opened.value();
        for (int i = 0; i < 10; ++i)
            to.append(kRoof, std::nullopt, kStart.plus(i), batch(i));
        EXPECT_EQ(to.counts().queued, 3U);
        EXPECT_EQ(to.counts().refused, 7U);
        EXPECT_EQ(to.counts().appended, 10U);
        to.flush();
        EXPECT_EQ(to.counts().written, 3U);
        EXPECT_EQ(to.counts().queued, 0U);
    }
    EXPECT_THAT(temperatures(kRoof), ElementsAre(0, 1, 2));
    const auto losses = reader()->losses(kRoof).value();
    ASSERT_EQ(losses.size(), 1U);
    EXPECT_EQ(losses[0].count, 7U);
    EXPECT_EQ(losses[0].from, kStart.plus(3));
    EXPECT_EQ(losses[0].to, kStart.plus(9));
}

TEST_F(History, RefusesANotificationWithoutAFiniteTime) {
    const auto to = writer();
    to->append(kRoof, std::nullopt, Date(std::nan("")), batch(1));
    to->append(kRoof, std::nullopt, Date(INFINITY), batch(1));
    to->append(kRoof, std::nullopt, kStart, nullptr);
    to->append(kRoof, std::nullopt, kStart, batch(2));
    to->flush();
    EXPECT_EQ(to->counts().refused, 3U);
    EXPECT_THAT(temperatures(kRoof), ElementsAre(2));
}

TEST_F(History, RemembersFiresWatchesAndArchives) {
    {
        const auto to = writer();
        to->archived(plugIn("first"), kStart, ArchiveReason::Began);
        to->started(kFrost, kStart, WatchReason::Run);
        to->started(kFrost, kStart.plus(1), WatchReason::Switched);  // already watches
        to->fired(kRoof, kFrost, kStart.plus(10), kStart.plus(10.5), kStart.plus(12));
        to->archived(plugIn("saved"), kStart.plus(20), ArchiveReason::Saved);   // too soon
        to->archived(plugIn("first"), kStart.plus(30), ArchiveReason::Edited);  // not edited
        to->archived(plugIn("second"), kStart.plus(40), ArchiveReason::Edited);
        to->archived(plugIn("third"), kStart.plus(40 + 3600), ArchiveReason::Saved);
        to->stopped(kFrost, kStart.plus(50), WatchReason::Switched);
    }
    const auto from = reader();
    const auto fires = from->fires(kFrost).value();
    ASSERT_EQ(fires.size(), 1U);
    EXPECT_EQ(fires[0].station, kRoof);
    EXPECT_EQ(fires[0].actionsBegan, kStart.plus(10.5));
    EXPECT_EQ(fires[0].actionsEnded, kStart.plus(12));
    EXPECT_TRUE(from->fires(kFrost, {kStart.plus(11)}).value().empty());
    const auto watches = from->watches(kFrost).value();
    ASSERT_EQ(watches.size(), 1U);
    EXPECT_EQ(watches[0].from, kStart);
    EXPECT_EQ(watches[0].began, WatchReason::Run);
    EXPECT_EQ(watches[0].to, kStart.plus(50));
    EXPECT_EQ(watches[0].ended, WatchReason::Switched);
    std::vector<std::string> archives;
    for (const auto& archive : from->archives(kFrost).value())
        archives.push_back(archive.archive);
    EXPECT_THAT(archives, ElementsAre("first", "second", "third"));
    ASSERT_EQ(from->plugIns().value().size(), 1U);
    EXPECT_EQ(from->plugIns().value()[0].title, "Frost");
}

TEST_F(History, EndsTheWatchesOfAProcessThatDiedAtTheLastThingItSaw) {
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

TEST_F(History, DeletesWhatIsOlderThanTheRetentionAndNothingElse) {
    constexpr int kOld = 1200;
    const auto to = writer({.retentionDays = 10});
    to->archived(plugIn("old"), kStart, ArchiveReason::Began);
    to->archived(plugIn("judges at the cut"), kStart.plus(kDay), ArchiveReason::Began);
    to->fired(kRoof, kFrost, kStart, kStart, kStart);
    for (int i = 0; i < kOld; ++i)
        to->append(kRoof, std::nullopt, kStart.plus(i), batch(i));
    to->append(kRoof, std::nullopt, kStart.plus(5 * kDay), batch(-1));
    to->append(kBarn, std::nullopt, kStart.plus(5 * kDay), batch(-2));
    to->flush();
    EXPECT_EQ(to->counts().deleted, 0U);
    to->append(kBarn, std::nullopt, kStart.plus(12 * kDay), batch(-3));
    to->flush();
    EXPECT_GT(to->counts().deleted, 0U);
    EXPECT_LT(to->counts().deleted, static_cast<std::uint64_t>(kOld)) << "in steps";
    for (int i = 1; i < 4; ++i) {
        to->append(kBarn, std::nullopt, kStart.plus(12 * kDay + i), batch(-3));
        to->flush();
    }
    EXPECT_EQ(to->counts().deleted, static_cast<std::uint64_t>(kOld));
    EXPECT_THAT(temperatures(kRoof), ElementsAre(-1));
    EXPECT_THAT(temperatures(kBarn), ElementsAre(-2, -3, -3, -3, -3));
    EXPECT_TRUE(reader()->fires(kFrost).value().empty());
    ASSERT_EQ(reader()->archives(kFrost).value().size(), 1U);
    EXPECT_EQ(reader()->archives(kFrost).value()[0].archive, "judges at the cut");
}

TEST_F(History, DropsLayoutsThatNoRowRefersToAnyMore) {
    const auto to = writer({.retentionDays = 1});
    to->append(kRoof, std::nullopt, kStart, Readings::make({AgentProperty::number("a", 1, kStart)}));
    to->append(kRoof, std::nullopt, kStart.plus(kDay), batch(1));
    to->flush();
    const auto database = openHistoryForReading(file());
    EXPECT_EQ(database->execAndGet("SELECT count(*) FROM layouts").getInt(), 2);
    to->append(kRoof, std::nullopt, kStart.plus(1.5 * kDay), batch(2));
    to->flush();
    EXPECT_EQ(database->execAndGet("SELECT count(*) FROM layouts").getInt(), 1);
    EXPECT_EQ(database->execAndGet("SELECT count(*) FROM layoutLabels").getInt(), 1);
    EXPECT_THAT(temperatures(kRoof), ElementsAre(1, 2));
}

TEST_F(History, ForgetsAStationWhole) {
    {
        const auto to = writer();
        to->named(kRoof, "Roof");
        to->archived(plugIn("x"), kStart, ArchiveReason::Began);
        to->started(kFrost, kStart, WatchReason::Run);
        to->append(kRoof, std::nullopt, kStart, batch(1));
        to->append(kBarn, std::nullopt, kStart, batch(2));
        to->forget(kRoof);
        to->append(kBarn, std::nullopt, kStart.plus(1), batch(3));
    }
    EXPECT_EQ(reader()->stations().value().size(), 1U);
    EXPECT_TRUE(temperatures(kRoof).empty());
    EXPECT_TRUE(reader()->watches(kFrost).value().empty());
    EXPECT_TRUE(reader()->plugIns().value().empty());
    EXPECT_THAT(temperatures(kBarn), ElementsAre(2, 3));
}

TEST_F(History, LetsOneWriterAtATimeWrite) {
    const auto to = writer();
    const auto second = HistoryWriter::open(site());
    ASSERT_FALSE(second);
    EXPECT_THAT(second.error().message, HasSubstr("is being written by another process"));
}

TEST_F(History, SetsADamagedFileAsideAndBeginsANewOne) {
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

TEST_F(History, SetsAFileThatIsNoHistoryAside) {
    SQLite::Database other(file(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
    other.exec("CREATE TABLE recipes(name TEXT)");
    ASSERT_TRUE(writer());
    ASSERT_EQ(told.size(), 1U);
    EXPECT_THAT(told[0], HasSubstr("it is no history"));
    EXPECT_EQ(setAside().size(), 1U);
}

TEST_F(History, FindsDamageThatAProcessLeftBehindAndTellsTheNewFileWhoWatches) {
    {
        const auto to = writer();
        for (int i = 0; i < 2000; ++i)
            to->append(kRoof, std::nullopt, kStart.plus(i), batch(i / 3.0));
    }
    {
        SQLite::Database asIfItDied(file(), SQLite::OPEN_READWRITE);
        asIfItDied.exec("UPDATE facts SET value = 0");
        asIfItDied.exec("PRAGMA wal_checkpoint(TRUNCATE)");
    }
    // Pages in the middle, which nobody reads who only appends.
    std::fstream bytes(file(), std::ios::in | std::ios::out | std::ios::binary);
    bytes.seekp(static_cast<std::streamoff>(fs::file_size(file()) / 2 / 4096 * 4096));
    bytes << std::string(8192, '\xEE');
    bytes.close();
    const auto to = writer();
    to->named(kRoof, "Roof");
    to->archived(plugIn("x"), kStart, ArchiveReason::Began);
    to->started(kFrost, kStart.plus(5000), WatchReason::Run);
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

TEST_F(History, SaysThatThereIsNoneYet) {
    const auto opened = HistoryReader::open(site());
    ASSERT_FALSE(opened);
    EXPECT_THAT(opened.error().message, HasSubstr("there is no history"));
}

TEST_F(History, TellsWhichRowCannotBeReadAndGoesOnBehindIt) {
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

TEST_F(History, WritesAgainWhenTheFileCanBeWrittenAgainAndTellsWhatWasLost) {
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
    }
    to->append(kRoof, std::nullopt, kStart.plus(2), batch(3));
    to->flush();
    EXPECT_THAT(temperatures(kRoof), ElementsAre(1, 3));
    EXPECT_EQ(reader()->losses(kRoof).value().size(), 1U);
    EXPECT_EQ(reader()->fires(kFrost).value().size(), 1U);
    EXPECT_THAT(told, ElementsAre(HasSubstr("cannot be written"), HasSubstr("is being written again")));
}

}  // namespace
}  // namespace vigil
