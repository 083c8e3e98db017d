#include <cmath>
#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/site/HistoryArchives.hpp"
#include "host/site/HistoryFile.hpp"
#include "host/site/HistoryQueue.hpp"
#include "host/site/testing/HistoryBench.hpp"

namespace vigil {
namespace {

using testing::ElementsAre;

class HistoryLimits : public HistoryBench {};

TEST_F(HistoryLimits, RefusesTheNewestWhenTooManyWaitAndWritesTheLossDown) {
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

PlugInRecord large(RecordId id, char filled, std::size_t bytes) {
    return {
        .id = id, .station = kRoof, .className = "", .title = "Large", .archive = std::string(bytes, filled)};
}

TEST_F(HistoryLimits, KeepsTheNewestArchiveOfEachPlugInWhereAllOfThemDoNotFit) {
    constexpr std::size_t kMega = std::size_t{1} << 20;
    {
        auto opened = HistoryWriter::open(site(), {.flushEvery = std::chrono::minutes(1)});
        ASSERT_TRUE(opened);
        HistoryWriter& to = *opened.value();
        to.archived(large(kFrost, 'a', kMega), kStart, ArchiveReason::Began);
        to.started(kFrost, kStart, WatchReason::Run);
        for (int i = 0; i < 100; ++i)
            to.archived(large(kFrost, static_cast<char>('b' + i % 20), kMega), kStart.plus(i + 1),
                        ArchiveReason::Edited);
        EXPECT_EQ(to.counts().dropped, 0U);
        to.flush();
        EXPECT_EQ(to.counts().dropped, 0U);
    }
    const auto kept = reader()->archives(kFrost).value();
    EXPECT_LE(kept.size(), HistoryQueue::kMostEventBytes / kMega);
    ASSERT_FALSE(kept.empty());
    EXPECT_EQ(kept.back().from, kStart.plus(100));
    EXPECT_EQ(reader()->watches(kFrost).value().size(), 1U);
}

TEST_F(HistoryLimits, DropsAndCountsWhatDoesNotFitAtAll) {
    auto opened = HistoryWriter::open(site(), {.flushEvery = std::chrono::minutes(1)});
    ASSERT_TRUE(opened);
    HistoryWriter& to = *opened.value();
    for (RecordId id = 1; id <= 5; ++id)
        to.archived(large(id, 'x', HistoryQueue::kMostEventBytes / 4), kStart, ArchiveReason::Began);
    EXPECT_EQ(to.counts().dropped, 2U) << "each is a little more than a quarter";
    to.flush();
    EXPECT_EQ(reader()->plugIns().value().size(), 3U);
}

TEST(HistoryEvents, AnEditThatIsReplacedByASavedStateStaysAnEdit) {
    const auto archive = [](const char* text, double date, ArchiveReason reason) {
        return HistoryEvent(
            ArchiveTaken{std::make_shared<const PlugInRecord>(PlugInRecord{.id = kFrost, .archive = text}),
                         Date(date), reason});
    };
    std::vector<HistoryEvent> events{archive("a", 1, ArchiveReason::Began),
                                     WatchBegan{kFrost, Date(1), WatchReason::Run},
                                     archive("b", 2, ArchiveReason::Saved)};
    keepNewestArchives(events);
    ASSERT_EQ(events.size(), 2U);
    const auto& kept = std::get<ArchiveTaken>(events[0]);
    EXPECT_EQ(kept.plugIn->archive, "b");
    EXPECT_EQ(kept.reason, ArchiveReason::Edited);
    EXPECT_EQ(kept.date, Date(2));
}

TEST(HistoryArchives, TakesASavedStateOnceAnHourAndWhereItDiffers) {
    HistoryArchives archives;
    const auto wants = [&](const char* text, double at, ArchiveReason reason) {
        return archives.wants({.id = kFrost, .archive = text}, kStart.plus(at), reason);
    };
    EXPECT_TRUE(wants("a", 0, ArchiveReason::Began));
    EXPECT_FALSE(wants("b", 3599, ArchiveReason::Saved));
    EXPECT_FALSE(wants("a", 3600, ArchiveReason::Saved));
    EXPECT_TRUE(wants("b", 3600, ArchiveReason::Saved));
    EXPECT_FALSE(wants("c", 3700, ArchiveReason::Saved));
    EXPECT_TRUE(wants("b", 3700, ArchiveReason::Edited));
    EXPECT_TRUE(wants("d", -10, ArchiveReason::Saved)) << "the clock was set back";
}

TEST_F(HistoryLimits, RefusesANotificationWithoutAFiniteTime) {
    const auto to = writer();
    to->append(kRoof, std::nullopt, Date(std::nan("")), batch(1));
    to->append(kRoof, std::nullopt, Date(INFINITY), batch(1));
    to->append(kRoof, std::nullopt, kStart, nullptr);
    to->append(kRoof, std::nullopt, kStart, batch(2));
    to->flush();
    EXPECT_EQ(to->counts().refused, 3U);
    EXPECT_THAT(temperatures(kRoof), ElementsAre(2));
}

TEST_F(HistoryLimits, DeletesWhatIsOlderThanTheRetentionAndNothingElse) {
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

TEST_F(HistoryLimits, DropsLayoutsThatNoRowRefersToAnyMore) {
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

TEST_F(HistoryLimits, ForgetsAStationWhole) {
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

}  // namespace
}  // namespace vigil
