#include "host/services/automation/Courier.hpp"

#include <atomic>
#include <condition_variable>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <mutex>
#include <thread>

#include <gmock/gmock.h>

#include "host/services/SystemClock.hpp"
#include "host/services/automation/testing/TestProcess.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace vigil {
namespace {

/// Notes what happens to it.
class Noted : public Posting {
    template <class Ask>
    auto locked(Ask ask) const {
        const std::lock_guard lock(m_mutex);
        return ask();
    }

  public:
    explicit Noted(const std::string& text) {
        message = SmsHandOver{"45", text};
        asked = due = systemNow();
    }
    void begin(Date, std::function<void(bool)> go) override {
        {
            const std::lock_guard lock(m_mutex);
            ++m_begun;
            if (hold) {
                m_go = std::move(go);
                return;
            }
        }
        go(isWritten);
    }
    void ended(const DeliveryResult& result, Date, std::optional<Date> again) override {
        const std::lock_guard lock(m_mutex);
        m_results.push_back(result.outcome);
        if (!again) m_over = true;
    }

    bool isOver() const {
        return locked([&] { return m_over; });
    }
    int begun() const {
        return locked([&] { return m_begun; });
    }
    std::vector<DeliveryResult::Outcome> results() const {
        return locked([&] { return m_results; });
    }
    void go() {
        const std::lock_guard lock(m_mutex);
        m_go(isWritten);
    }

    std::atomic<bool> hold = false;
    std::atomic<bool> isWritten = true;

  private:
    mutable std::mutex m_mutex;
    int m_begun = 0;
    bool m_over = false;
    std::vector<DeliveryResult::Outcome> m_results;
    std::function<void(bool)> m_go;
};

class CourierOfMessages : public testing::Test {
  protected:
    /// A command that writes the text down and ends with the status that stands in a file.
    CourierOfMessages() {
        m_folder.write("send", "#!/bin/sh\ncat >> " + m_folder.path() + "/sent; echo >> " + m_folder.path() +
                                   "/sent\nexit $(cat " + m_folder.path() + "/status)\n");
        std::filesystem::permissions(m_folder.path() + "/send", std::filesystem::perms::owner_all);
        m_folder.write("status", "0");
        m_options.helper = VIGIL_BINARY_DIR "/bin/vigil-helper";
        m_options.clock = systemNow;
        m_options.sms.method = SmsOptions::Command;
        m_options.sms.command = {m_folder.path() + "/send"};
        m_options.retry = {.firstSeconds = 0.05, .longestSeconds = 0.2, .giveUpSeconds = 3600};
    }
    std::shared_ptr<Noted> submit(Courier& courier, const std::string& text) {
        auto posting = std::make_shared<Noted>(text);
        EXPECT_TRUE(courier.reserve(Courier::Sms));
        courier.submit(Courier::Sms, posting);
        return posting;
    }
    std::string sent() const {
        std::ifstream file(m_folder.path() + "/sent");
        return {std::istreambuf_iterator<char>(file), {}};
    }

