#include "platform/NotificationCenter.hpp"

#include <atomic>
#include <stdexcept>
#include <thread>

#include <gtest/gtest.h>

#include "platform/CallNote.hpp"
#include "platform/Controls.hpp"
#include "tests/support/FakeMainQueue.hpp"

namespace vigil {
namespace {

const char* const kNews = "news";

/// An observer that does what a test says, and tells when it ends.
class Listener : public Object {
  public:
    ~Listener() override {
        if (onEnd) onEnd();
    }
    std::string className() const override { return "Listener"; }
    void heard(const Notification& notification) {
        ++calls;
        if (onNews) onNews(notification);
    }
    std::atomic<int> calls{0};
    std::function<void(const Notification&)> onNews;
    std::function<void()> onEnd;
};

class NotificationCenterTest : public testing::Test {
  protected:
    std::shared_ptr<Listener> listener(const std::shared_ptr<const Object>& object) {
        auto made = std::make_shared<Listener>();
        add(made, object);
        return made;
    }
    void add(const std::shared_ptr<Listener>& observer, const std::shared_ptr<const Object>& object) {
        center.addObserver(observer, &Listener::heard, kNews, object);
    }
    std::vector<DeliveryFailure> post() { return center.post({kNews, station, {}}); }

    FakeMainQueue queue{FakeMainQueue::Form::Inline};
    NotificationCenter center{queue};
    std::shared_ptr<const Object> station = std::make_shared<TextField>();
};

TEST_F(NotificationCenterTest, DeliversByNameAndObject) {
    const auto wanted = listener(station);
    const auto ofAnother = listener(std::make_shared<TextField>());
    const auto ofNone = listener(nullptr);
    const auto ofAnotherName = std::make_shared<Listener>();
    center.addObserver(ofAnotherName, &Listener::heard, "other", station);
    post();
    EXPECT_EQ(wanted->calls, 1);
    EXPECT_EQ(ofAnother->calls, 0);
    EXPECT_EQ(ofNone->calls, 0);
    EXPECT_EQ(ofAnotherName->calls, 0);
    center.post({kNews, nullptr, {}});
    EXPECT_EQ(ofNone->calls, 1);
    EXPECT_EQ(wanted->calls, 1);
}

TEST_F(NotificationCenterTest, GivesTheUserInformationByKey) {
    const auto data = std::make_shared<TextField>("readings");
    const auto observer = listener(station);
    observer->onNews = [&](const Notification& notification) {
        EXPECT_EQ(notification.userInfoForKey("data"), data);
        EXPECT_EQ(notification.userInfoForKey("date"), nullptr);
    };
    center.post({kNews, station, {{"data", data}}});
    EXPECT_EQ(observer->calls, 1);
}

TEST_F(NotificationCenterTest, AddingTwiceDeliversTwiceAndRemovingRemovesAll) {
    const auto observer = listener(station);
    add(observer, station);
    EXPECT_EQ(center.observerCount(kNews, station), 2U);
    post();
    EXPECT_EQ(observer->calls, 2);
    center.removeObserver(*observer, kNews, station);
    EXPECT_EQ(center.observerCount(kNews, station), 0U);
    post();
    EXPECT_EQ(observer->calls, 2);
}

TEST_F(NotificationCenterTest, EveryObserverHearsAlsoAfterOneThrewAndThePosterGetsTheFailure) {
    const auto bad = listener(station);
    const auto good = listener(station);
    bad->onNews = [](const Notification&) { throw std::out_of_range("row 3"); };
    const auto failures = post();
    ASSERT_EQ(failures.size(), 1U);
    EXPECT_EQ(failures[0].observer, bad);
    EXPECT_THROW(std::rethrow_exception(failures[0].what), std::out_of_range);
    EXPECT_EQ(good->calls, 1);
}

TEST_F(NotificationCenterTest, TheObserverIsTheCallNoteWhileItIsCalled) {
    const auto first = listener(station);
    const auto second = listener(station);
    std::vector<std::shared_ptr<const Object>> notes;
    first->onNews = second->onNews = [&](const Notification&) { notes.push_back(CallNote::current()); };
    post();
    EXPECT_EQ(notes, (std::vector<std::shared_ptr<const Object>>{first, second}));
    EXPECT_EQ(CallNote::current(), nullptr);
}

TEST_F(NotificationCenterTest, ADeadObserverIsSkippedAndForgotten) {
    auto dying = listener(station);
    const auto living = listener(station);
    dying.reset();
    post();
    EXPECT_EQ(living->calls, 1);
    EXPECT_EQ(center.observerCount(kNews, station), 1U);
}

TEST_F(NotificationCenterTest, AnotherObjectAtTheAddressOfADeadOneIsNotTheSame) {
    // The entry of the dead station stands until it is swept; whoever comes to stand at its address, its
    // news are others.
    const TextField place;
    const std::shared_ptr<const Object> first(&place, [](const Object*) {});
    const auto observer = std::make_shared<Listener>();
    add(observer, first);
    const std::shared_ptr<const Object> second(&place, [](const Object*) {});
    center.post({kNews, second, {}});
    EXPECT_EQ(observer->calls, 0);
    center.post({kNews, first, {}});
    EXPECT_EQ(observer->calls, 1);
}

TEST_F(NotificationCenterTest, OneRemovedBeforeItsTurnIsNotCalledAndOneAddedHearsOfTheNextPost) {
    const auto first = listener(station);
    const auto second = listener(station);
    const auto late = std::make_shared<Listener>();
    first->onNews = [&](const Notification&) {
        if (first->calls > 1) return;
        center.removeObserver(*second, kNews, station);
        add(late, station);
    };
    post();
    EXPECT_EQ(second->calls, 0);
    EXPECT_EQ(late->calls, 0);
    post();
    EXPECT_EQ(second->calls, 0);
    EXPECT_EQ(late->calls, 1);
}

TEST_F(NotificationCenterTest, AnObserverMayRemoveItselfAndPostAgain) {
    const auto observer = listener(station);
    observer->onNews = [&](const Notification&) {
        center.removeObserver(*observer, kNews, station);
        EXPECT_TRUE(post().empty());
    };
    post();
    EXPECT_EQ(observer->calls, 1);
}

TEST_F(NotificationCenterTest, AnObserverWhoseLastReferenceEndsDuringDeliveryEndsOnTheMainQueue) {
    queue.setMainThread(false);
    bool ended = false, endedOnMain = false;
    auto observer = listener(station);
    observer->onEnd = [&] {
        ended = true;
        endedOnMain = queue.isMainThread();
    };
    observer->onNews = [&](const Notification&) { observer.reset(); };
    post();
    EXPECT_FALSE(ended);
    queue.runPosted();
    EXPECT_TRUE(ended);
    EXPECT_TRUE(endedOnMain);
}

TEST_F(NotificationCenterTest, AClosingQueueEndsTheObserverInsteadOfKeepingIt) {
    queue.setMainThread(false);
    queue.setClosing(true);
    bool ended = false;
    auto observer = listener(station);
    observer->onEnd = [&] { ended = true; };
    observer->onNews = [&](const Notification&) { observer.reset(); };
    post();
    EXPECT_TRUE(ended);
}

TEST_F(NotificationCenterTest, ManyThreadsMayPostAddAndRemoveAtOnce) {
    const auto steady = listener(station);
    std::atomic<bool> ended{false};
    std::vector<std::thread> changing;
    for (int t = 0; t < 2; ++t)
        changing.emplace_back([&] {
            const auto passing = std::make_shared<Listener>();
            while (!ended) {
                add(passing, station);
                center.removeObserver(*passing, kNews, station);
            }
        });
    constexpr int kPosts = 2000;
    for (int i = 0; i < kPosts; ++i)
        EXPECT_TRUE(post().empty());
    ended = true;
    for (auto& thread : changing)
        thread.join();
    EXPECT_EQ(steady->calls, kPosts);
    EXPECT_EQ(center.observerCount(kNews, station), 1U);
}

}  // namespace
}  // namespace vigil
