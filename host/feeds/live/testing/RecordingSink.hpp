#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <limits>
#include <mutex>
#include <string>
#include <vector>

#include "host/feeds/live/FeedSink.hpp"

namespace vigil {

inline constexpr std::chrono::seconds kPatience{30};

/// Writes down what a station's feed brings. Any thread.
class RecordingSink final : public FeedSink {
  public:
    void arrived(RawMessage message) override {
        note([&] {
            if (m_keeps) m_messages.push_back(std::move(message));
            ++m_count;
        });
    }
    void problem(const std::string& words) override {
        note([&] { m_problems.push_back(words); });
    }
    void state(FeedState state) override {
        note([&] { m_states.push_back(std::move(state)); });
    }
    bool wantsPause() const override {
        const std::lock_guard lock(m_mutex);
        return m_count >= m_fullAt;
    }

    /// It is full when it has so many.
    void setFullAt(std::size_t count) {
        const std::lock_guard lock(m_mutex);
        m_fullAt = count;
    }
    /// From now on messages are counted and not kept.
    void countOnly() { m_keeps = false; }

    std::vector<RawMessage> messages() const { return copy(m_messages); }
    std::vector<std::string> problems() const { return copy(m_problems); }
    std::vector<FeedState> states() const { return copy(m_states); }
    std::size_t count() const {
        const std::lock_guard lock(m_mutex);
        return m_count;
    }
    std::vector<std::string> payloads() const {
        std::vector<std::string> all;
        for (const RawMessage& message : messages())
            all.push_back(message.payload);
        return all;
    }
    FeedState lastState() const {
        const std::lock_guard lock(m_mutex);
        return m_states.empty() ? FeedState{} : m_states.back();
    }
    /// Calls of any kind.
    std::size_t calls() const {
        const std::lock_guard lock(m_mutex);
        return m_calls;
    }

    bool waitFor(const std::function<bool()>& condition, std::chrono::milliseconds most = kPatience) {
        const auto until = std::chrono::steady_clock::now() + most;
        while (!condition()) {
            std::unique_lock lock(m_mutex);
            if (std::chrono::steady_clock::now() > until) return false;
            m_changed.wait_for(lock, std::chrono::milliseconds(5));
        }
        return true;
    }
    bool waitForMessages(std::size_t count) {
        return waitFor([&] { return this->count() >= count; });
    }
    bool waitForState(FeedState::Kind kind) {
        return waitFor([&] { return !states().empty() && lastState().kind == kind; });
    }
    bool waitForProblems(std::size_t count) {
        return waitFor([&] { return problems().size() >= count; });
    }

  private:
    void note(const std::function<void()>& what) {
        const std::lock_guard lock(m_mutex);
        what();
        ++m_calls;
        m_changed.notify_all();
    }
    template <class List>
    List copy(const List& list) const {
        const std::lock_guard lock(m_mutex);
        return list;
    }

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<RawMessage> m_messages;
    std::vector<std::string> m_problems;
    std::vector<FeedState> m_states;
    std::size_t m_count = 0, m_calls = 0, m_fullAt = std::numeric_limits<std::size_t>::max();
    std::atomic<bool> m_keeps{true};
};

}  // namespace vigil