    TemporaryFolder m_folder;
    AutomationOptions m_options;
};

using Outcomes = std::vector<DeliveryResult::Outcome>;

TEST_F(CourierOfMessages, DeliversInTheOrderHandedOver) {
    Courier courier(m_options);
    std::shared_ptr<Noted> last;
    for (const char* text : {"one", "two", "three"})
        last = submit(courier, text);
    EXPECT_TRUE(soon([&] { return last->isOver(); }));
    EXPECT_EQ(sent(), "one\ntwo\nthree\n");
    EXPECT_EQ(last->results(), Outcomes{DeliveryResult::Accepted});
    EXPECT_EQ(courier.taken(Courier::Sms), 0u);
}

TEST_F(CourierOfMessages, NothingIsSentBeforeItsBeginningIsWrittenDown) {
    Courier courier(m_options);
    auto posting = std::make_shared<Noted>("held");
    posting->hold = true;
    ASSERT_TRUE(courier.reserve(Courier::Sms));
    courier.submit(Courier::Sms, posting);
    ASSERT_TRUE(soon([&] { return posting->begun() == 1; }));
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    EXPECT_EQ(sent(), "");
    posting->go();
    EXPECT_TRUE(soon([&] { return posting->isOver(); }));
    EXPECT_EQ(sent(), "held\n");
}

TEST_F(CourierOfMessages, WhatIsRefusedForNowIsTriedAgainAndLetsOthersGoFirst) {
    m_folder.write("status", "75");
    Courier courier(m_options);
    const auto first = submit(courier, "first");
    ASSERT_TRUE(soon([&] { return first->results().size() >= 2; }));
    m_folder.write("status", "0");
    EXPECT_TRUE(soon([&] { return first->isOver(); }));
    const Outcomes results = first->results();
    EXPECT_GE(results.size(), 3u);
    for (std::size_t i = 0; i + 1 < results.size(); ++i)
        EXPECT_EQ(results[i], DeliveryResult::Deferred);
    EXPECT_EQ(results.back(), DeliveryResult::Accepted);
    EXPECT_EQ(static_cast<std::size_t>(first->begun()), results.size())
        << "each attempt has its own beginning";
}

TEST_F(CourierOfMessages, NothingElseIsTriedAgain) {
    Courier courier(m_options);
    m_folder.write("status", "1");
    const auto refused = submit(courier, "refused");
    EXPECT_TRUE(soon([&] { return refused->isOver(); }));
    m_options.sms.time = std::chrono::milliseconds(200);
    m_folder.write("status", "0; kill -9 $$");
    m_folder.write("send", "#!/bin/sh\necho x >> " + m_folder.path() + "/sent\nkill -9 $$\n");
    const auto unknown = submit(courier, "unknown");
    EXPECT_TRUE(soon([&] { return unknown->isOver(); }));
    std::this_thread::sleep_for(std::chrono::milliseconds(400));
    EXPECT_EQ(refused->results(), Outcomes{DeliveryResult::Refused});
    EXPECT_EQ(unknown->results(), Outcomes{DeliveryResult::Unknown});
    EXPECT_EQ(sent(), "refused\nx\n");
}

TEST_F(CourierOfMessages, ThePlacesAreBoundedAndComeBack) {
    m_options.waiting = 2;
    Courier courier(m_options);
    auto held = std::make_shared<Noted>("held");
    held->hold = true;
    ASSERT_TRUE(courier.reserve(Courier::Sms));
    courier.submit(Courier::Sms, held);
    ASSERT_TRUE(courier.reserve(Courier::Sms));
    EXPECT_FALSE(courier.reserve(Courier::Sms));
    EXPECT_TRUE(courier.reserve(Courier::Mail)) << "each kind has its own";
    ASSERT_TRUE(soon([&] { return held->begun() == 1; }));
    held->go();
    EXPECT_TRUE(soon([&] { return courier.taken(Courier::Sms) == 1; }));
    EXPECT_TRUE(courier.reserve(Courier::Sms));
}

TEST_F(CourierOfMessages, AStopDefersWhatHasNotBegunAndEndsWhatRuns) {
    m_folder.write("send", "#!/bin/sh\necho > " + m_folder.path() + "/sent\nsleep 100\n");
    Courier courier(m_options);
    const auto running = submit(courier, "running");
    const auto waiting = submit(courier, "waiting");
    ASSERT_TRUE(soon([&] { return !sent().empty(); }));
    const auto begin = std::chrono::steady_clock::now();
    courier.stop();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
    EXPECT_EQ(running->results(), Outcomes{DeliveryResult::Unknown});
    EXPECT_EQ(waiting->results(), Outcomes{DeliveryResult::Deferred});
    EXPECT_EQ(waiting->begun(), 0);
    const auto late = std::make_shared<Noted>("late");
    courier.submit(Courier::Sms, late);
    EXPECT_EQ(late->results(), Outcomes{DeliveryResult::Deferred});
}

TEST_F(CourierOfMessages, AnotherAttemptThatIsNotWrittenDownIsPutOffAndAFirstOneIsMade) {
    Courier courier(m_options);
    auto first = std::make_shared<Noted>("first");
    first->isWritten = false;
    auto again = std::make_shared<Noted>("again");
    again->isWritten = false;
    again->attempt = 2;
    for (const auto& posting : {first, again}) {
        ASSERT_TRUE(courier.reserve(Courier::Sms));
        courier.submit(Courier::Sms, posting);
    }
    EXPECT_TRUE(soon([&] { return again->results().size() >= 2; }));
    EXPECT_EQ(first->results(), Outcomes{DeliveryResult::Accepted});
    EXPECT_EQ(sent(), "first\n");
    again->isWritten = true;
    EXPECT_TRUE(soon([&] { return again->isOver(); }));
    EXPECT_EQ(again->results().front(), DeliveryResult::Deferred);
    EXPECT_EQ(again->results().back(), DeliveryResult::Accepted);
    EXPECT_EQ(sent(), "first\nagain\n") << "it is sent once";
}

TEST_F(CourierOfMessages, AClockThatIsSetBackHoldsNothingBackForLong) {
    std::atomic<double> ahead = 1e8;
    m_options.clock = [&ahead] { return systemNow().plus(ahead); };
    m_folder.write("status", "75");
    Courier courier(m_options);
    const auto posting = std::make_shared<Noted>("late");
    posting->asked = posting->due = m_options.clock();
    ASSERT_TRUE(courier.reserve(Courier::Sms));
    courier.submit(Courier::Sms, posting);
    EXPECT_TRUE(soon([&] { return posting->results().size() >= 2; }));
    ahead = 0;
    m_folder.write("status", "0");
    EXPECT_TRUE(soon([&] { return posting->isOver(); }));
    EXPECT_EQ(posting->results().back(), DeliveryResult::Accepted);
}

TEST(NextAttempt, TheWaitDoublesToItsBoundAndEndsWithTheDay) {
    const RetryOptions retry;
    const Date asked(1000);
    EXPECT_EQ(nextAttempt(retry, asked, 1, asked), asked.plus(60));
    EXPECT_EQ(nextAttempt(retry, asked, 2, asked), asked.plus(120));
    EXPECT_EQ(nextAttempt(retry, asked, 7, asked), asked.plus(3600));
    EXPECT_EQ(nextAttempt(retry, asked, 1000000, asked), asked.plus(3600));
    EXPECT_EQ(nextAttempt(retry, asked, 7, asked.plus(82800)), asked.plus(86400));
    EXPECT_EQ(nextAttempt(retry, asked, 7, asked.plus(82801)), std::nullopt);
}

}  // namespace
}  // namespace vigil
