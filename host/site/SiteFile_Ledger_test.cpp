#include <cmath>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/site/SiteFile.hpp"
#include "host/site/SiteWriter.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace vigil {
namespace {

using testing::ElementsAre;

constexpr Date kNow(8e8);

class Ledger : public testing::Test {
  protected:
    Ledger() {
        EXPECT_TRUE(SiteFile::create(path()));
        m_site = SiteFile::open(path(), Access::Write).value().release();
        m_owned.reset(m_site);
        const RecordId station = m_site->addStation({.name = "Roof"}).value();
        m_plugIn = m_site->addPlugIn({.station = station, .title = "Frost", .archive = "{}"}).value();
    }
    std::string path() const { return m_folder.path() + "/home.vigilsite"; }
    EffectRecord effect(RecordId id, double age = 0) const {
        return {.id = id, .plugIn = m_plugIn, .station = "Roof", .title = "Frost", .queued = kNow.plus(-age)};
    }
    void put(EffectRecord record) {
        SiteWriter writer(*m_site);
        writer.putEffect(std::move(record), [](const auto& done) { EXPECT_TRUE(done); });
    }
    void put(FireRecord record) {
        SiteWriter writer(*m_site);
        writer.putFire(record, [](const auto& done) { EXPECT_TRUE(done); });
    }
    std::vector<RecordId> ids(const EffectQuery& query) const {
        std::vector<RecordId> found;
        const auto all = m_site->effects(query);
        for (const EffectRecord& one : all.value())
            found.push_back(one.id);
        return found;
    }

