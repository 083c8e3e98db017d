#include "host/site/SiteWriter.hpp"

#include <cmath>
#include <future>
#include <limits>
#include <set>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/site/SiteBatch.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace vigil {
namespace {

class SiteWriterTest : public testing::Test {
  protected:
    SiteWriterTest() {
        EXPECT_TRUE(SiteFile::create(m_path));
        m_site = SiteFile::open(m_path, Access::Write).value().release();
        m_owned.reset(m_site);
        const RecordId station = m_site->addStation({.name = "Roof"}).value();
        m_plugIn = m_site->addPlugIn({.station = station, .title = "Frost", .archive = "{}"}).value();
    }
    PlugInRecord archive(std::string text) const {
        return {.id = m_plugIn, .title = "Frost", .archive = std::move(text)};
    }

    TemporaryFolder m_folder;
    std::string m_path = m_folder.path() + "/home.vigilsite";
    std::unique_ptr<SiteFile> m_owned;
    SiteFile* m_site = nullptr;
    RecordId m_plugIn = 0;
};

TEST_F(SiteWriterTest, forgetsWhatIsOldAndOverInShares) {
    constexpr int kOld = kForgottenAtOnce + 500;
    SiteWriter writer(*m_site);
    const auto put = [&](EffectRecord::State state, double time) {
        writer.putEffect(
            {.id = writer.newId(), .what = "a", .state = state, .queued = Date(time), .result = "succeeded"});
    };
    for (int i = 0; i < kOld; ++i)
        put(EffectRecord::Ended, i);
    put(EffectRecord::Queued, 0);
    put(EffectRecord::Ended, kOld);
    const auto left = [&] {
        std::promise<bool> done;
        writer.forget(Date(kOld), [&](const Result<Done>& committed) { done.set_value(bool(committed)); });
        EXPECT_TRUE(done.get_future().get());
        return m_site->summary().value().effects;
    };
    EXPECT_EQ(left(), 500U + 2U);
    EXPECT_EQ(left(), 2U);
    EXPECT_EQ(left(), 2U) << "what is open and what is young stays";
}

TEST_F(SiteWriterTest, whatWasToldAsCommittedIsInTheFile) {
    SiteWriter writer(*m_site);
    const RecordId fire = writer.newId();
    std::promise<bool> intent, over;
    writer.putFire({.id = fire, .plugIn = m_plugIn, .time = Date(1)},
                   [&](const auto& done) { intent.set_value(bool(done)); });
    ASSERT_TRUE(intent.get_future().get());
    EXPECT_FALSE(m_site->fire(fire).value()->completed);
    writer.completeFire(fire, archive("{\"wait\":1}"), [&](const auto& done) { over.set_value(bool(done)); });
    ASSERT_TRUE(over.get_future().get());
    EXPECT_TRUE(m_site->fire(fire).value()->completed);
    EXPECT_EQ(m_site->plugInTitled("Frost").value()->archive, "{\"wait\":1}");
}

TEST_F(SiteWriterTest, tellsEachOnceInOrderAndCommitsWhatWaitsAtOnce) {
    SiteWriter writer(*m_site);
    std::promise<void> go;
    const auto gone = go.get_future().share();
    // The first write holds the writer up, so that all others wait together.
    writer.putEffect({.id = writer.newId()}, [gone](const auto&) { gone.wait(); });
    std::vector<int> told;
    constexpr int kWrites = 1000;
    for (int i = 0; i < kWrites; ++i)
        writer.putEffect({.id = writer.newId()}, [&told, i](const auto& done) {
            EXPECT_TRUE(done);
            told.push_back(i);
        });
    go.set_value();
    writer.stop();
    ASSERT_EQ(told.size(), static_cast<std::size_t>(kWrites));
    EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
    EXPECT_EQ(m_site->effects({.limit = 5000}).value().size(), 1001U);
    // The first, then the rest; a write that came before the writer had begun to wait joins the first.
    EXPECT_LE(writer.state().commits, 3U);
    EXPECT_EQ(writer.state().written, 1001U);
    EXPECT_EQ(writer.state().waiting, 0U);
}

TEST_F(SiteWriterTest, aWriteThatTheFileRefusesHearsSoAlone) {
    SiteWriter writer(*m_site);
    std::vector<std::string> told;
    const auto note = [&](const Result<Done>& done) { told.push_back(done ? "" : done.error().message); };
    writer.putFire({.id = 1, .plugIn = m_plugIn, .time = Date(1)}, note);
    writer.putFire({.id = 2, .plugIn = 99, .time = Date(1)}, note);
    writer.saveArchive({.id = 99, .title = "Nobody"}, note);
    writer.putEffect({.id = 3, .queued = Date(std::nan(""))}, note);
    writer.putEffect({.id = 4, .fire = 98, .plugIn = 99}, note);
    writer.stop();
    ASSERT_EQ(told.size(), 5U);
    EXPECT_EQ(told[0], "");
    EXPECT_THAT(told[1], testing::HasSubstr("FOREIGN KEY"));
    EXPECT_THAT(told[2], testing::StartsWith(m_path + ": the monitor is gone"));
    EXPECT_THAT(told[3], testing::HasSubstr("NOT NULL"));
    EXPECT_EQ(told[4], "");
    EXPECT_TRUE(m_site->fire(1).value());
    EXPECT_EQ(m_site->effects().value().size(), 1U);
    EXPECT_EQ(writer.state().written, 2U);
    EXPECT_TRUE(writer.state().well);
}

TEST_F(SiteWriterTest, aFireWhoseArchiveIsRefusedStaysOpen) {
    const RecordId station = m_site->stationNamed("Roof").value()->id;
    ASSERT_TRUE(m_site->addPlugIn({.station = station, .title = "Gale"}));
    SiteWriter writer(*m_site);
    writer.putFire({.id = 1, .plugIn = m_plugIn, .time = Date(1)});
    bool refused = false;
    PlugInRecord taken = archive("{\"wait\":1}");
    taken.title = "Gale";
    writer.completeFire(1, taken, [&](const auto& done) { refused = !done; });
    writer.stop();
    EXPECT_TRUE(refused);
    EXPECT_FALSE(m_site->fire(1).value()->completed);
    EXPECT_EQ(m_site->plugInTitled("Frost").value()->archive, "{}");
}

TEST_F(SiteWriterTest, theLaterOfTwoWritesOfOneIdStands) {
    SiteWriter writer(*m_site);
    EffectRecord effect = {.id = writer.newId(), .title = "Frost", .queued = Date(1)};
    writer.putEffect(effect);
    effect.state = EffectRecord::Started;
    effect.started = Date(2);
    writer.putEffect(effect);
    effect.state = EffectRecord::Ended;
    effect.ended = Date(3);
    effect.result = "failed";
    writer.putEffect(effect);
    writer.stop();
    const auto all = m_site->effects().value();
    ASSERT_EQ(all.size(), 1U);
    EXPECT_EQ(all[0].state, EffectRecord::Ended);
    EXPECT_EQ(all[0].result, "failed");
    EXPECT_EQ(all[0].started, Date(2));
}

TEST_F(SiteWriterTest, numbersAreGivenOnceWhoeverAsksAndStandAboveTheFile) {
    {
        SiteWriter before(*m_site);
        before.putEffect({.id = 500});
    }
    SiteWriter writer(*m_site);
    std::vector<std::vector<RecordId>> given(4);
    {
        std::vector<std::jthread> threads;
        for (auto& mine : given)
            threads.emplace_back([&] {
                for (int i = 0; i < 1000; ++i)
                    mine.push_back(writer.newId());
            });
    }
    std::set<RecordId> all;
    for (const auto& mine : given)
        all.insert(mine.begin(), mine.end());
    EXPECT_EQ(all.size(), 4000U);
    EXPECT_EQ(*all.begin(), 501);
    EXPECT_EQ(*all.rbegin(), 4500);
}

TEST_F(SiteWriterTest, aFullQueueRefusesTheNewestAtOnceAndSaysSo) {
    SiteWriter writer(*m_site, {.writes = 3, .bytes = 1000});
    std::promise<void> go, held;
    const auto gone = go.get_future().share();
    writer.putEffect({.id = 1}, [&, gone](const auto&) {
        held.set_value();
        gone.wait();
    });
    held.get_future().wait();  // it waits still: its write is over when all of its group have been told
    std::string refused;
    const auto note = [&](const Result<Done>& done) { refused = done ? "" : done.error().message; };
    writer.putEffect({.id = 2});
    writer.saveArchive(archive(std::string(2000, 'x')), note);
    EXPECT_EQ(refused, m_path + ": 2 writes wait already");
    writer.putEffect({.id = 3});
    writer.putEffect({.id = 4}, note);
    EXPECT_EQ(refused, m_path + ": 3 writes wait already");
    EXPECT_EQ(writer.state().refused, 2U);
    go.set_value();
    writer.stop();
    EXPECT_EQ(m_site->effects().value().size(), 3U);
    writer.putEffect({.id = 5}, note);
    EXPECT_EQ(refused, m_path + ": nothing is written any more");
}

TEST_F(SiteWriterTest, manyThreadsWriteAndAllOfItStands) {
    SiteWriter writer(*m_site);
    std::atomic<int> committed = 0;
    {
        std::vector<std::jthread> threads;
        for (int t = 0; t < 4; ++t)
            threads.emplace_back([&] {
                for (int i = 0; i < 500; ++i)
                    writer.putEffect({.id = writer.newId()},
                                     [&](const auto& done) { committed += done ? 1 : 0; });
            });
    }
    writer.stop();
    EXPECT_EQ(committed, 2000);
    EXPECT_EQ(m_site->effects({.limit = 5000}).value().size(), 2000U);
}

}  // namespace
}  // namespace vigil
