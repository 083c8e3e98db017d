#pragma once

#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <thread>

#include <gtest/gtest.h>
#include <stdlib.h>

#include "host/feeds/live/Feeds.hpp"
#include "host/feeds/live/testing/RecordingSink.hpp"

namespace vigil {

/// Short enough for tests, long enough for a busy machine.
inline FeedTiming quickTiming() {
    using Milliseconds = FeedTiming::Milliseconds;
    FeedTiming timing;
    timing.retryFirst = Milliseconds(50);
    timing.retryMost = Milliseconds(200);
    timing.programRetryMost = Milliseconds(400);
    timing.seemsFine = Milliseconds(300);
    timing.termGrace = Milliseconds(300);
    timing.look = Milliseconds(30);
    timing.pause = Milliseconds(5);
    timing.keepAlive = std::chrono::seconds(5);
    timing.idle = std::chrono::seconds(2);
    timing.request = Milliseconds(1500);
    return timing;
}

/// How many threads of this process bear the name.
inline int threadsNamed(const std::string& name) {
    int count = 0;
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::string is;
        std::getline(std::ifstream(task.path() / "comm"), is);
        count += is == name ? 1 : 0;
    }
    return count;
}

/// A program's processor time so far.
inline std::chrono::microseconds processorTime() {
    timespec now{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return std::chrono::seconds(now.tv_sec) + std::chrono::microseconds(now.tv_nsec / 1000);
}

/// Feeds with a folder of their own.
class LiveBench : public testing::Test {
  protected:
    void SetUp() override {
        char pattern[] = "/tmp/vigil-live-XXXXXX";
        ASSERT_NE(::mkdtemp(pattern), nullptr);
        m_folder = pattern;
    }
    void TearDown() override {
        m_feeds.reset();
        std::filesystem::remove_all(m_folder);
    }

    static Date now() {
        const auto since = std::chrono::system_clock::now().time_since_epoch();
        return Date::fromUnix(std::chrono::duration<double>(since).count());
    }

    Feeds& feeds() {
        if (!m_feeds)
            m_feeds = std::make_unique<Feeds>(Feeds::Context{
                .clock = now,
                .folder = m_folder,
                .secret = [this](const std::string& name) -> std::optional<std::string> {
                    const auto found = m_secrets.find(name);
                    return found == m_secrets.end() ? std::nullopt : std::optional(found->second);
                },
                .timing = m_timing});
        return *m_feeds;
    }

    /// The station's feed, which has to be one that can be.
    std::shared_ptr<RecordingSink> add(const std::string& station, const std::string& url) {
        auto sink = std::make_shared<RecordingSink>();
        const auto added = tryAdd(station, url, sink);
        EXPECT_TRUE(added) << url << ": " << added.error().message;
        return sink;
    }
    Result<Done> tryAdd(const std::string& station, const std::string& url,
                        std::shared_ptr<FeedSink> sink = std::make_shared<RecordingSink>()) {
        const auto parsed = FeedUrl::parse(url);
        if (!parsed) return parsed.error();
        return feeds().add(station, parsed.value(), std::move(sink));
    }

    /// What waits for nobody else is done by then, however busy the machine is.
    static constexpr std::chrono::milliseconds kSoon{5000};

    /// How long it takes.
    static std::chrono::milliseconds timeOf(const std::function<void()>& work) {
        const auto began = std::chrono::steady_clock::now();
        work();
        return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                                     began);
    }

    std::string path(const std::string& name) const { return m_folder + "/" + name; }
    void write(const std::string& name, const std::string& text) const {
        std::ofstream(path(name), std::ios::binary) << text;
    }
    void append(const std::string& name, const std::string& text) const {
        std::ofstream(path(name), std::ios::binary | std::ios::app) << text;
    }
    void writeScript(const std::string& name, const std::string& text) const {
        write(name, "#!/bin/sh\n" + text);
        std::filesystem::permissions(path(name), std::filesystem::perms::owner_all);
    }

    std::string m_folder;
    FeedTiming m_timing = quickTiming();
    std::map<std::string, std::string> m_secrets;  // complete before the first feed is added
    std::unique_ptr<Feeds> m_feeds;
};

inline void sleepFor(int milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

}  // namespace vigil