    TemporaryFolder m_folder;
    std::unique_ptr<SiteFile> m_owned;
    SiteFile* m_site = nullptr;
    RecordId m_plugIn = 0;
};

TEST_F(Ledger, keepsAnEffectToTheLastBit) {
    put(FireRecord{.id = 4, .plugIn = m_plugIn, .time = Date(800000000.123456789)});
    const EffectRecord written = {.id = 5,
                                  .fire = 4,
                                  .plugIn = m_plugIn,
                                  .station = "Roof",
                                  .title = "Frost",
                                  .kind = EffectRecord::Sms,
                                  .what = "to 4711",
                                  .state = EffectRecord::Ended,
                                  .queued = Date(800000000.1),
                                  .started = Date(800000000.2),
                                  .ended = Date(800000000.3),
                                  .result = "succeeded",
                                  .detail = "line\nline"};
    put(written);
    const EffectRecord read = m_site->effects().value().at(0);
    EXPECT_EQ(read.id, 5);
    EXPECT_EQ(read.fire, 4);
    EXPECT_EQ(read.plugIn, m_plugIn);
    EXPECT_EQ(read.station, "Roof");
    EXPECT_EQ(read.title, "Frost");
    EXPECT_EQ(read.kind, EffectRecord::Sms);
    EXPECT_EQ(read.what, "to 4711");
    EXPECT_EQ(read.state, EffectRecord::Ended);
    EXPECT_EQ(read.queued, written.queued);
    EXPECT_EQ(read.started, written.started);
    EXPECT_EQ(read.ended, written.ended);
    EXPECT_EQ(read.result, "succeeded");
    EXPECT_EQ(read.detail, "line\nline");
    EXPECT_EQ(m_site->fire(4).value()->time, Date(800000000.123456789));
    EXPECT_FALSE(m_site->fire(5).value());
}

TEST_F(Ledger, closesWhatAStopLeftOpenAndSaysWhatIsKnownOfIt) {
    EffectRecord queued = effect(11);
    EffectRecord running = effect(12);
    running.state = EffectRecord::Started;
    running.started = kNow.plus(-5);
    running.detail = "last words";
    EffectRecord mail = running;
    mail.id = 13;
    mail.kind = EffectRecord::Mail;
    mail.detail.clear();
    EffectRecord sms = mail;
    sms.id = 14;
    sms.kind = EffectRecord::Sms;
    EffectRecord mailQueued = effect(15);
    mailQueued.kind = EffectRecord::Mail;
    EffectRecord over = running;
    over.id = 16;
    over.state = EffectRecord::Ended;
    over.ended = kNow.plus(-4);
    over.result = "succeeded";
    for (const auto& one : {queued, running, mail, sms, mailQueued, over})
        put(one);
    put(FireRecord{.id = 20, .plugIn = m_plugIn, .time = kNow.plus(-9)});
    put(FireRecord{.id = 21, .plugIn = m_plugIn, .time = kNow.plus(-8), .completed = true});

    const Interrupted found = m_site->openLedger(kNow).value();
    ASSERT_EQ(found.fires.size(), 1U);
    EXPECT_EQ(found.fires[0].id, 20);
    EXPECT_EQ(found.fires[0].plugIn, m_plugIn);
    EXPECT_EQ(found.fires[0].time, kNow.plus(-9));
    const std::vector<std::string> details = {
        "it did not begin: the program stopped before",
        "the program stopped while it was under way\nlast words",
        "may have been sent: the program stopped before the answer came",
        "may have been sent: the program stopped before the answer came",
        "it did not begin: the program stopped before",
    };
    ASSERT_EQ(found.effects.size(), details.size());
    const auto kept = m_site->effects().value();
    for (std::size_t i = 0; i < details.size(); ++i) {
        EXPECT_EQ(found.effects[i].detail, details[i]);
        EXPECT_EQ(found.effects[i].result, "interrupted");
        EXPECT_EQ(found.effects[i].ended, kNow);
        const auto same = std::find_if(kept.begin(), kept.end(),
                                       [&](const auto& one) { return one.id == found.effects[i].id; });
        ASSERT_NE(same, kept.end());
        EXPECT_EQ(same->state, EffectRecord::Ended);
        EXPECT_EQ(same->detail, details[i]);
        EXPECT_EQ(same->ended, kNow);
    }
    EXPECT_FALSE(found.effects[0].started);
    EXPECT_EQ(found.effects[1].started, kNow.plus(-5));
    EXPECT_EQ(kept.back().result, "succeeded");

    const Interrupted again = m_site->openLedger(kNow.plus(1)).value();
    EXPECT_TRUE(again.effects.empty());
    EXPECT_EQ(again.fires.size(), 1U) << "a fire stays open until its wait has been made up";
}

TEST_F(Ledger, aMessageThatWasRefusedForNowIsTriedAgainUnlessALaterAttemptHasBegun) {
    const auto attempt = [&](RecordId id, RecordId first, int number, bool again) {
        EffectRecord record = effect(id, 1000 - static_cast<double>(id));
        record.kind = EffectRecord::Mail;
        record.state = EffectRecord::Ended;
        record.ended = kNow.plus(-50);
        record.result = again ? "deferred" : "succeeded";
        record.firstAttempt = first;
        record.attempt = number;
        record.handOver = "text " + std::to_string(id);
        if (again) record.again = kNow.plus(static_cast<double>(id));
        return record;
    };
    EffectRecord begun = attempt(26, 25, 2, false);
    begun.state = EffectRecord::Started;
    begun.started = kNow.plus(-40);
    begun.ended = std::nullopt;
    for (const EffectRecord& one :
         {attempt(10, 0, 1, true),                             // deferred once
          attempt(15, 0, 1, true), attempt(16, 15, 2, true),   // and again
          attempt(20, 0, 1, true), attempt(21, 20, 2, false),  // taken at the second attempt
          attempt(25, 0, 1, true), begun,                      // a second attempt that nobody knows about
          attempt(30, 0, 1, false)})
        put(one);
    const auto found = m_site->openLedger(kNow).value().deferred;
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].last.id, 10);
    EXPECT_EQ(found[0].first, found[0].last.queued);
    EXPECT_EQ(found[0].last.handOver, "text 10");
    EXPECT_EQ(found[0].last.again, kNow.plus(10));
    EXPECT_EQ(found[1].last.id, 16);
    EXPECT_EQ(found[1].last.attempt, 2);
    EXPECT_EQ(found[1].last.firstAttempt, 15);
    EXPECT_EQ(found[1].first, effect(15, 985).queued);
    EXPECT_EQ(m_site->openLedger(kNow.plus(1)).value().deferred.size(), 2U) << "as long as none begins";
}

