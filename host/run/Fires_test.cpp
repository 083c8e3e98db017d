#include <atomic>
#include <stdexcept>
#include <thread>

#include <gmock/gmock.h>

#include "host/run/EffectLedger.hpp"
#include "host/run/FireDesk.hpp"
#include "host/run/FireQueue.hpp"
#include "host/site/SiteFile.hpp"
#include "host/site/SiteWriter.hpp"
#include "platform/CallNote.hpp"
#include "tests/support/RecordingLog.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace vigil {
namespace {

using testing::IsEmpty;

class Named : public Object {
  public:
    std::string className() const override { return "Named"; }
};

/// A site with one station and one plug-in, whose fires come from another thread while this one serves.
class Fires : public testing::Test {
  protected:
    Fires() {
        const auto station = m_site->addStation({.name = "Roof"});
        const auto plugIn = m_site->addPlugIn(
            {.station = station.value(), .className = "Named", .title = "Gust", .archive = "{}"});
        m_id = plugIn.value();
        m_desk.enroll(*m_plugIn, {m_id, "Roof", "Gust"});
    }

    std::unique_ptr<SiteFile> openSite() {
        const std::string path = m_folder.path() + "/home.vigilsite";
        EXPECT_TRUE(SiteFile::create(path));
        return std::move(SiteFile::open(path, Access::Write)).value();
    }

    /// What a strand would do: announce, with the plug-in as the one that is called.
    std::vector<Fire> announce(const MainQueue::Task& actions, bool* threw = nullptr) {
        std::vector<Fire> fires;
        std::atomic<bool> over = false;
        std::thread strand([&] {
            FireDesk::Announcement announcement;
            {
                const CallNote::Scope note(m_plugIn);
                try {
                    m_queue.dispatchSync(actions);
                } catch (const std::exception&) {
                    if (threw) *threw = true;
                }
            }
            fires = announcement.fires;
            over = true;
            m_mailbox.wake();
        });
        while (!over)
            m_mailbox.serveUntil(std::chrono::steady_clock::now() + std::chrono::milliseconds(100));
        strand.join();
        return fires;
    }

    /// What stands in the file when the writer has ended.
    std::vector<EffectRecord> written() {
        m_writer.stop();
        return m_site->effects().value();
    }

