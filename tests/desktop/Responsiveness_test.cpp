#include <QElapsedTimer>
#include <QTimer>
#include <algorithm>
#include <cstdio>

#include <gtest/gtest.h>

#include "tests/desktop/DesktopBench.hpp"
#include "tests/desktop/Stage.hpp"

// The window answers while much goes on. A timer that is due every 5 ms stands for a hand at the mouse: how
// late it comes is how long the hand waits.

namespace vigil::test {
namespace {

class Hand {
  public:
    Hand() {
        m_timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_timer, &QTimer::timeout, [this] {
            m_worst = std::max(m_worst, m_since.restart());
            ++m_beats;
        });
        m_timer.start(5);
        m_since.start();
    }
    ~Hand() { std::printf("the hand waited %lld ms at most\n", static_cast<long long>(m_worst)); }
    qint64 worst() const { return m_worst; }
    int beats() const { return m_beats; }

  private:
    QTimer m_timer;
    QElapsedTimer m_since;
    qint64 m_worst = 0;
    int m_beats = 0;
};

/// A window that waited for what goes on would be later by far; how late it is on a machine at rest stands in
/// the figures that were measured, and is printed.
constexpr qint64 kHangs = 1500;  // milliseconds

TEST(Responsiveness, AHundredNotificationsASecond) {
    Stage stage;
    SiteWindow& window = stage.open("busy", /*first=*/true);
    ASSERT_TRUE(waitUntil([&] { return window.pane() && window.pane()->view(); }));
    StationRecord record = stage.session().site().stations().at(0);
    record.feed = "simulated:?step=60&speed=6000";  // a hundred a second
    bool changed = false;
    stage.session().putStation(record,
                               [&](const Result<RecordId>& done) { changed = static_cast<bool>(done); });
    ASSERT_TRUE(waitUntil([&] { return changed; }));
    turn(500);
    const auto notified = [&] { return stage.session().site().status().stations.at(0).notifications; };
    const auto before = notified();
    const Hand hand;
    turn(2000);
    ASSERT_TRUE(waitUntil([&] { return notified() - before > 200; }));
    EXPECT_GT(hand.beats(), 100);
    EXPECT_LT(hand.worst(), kHangs);
}

TEST(Responsiveness, ATaskThatWaitsLikeALongSpeech) {
    Stage stage;
    SiteWindow& window = stage.open("speaks", /*first=*/true);
    ASSERT_TRUE(waitUntil([&] { return window.pane() && window.pane()->view(); }));
    bool spoken = false, removed = false;
    RunningSite& site = stage.session().site();
    site.mailbox().dispatchAsync([&] {
        const Date end = site.world().now().plus(2);
        while (site.world().now() < end)
            site.world().currentRunLoop().runUntil(site.world().now().plus(0.25));
        EXPECT_FALSE(removed) << "what waits for rest began inside a task";
        spoken = true;
    });
    // The task begins in the first loop that turns, and everything below happens inside it.
    const Hand hand;
    QTimer::singleShot(100, [&] { stage.session().atRest([&] { removed = true; }); });
    ASSERT_TRUE(waitUntil([&] { return spoken; }));
    EXPECT_TRUE(waitUntil([&] { return removed; }));
    EXPECT_GT(hand.beats(), 50);
    EXPECT_LT(hand.worst(), kHangs);
}

}  // namespace
}  // namespace vigil::test