TEST_F(Ledger, listsTheNewestInTheirOrder) {
    for (const double age : {50.0, 40.0, 30.0, 20.0, 10.0})
        put(effect(static_cast<RecordId>(age), age));
    EffectRecord other = effect(35, 35);
    other.title = "Gale";
    other.station = "Pond";
    put(other);
    EXPECT_THAT(ids({}), ElementsAre(50, 40, 35, 30, 20, 10));
    EXPECT_THAT(ids({.limit = 2}), ElementsAre(20, 10));
    EXPECT_THAT(ids({.since = kNow.plus(-35)}), ElementsAre(35, 30, 20, 10));
    EXPECT_THAT(ids({.title = "Gale"}), ElementsAre(35));
    EXPECT_THAT(ids({.limit = 1, .station = "Roof"}), ElementsAre(10));
    EXPECT_THAT(ids({.title = "Gale", .station = "Roof"}), ElementsAre());
}

TEST_F(Ledger, forgetsWhatIsOldAndOverAtAStartAndNothingElse) {
    const double old = SiteFile::kKeptSeconds + 1;
    EffectRecord over = effect(1, old);
    over.state = EffectRecord::Ended;
    put(over);
    EffectRecord recent = over;
    recent.id = 2;
    recent.queued = kNow.plus(2 - old);
    put(recent);
    put(FireRecord{.id = 3, .plugIn = m_plugIn, .time = kNow.plus(-old), .completed = true});
    put(FireRecord{.id = 4, .plugIn = m_plugIn, .time = kNow.plus(-old)});
    put(FireRecord{.id = 90, .plugIn = m_plugIn, .time = kNow.plus(-old), .completed = true});
    EXPECT_EQ(m_site->highestId().value(), 90);
    ASSERT_TRUE(m_site->openLedger(kNow));
    EXPECT_THAT(ids({}), ElementsAre(2));
    EXPECT_FALSE(m_site->fire(3).value());
    EXPECT_TRUE(m_site->fire(4).value());
    EXPECT_EQ(m_site->highestId().value(), 90) << "a number that was given is not given again";
    EXPECT_EQ(SiteWriter(*m_site).newId(), 91);
}

TEST_F(Ledger, knowsWhatEachMonitorDidLast) {
    const RecordId roof = m_site->stations().value().at(0).id;
    const RecordId gale = m_site->addPlugIn({.station = roof, .title = "Gale", .archive = "{}"}).value();
    put(FireRecord{.id = 1, .plugIn = m_plugIn, .time = kNow.plus(-50), .completed = true});
    put(FireRecord{.id = 2, .plugIn = m_plugIn, .time = kNow.plus(-40), .completed = true});
    put(FireRecord{.id = 3, .plugIn = gale, .time = kNow.plus(-45), .completed = true});
    EXPECT_EQ(m_site->lastFires().value(),
              (std::map<RecordId, Date>{{m_plugIn, kNow.plus(-40)}, {gale, kNow.plus(-45)}}));
    for (const RecordId id : {10, 11, 12}) {
        EffectRecord over = effect(id, 100);
        if (id != 12) over.state = EffectRecord::Ended;
        put(over);
    }
    const auto effects = m_site->lastEffects().value();
    ASSERT_EQ(effects.size(), 1U) << "what has not ended is not done, and Gale has done nothing";
    EXPECT_EQ(effects[0].id, 11);
}

TEST_F(Ledger, anEffectOutlivesItsFireAndItsMonitor) {
    put(FireRecord{.id = 1, .plugIn = m_plugIn, .time = kNow});
    EffectRecord acted = effect(2);
    acted.fire = 1;
    put(acted);
    ASSERT_TRUE(m_site->removePlugIn(m_plugIn));
    EXPECT_FALSE(m_site->fire(1).value());
    const EffectRecord left = m_site->effects().value().at(0);
    EXPECT_EQ(left.fire, 1) << "it is no test by hand";
    EXPECT_EQ(left.plugIn, 0);
    EXPECT_EQ(left.title, "Frost");
}

}  // namespace
}  // namespace vigil
