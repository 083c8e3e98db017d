#include "host/services/automation/Courier.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <condition_variable>
#include <future>
#include <list>
#include <mutex>
#include <thread>

#include <signal.h>

#include "host/services/automation/Delivery.hpp"
#include "host/services/automation/HelperCall.hpp"

namespace vigil {
namespace {

/// The longest sleep: the clock of a machine that slept is looked at again.
constexpr double kLookSeconds = 30;

DeliveryResult notBegun() {
    return {DeliveryResult::Deferred, 0, 0, "the program stopped before its turn came"};
}

DeliveryResult notWritten() {
    return {DeliveryResult::Deferred, 0, 0, "its beginning could not be written down"};
}

/// A clock that was wrong, or is set back, holds a message back for no longer than the longest wait.
void trustOnlySoFar(Posting& posting, const RetryOptions& retry, Date now) {
    posting.asked = std::min(posting.asked, now);
    posting.due = std::min(posting.due, now.plus(retry.longestSeconds));
}

}  // namespace

Posting::~Posting() = default;

std::optional<Date> nextAttempt(const RetryOptions& retry, Date asked, int attempt, Date now) {
    const double delay =
        std::min(retry.longestSeconds, std::ldexp(retry.firstSeconds, std::clamp(attempt - 1, 0, 60)));
    const Date again = now.plus(delay);
    if (again.secondsSince(asked) > retry.giveUpSeconds) return std::nullopt;
    return again;
}

struct Courier::State {
    struct Of {
        std::list<std::shared_ptr<Posting>> waiting{};
        std::size_t taken = 0;
        std::thread thread{};
    };

    explicit State(AutomationOptions given) : options(std::move(given)) {}

    // The lane's thread.
    void loop(Lane lane);
    std::shared_ptr<Posting> next(Of& of, std::unique_lock<std::mutex>& lock);
    void attempt(Lane lane, const std::shared_ptr<Posting>& posting);
    DeliveryResult delivered(const Posting& posting);

    const AutomationOptions options;
    StopSignal stop{};
    mutable std::mutex mutex{};
    std::condition_variable changed{};
    bool stopping = false;
    std::array<Of, 2> lanes{};
};

void Courier::State::loop(Lane lane) {
    // the process's signals are for the threads that want them
    sigset_t all;
    sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, nullptr);
    Of& of = lanes[lane];
    std::unique_lock lock(mutex);
    while (auto posting = next(of, lock)) {
        lock.unlock();
        attempt(lane, posting);
        lock.lock();
    }
    auto left = std::move(of.waiting);
    of.waiting.clear();
    lock.unlock();
    for (const auto& posting : left) {
        const Date now = options.clock();
        if (posting->attempt == 1) posting->ended(notBegun(), now, now);
    }
}

// The first that is due; nothing once the host stops.
std::shared_ptr<Posting> Courier::State::next(Of& of, std::unique_lock<std::mutex>& lock) {
    while (!stopping) {
        const Date now = options.clock();
        double sleep = kLookSeconds;
        for (auto at = of.waiting.begin(); at != of.waiting.end(); ++at) {
            trustOnlySoFar(**at, options.retry, now);
            const double left = (*at)->due.secondsSince(now);
            if (left <= 0) {
                auto posting = std::move(*at);
                of.waiting.erase(at);
                return posting;
            }
            sleep = std::min(sleep, left);
        }
        changed.wait_for(lock, std::chrono::duration<double>(sleep));
    }
    return nullptr;
}

DeliveryResult Courier::State::delivered(const Posting& posting) {
    if (stop.raised()) return notBegun();
    if (const auto* mail = std::get_if<MailHandOver>(&posting.message))
        return deliver(*mail, posting.stamp, options, stop);
    if (const auto* sms = std::get_if<SmsHandOver>(&posting.message)) return deliver(*sms, options, stop);
    return {DeliveryResult::Refused, 0, 0, "there is nothing to deliver"};
}

void Courier::State::attempt(Lane lane, const std::shared_ptr<Posting>& posting) {
    const auto begun = std::make_shared<std::promise<bool>>();
    posting->begin(options.clock(), [begun](bool written) { begun->set_value(written); });
    const bool written = begun->get_future().get();
    const DeliveryResult result = written || posting->attempt == 1 ? delivered(*posting) : notWritten();
    const Date now = options.clock();
    const auto again = result.outcome == DeliveryResult::Deferred
                           ? nextAttempt(options.retry, posting->asked, posting->attempt, now)
                           : std::nullopt;
    posting->ended(result, now, again);
    const std::lock_guard lock(mutex);
    if (again) {
        posting->due = *again;
        ++posting->attempt;
        lanes[lane].waiting.push_back(posting);
    } else {
        --lanes[lane].taken;
    }
}

Courier::Courier(AutomationOptions options) : m_state(std::make_shared<State>(std::move(options))) {
    const auto begin = [state = m_state.get()](Lane lane) {
        state->lanes[lane].thread = std::thread([state, lane] { state->loop(lane); });
    };
    if (!whyNoMail(m_state->options.mail)) begin(Mail);
    if (!whyNoSms(m_state->options.sms)) begin(Sms);
}

Courier::~Courier() {
    stop();
}

const AutomationOptions& Courier::options() const {
    return m_state->options;
}

bool Courier::reserve(Lane lane) {
    const std::lock_guard lock(m_state->mutex);
    auto& of = m_state->lanes[lane];
    if (of.taken >= m_state->options.waiting) return false;
    ++of.taken;
    return true;
}

void Courier::reserveAnyway(Lane lane) {
    const std::lock_guard lock(m_state->mutex);
    ++m_state->lanes[lane].taken;
}

void Courier::submit(Lane lane, std::shared_ptr<Posting> posting) {
    const Date now = m_state->options.clock();
    trustOnlySoFar(*posting, m_state->options.retry, now);
    {
        const std::lock_guard lock(m_state->mutex);
        if (!m_state->stopping) {
            m_state->lanes[lane].waiting.push_back(std::move(posting));
            m_state->changed.notify_all();
            return;
        }
    }
    if (posting->attempt == 1) posting->ended(notBegun(), now, now);
}

std::size_t Courier::taken(Lane lane) const {
    const std::lock_guard lock(m_state->mutex);
    return m_state->lanes[lane].taken;
}

void Courier::stop() {
    {
        const std::lock_guard lock(m_state->mutex);
        m_state->stopping = true;
    }
    m_state->stop.raise();
    m_state->changed.notify_all();
    for (auto& of : m_state->lanes)
        if (of.thread.joinable()) of.thread.join();
}

}  // namespace vigil