    TemporaryFolder m_folder;
    std::unique_ptr<SiteFile> m_site = openSite();
    std::atomic<int> m_time{100};
    SiteWriter m_writer{*m_site};
    FireDesk m_desk{m_writer, [this] { return Date(static_cast<double>(m_time++)); }};
    Mailbox m_mailbox;
    FireQueue m_queue{m_mailbox, m_desk};
    RecordingLog m_log;
    EffectLedger m_ledger{m_desk, m_writer, m_log, [this] { return Date(static_cast<double>(m_time++)); }};
    std::shared_ptr<Named> m_plugIn = std::make_shared<Named>();
    RecordId m_id = 0;
};

TEST_F(Fires, AHandOverOfAPlugInIsAFireAndStandsInTheFile) {
    const Fire* acting = nullptr;
    const auto fires = announce([&] { acting = m_desk.acting(); });
    ASSERT_EQ(fires.size(), 1u);
    EXPECT_NE(acting, nullptr);
    EXPECT_EQ(m_desk.acting(), nullptr) << "it is over";
    EXPECT_EQ(fires[0].of.plugIn, m_id);
    EXPECT_LT(fires[0].began, fires[0].ended);
    m_writer.stop();
    const auto fire = m_site->fire(fires[0].id).value();
    ASSERT_TRUE(fire);
    EXPECT_EQ(fire->time, fires[0].began);
    EXPECT_FALSE(fire->completed);
}

TEST_F(Fires, AHandOverOfNobodyIsNone) {
    m_desk.dismiss(*m_plugIn);
    EXPECT_THAT(announce([] {}), IsEmpty());
}

TEST_F(Fires, OneThatThrowsIsNotAmongTheFiresButItsIntentStands) {
    bool threw = false;
    RecordId id = 0;
    const auto fires = announce(
        [&] {
            id = m_desk.acting()->id;
            throw std::runtime_error("a row failed");
        },
        &threw);
    EXPECT_TRUE(threw);
    EXPECT_THAT(fires, IsEmpty());
    EXPECT_EQ(m_desk.acting(), nullptr);
    m_writer.stop();
    EXPECT_TRUE(m_site->fire(id).value());
}

TEST_F(Fires, OneThatIsRefusedHasNoIntent) {
    m_mailbox.refuseHandOvers();
    bool threw = false;
    EXPECT_THAT(announce([] {}, &threw), IsEmpty());
    EXPECT_TRUE(threw);
    m_writer.stop();
    EXPECT_THAT(m_site->openLedger(Date(1)).value().fires, IsEmpty());
}

TEST_F(Fires, AnEffectIsReleasedOnlyWhenItsRecordAndItsFireStand) {
    std::atomic<bool> stood = false;
    std::atomic<bool> released = false;
    RecordId fire = 0;
    announce([&] {
        fire = m_desk.acting()->id;
        const auto record = m_ledger.make(EffectRecord::Script, "gust.sh roof", m_plugIn);
        m_ledger.queued(record, [&] {
            // Another connection sees only what has been committed.
            const auto other = SiteFile::open(m_site->path(), Access::Read);
            stood =
                other && other.value()->fire(fire).value() && other.value()->effects().value().size() == 1;
            released = true;
        });
    });
    const auto effects = written();
    EXPECT_TRUE(released);
    EXPECT_TRUE(stood);
    ASSERT_EQ(effects.size(), 1u);
    EXPECT_EQ(effects[0].fire, fire);
    EXPECT_EQ(effects[0].plugIn, m_id);
    EXPECT_EQ(effects[0].station, "Roof");
    EXPECT_EQ(effects[0].title, "Gust");
    EXPECT_EQ(effects[0].state, EffectRecord::Queued);
}

TEST_F(Fires, AnEffectOutsideAFireIsATest) {
    m_ledger.queued(m_ledger.make(EffectRecord::Sound, "bell.wav", m_plugIn), [] {});
    const auto effects = written();
    ASSERT_EQ(effects.size(), 1u);
    EXPECT_EQ(effects[0].fire, 0);
    EXPECT_EQ(effects[0].plugIn, m_id);
}

TEST_F(Fires, AnEffectOfAnotherPlugInInsideAFireIsNotOfThatFire) {
    const auto other = std::make_shared<Named>();
    m_desk.enroll(*other, {0, "Roof", "Other"});
    announce([&] { m_ledger.queued(m_ledger.make(EffectRecord::Sound, "bell.wav", other), [] {}); });
    const auto effects = written();
    ASSERT_EQ(effects.size(), 1u);
    EXPECT_EQ(effects[0].fire, 0);
    EXPECT_EQ(effects[0].title, "Other");
}

TEST_F(Fires, AnEffectThatFailsIsALineInTheLogAndCounted) {
    auto record = m_ledger.make(EffectRecord::Script, "gust.sh", m_plugIn);
    m_ledger.queued(record, [] {});
    m_ledger.started(record, Date(1000));
    m_ledger.ended(record, Date(1001), "failed", "The script failed with exit code 3.", /*failed=*/true);
    EXPECT_EQ(m_ledger.failures(), 1u);
    EXPECT_EQ(m_ledger.counts().at({"script", "failed"}), 1u);
    ASSERT_TRUE(m_ledger.last(m_id));
    EXPECT_EQ(m_ledger.last(m_id)->what, "gust.sh");
    EXPECT_TRUE(m_ledger.last(m_id)->failed);
    ASSERT_EQ(m_log.lines().size(), 1u);
    EXPECT_THAT(m_log.lines()[0].message, testing::HasSubstr("gust.sh\" failed: The script failed"));
    const auto effects = written();
    ASSERT_EQ(effects.size(), 1u) << "one row, whatever became of it";
    EXPECT_EQ(effects[0].state, EffectRecord::Ended);
    EXPECT_EQ(effects[0].started, Date(1000));
    EXPECT_EQ(effects[0].ended, Date(1001));
}

TEST_F(Fires, InsideOneAnotherTheInnermostActs) {
    const auto inner = std::make_shared<Named>();
    m_desk.enroll(*inner, {m_id, "Roof", "Inner"});
    RecordId outerId = 0, innerId = 0, afterId = 0;
    announce([&] {
        outerId = m_desk.acting()->id;
        std::thread strand([&] {
            const CallNote::Scope note(inner);
            m_queue.dispatchSync([&] { innerId = m_desk.acting()->id; });
        });
        while (innerId == 0)
            m_mailbox.serveOneNested(std::chrono::steady_clock::now() + std::chrono::milliseconds(50));
        strand.join();
        afterId = m_desk.acting()->id;
    });
    EXPECT_NE(innerId, outerId);
    EXPECT_EQ(afterId, outerId);
}

}  // namespace
}  // namespace vigil
