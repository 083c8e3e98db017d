#include "host/site/SiteWriter.hpp"

#include <algorithm>
#include <system_error>
#include <utility>

namespace vigil {
namespace {

/// What a write holds of the memory that is not its own size.
std::size_t bytesOf(const PlugInRecord& plugIn) {
    return plugIn.className.size() + plugIn.title.size() + plugIn.archive.size();
}

std::size_t bytesOf(const FireRecord&) {
    return 0;
}

std::size_t bytesOf(const EffectRecord& effect) {
    return effect.station.size() + effect.title.size() + effect.what.size() + effect.result.size() +
           effect.detail.size() + effect.handOver.size();
}

}  // namespace

SiteWriter::SiteWriter(SiteFile& site, SiteWriterOptions options)
    : m_site(site), m_options(std::move(options)) {
    m_state.words = "writing";
    if (const auto highest = site.highestId()) {
        m_lastId = highest.value();
    } else {
        m_state.well = false;
        m_state.words = highest.error().message;
        m_stopping = true;  // without it an id could be given twice
    }
}

SiteWriter::~SiteWriter() {
    stop();
}

void SiteWriter::putFire(FireRecord fire, Committed committed) {
    const std::size_t bytes = bytesOf(fire);
    take({Record(fire), std::move(committed), bytes});
}

void SiteWriter::putEffect(EffectRecord effect, Committed committed) {
    const std::size_t bytes = bytesOf(effect);
    take({Record(std::move(effect)), std::move(committed), bytes});
}

void SiteWriter::completeFire(RecordId fire, PlugInRecord archive, Committed committed) {
    const std::size_t bytes = bytesOf(archive);
    take({Record(Completion{fire, std::move(archive)}), std::move(committed), bytes});
}

void SiteWriter::saveArchive(PlugInRecord archive, Committed committed) {
    const std::size_t bytes = bytesOf(archive);
    take({Record(std::move(archive)), std::move(committed), bytes});
}

void SiteWriter::forget(Date before, Committed committed) {
    take({Record(Forgetting{before}), std::move(committed), 0});
}

void SiteWriter::take(Write write) {
    std::string reason;
    {
        const std::lock_guard lock(m_mutex);
        reason = refusal(write);
        if (reason.empty()) {
            m_bytes += write.bytes;
            ++m_state.waiting;
            m_queue.push_back(std::move(write));
        } else {
            ++m_state.refused;
        }
    }
    if (reason.empty()) return m_wake.notify_one();
    if (write.committed) write.committed(Error{m_site.path() + ": " + reason});
}

std::string SiteWriter::refusal(const Write& write) {
    // What follows from a write that was still committed belongs to it.
    if (m_stopping && std::this_thread::get_id() != m_writing) return "nothing is written any more";
    if (m_state.waiting >= m_options.writes || m_bytes + write.bytes > m_options.bytes)
        return std::to_string(m_state.waiting) + " writes wait already" +
               (m_state.well ? "" : " (" + m_state.words + ")");
    if (m_stopping || m_thread.joinable()) return {};
    try {
        m_thread = std::thread([this] { run(); });
    } catch (const std::system_error& failure) {
        return std::string("the writer does not start: ") + failure.what();
    }
    return {};
}

SiteWriterState SiteWriter::state() const {
    const std::lock_guard lock(m_mutex);
    return m_state;
}

void SiteWriter::stop() {
    {
        const std::lock_guard lock(m_mutex);
        m_stopping = true;
    }
    m_wake.notify_one();
    if (m_thread.joinable()) m_thread.join();
}

}  // namespace vigil
