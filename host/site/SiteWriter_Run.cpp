#include <algorithm>
#include <chrono>
#include <iterator>
#include <memory>
#include <utility>
#include <vector>

#include "host/site/SiteBatch.hpp"
#include "host/site/SiteSql.hpp"
#include "host/site/SiteWriter.hpp"

namespace vigil {
namespace {

/// What a burst may leave behind in memory: places for so many writes.
constexpr std::size_t kMostPlaces = 1024;

}  // namespace

/// What the writer's thread has taken over.
struct SiteWriter::Work {
    using Clock = std::chrono::steady_clock;

    std::unique_ptr<SiteBatch> batch{};    // made anew behind a failure
    std::vector<Write> writes{};           // in their order; the first `told` of them from earlier attempts
    std::vector<Result<Done>> outcomes{};  // of each write in the last attempt
    std::size_t told = 0;
    std::string failure{};  // of the last attempt; empty: it stands
    double pause = 0;       // seconds to the next one
    Clock::time_point next{};
};

void SiteWriter::run() {
    Work work;
    std::unique_lock lock(m_mutex);
    m_writing = std::this_thread::get_id();
    for (;;) {
        const auto due = [this] { return m_stopping || !m_queue.empty(); };
        if (work.writes.empty())
            m_wake.wait(lock, due);
        else
            m_wake.wait_until(lock, work.next, due);
        const bool last = m_stopping;
        std::move(m_queue.begin(), m_queue.end(), std::back_inserter(work.writes));
        m_queue.clear();
        if (!work.writes.empty()) {
            lock.unlock();
            // While the disk refuses, what is new hears so at once and waits with the rest.
            if (work.told == 0 || last || Work::Clock::now() >= work.next) attempt(work);
            tell(work);
            lock.lock();
            note(work, last);
        }
        if (!last || !m_queue.empty()) continue;
        m_writing = {};  // another thread may get the same id
        return;
    }
}

Result<Done> SiteWriter::apply(SiteBatch& batch, const FireRecord& fire) {
    return batch.put(fire);
}

Result<Done> SiteWriter::apply(SiteBatch& batch, const EffectRecord& effect) {
    return batch.put(effect);
}

Result<Done> SiteWriter::apply(SiteBatch& batch, const PlugInRecord& plugIn) {
    return batch.save(plugIn);
}

Result<Done> SiteWriter::apply(SiteBatch& batch, const Completion& completion) {
    return batch.complete(completion.fire, completion.plugIn);
}

Result<Done> SiteWriter::apply(SiteBatch& batch, const Forgetting& forgetting) {
    return batch.forget(forgetting.before);
}

void SiteWriter::attempt(Work& work) {
    work.outcomes.clear();
    try {
        if (!work.batch) work.batch = std::make_unique<SiteBatch>(m_site.path());
        SiteBatch& batch = *work.batch;
        batch.begin();
        for (const Write& write : work.writes)
            work.outcomes.push_back(
                std::visit([&](const auto& record) { return apply(batch, record); }, write.record));
        batch.commit();
        work.failure.clear();
        work.pause = 0;
    } catch (const SQLite::Exception& failure) {
        work.failure = failureText(m_site.path(), failure);
        work.batch.reset();  // what is left of the transaction goes with its connection
        work.pause = work.pause == 0 ? m_options.firstRetrySeconds
                                     : std::min(2 * work.pause, m_options.longestRetrySeconds);
        work.next = Work::Clock::now() + std::chrono::duration_cast<Work::Clock::duration>(
                                             std::chrono::duration<double>(work.pause));
    }
}

void SiteWriter::tell(Work& work) {
    for (std::size_t i = work.told; i < work.writes.size(); ++i) {
        const Committed committed = std::exchange(work.writes[i].committed, nullptr);
        if (!committed) continue;
        if (work.failure.empty())
            committed(work.outcomes[i]);
        else
            committed(Error{work.failure});
    }
    work.told = work.failure.empty() ? 0 : work.writes.size();
}

void SiteWriter::note(Work& work, bool last) {
    if (work.failure.empty()) {
        for (const Write& write : work.writes)
            m_bytes -= write.bytes;
        m_state.waiting -= work.writes.size();
        m_state.written += static_cast<std::uint64_t>(std::count_if(
            work.outcomes.begin(), work.outcomes.end(), [](const auto& one) { return bool(one); }));
        ++m_state.commits;
        m_state.well = true;
        m_state.words = "writing";
        m_state.since.reset();
        work.writes.clear();
        if (work.writes.capacity() > kMostPlaces) work.writes.shrink_to_fit();
        if (work.outcomes.capacity() > kMostPlaces) work.outcomes = {};
        return;
    }
    if (m_state.well && m_options.now) m_state.since = m_options.now();
    m_state.well = false;
    const std::string count = std::to_string(work.writes.size());
    m_state.words = work.failure + "; " + count +
                    (last ? " writes were lost at the stop" : " writes are kept until it takes them");
}

}  // namespace vigil
