#include <fstream>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/site/HistoryFile.hpp"
#include "host/site/testing/HistoryBench.hpp"

namespace vigil {
namespace {

using testing::ElementsAre;

class History : public HistoryBench {};

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

TEST_F(History, GivesBackTheReadingsOfAFewKeysAlone) {
    {
        const auto to = writer();
        for (int i = 0; i < 4; ++i)
            to->append(kRoof, std::nullopt, kStart.plus(i * kMinute),
                       Readings::make({AgentProperty::number("outsideTemp", i, kStart),
                                       AgentProperty::text("sky", i < 2 ? "Fog" : "Rain", kStart),
                                       AgentProperty::number("windSpeed", i * 2, kStart)}));
        to->append(kRoof, std::nullopt, kStart.plus(4 * kMinute), batch(4));  // under another layout
    }
    const auto from = reader();
    const auto source = from->sourceOf(kRoof, {.since = kStart.plus(kMinute)}, {"sky", "windSpeed"});
    ASSERT_TRUE(source);
    std::vector<std::string> found;
    for (auto next = source.value()->next(); next && next.value(); next = source.value()->next())
        found.push_back(next.value()->readings->description());
    EXPECT_THAT(found, ElementsAre("{sky = Fog, windSpeed = 2}", "{sky = Rain, windSpeed = 4}",
                                   "{sky = Rain, windSpeed = 6}", "{}"));
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
    const auto kept = from->archives(kFrost).value();
    for (const auto& archive : kept)
        archives.push_back(archive.archive);
    EXPECT_THAT(archives, ElementsAre("first", "second", "third"));
    ASSERT_EQ(from->plugIns().value().size(), 1U);
    EXPECT_EQ(from->plugIns().value()[0].title, "Frost");
}

}  // namespace
}  // namespace vigil
