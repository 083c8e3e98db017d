#include "host/site/HistoryWriter.hpp"

#include <cmath>
#include <utility>

#include "host/site/HistoryWriter_Thread.hpp"

namespace vigil {
namespace {

bool isFinite(Date date) {
    return std::isfinite(date.secondsSinceReference());
}

}  // namespace

HistoryWriter::HistoryWriter(std::unique_ptr<Thread> thread) : m_thread(std::move(thread)) {}

HistoryWriter::~HistoryWriter() = default;

Result<std::unique_ptr<HistoryWriter>> HistoryWriter::open(const std::string& siteFile, Options options) {
    const std::string file = historyFileOf(siteFile);
    if (options.retentionDays < 1) return Error{"the history is kept for 1 day at least"};
    auto lock = HistoryLock::take(file);
    if (!lock) return lock.error();
    auto thread =
        std::make_unique<Thread>(std::move(lock).value(), file, siteIdentity(siteFile), std::move(options));
    if (const auto opened = thread->open(); !opened) return opened.error();
    thread->begin();
    return std::unique_ptr<HistoryWriter>(new HistoryWriter(std::move(thread)));
}

void HistoryWriter::append(RecordId station, std::optional<std::uint64_t> sequence, Date started,
                           std::shared_ptr<const Readings> batch) {
    if (!batch || !isFinite(started)) return m_thread->queue.refuse();
    m_thread->queue.push(StoredNotification{station, sequence, started, std::move(batch)});
}

void HistoryWriter::fired(RecordId station, RecordId plugIn, Date started, Date actionsBegan,
                          Date actionsEnded) {
    if (isFinite(started) && isFinite(actionsBegan) && isFinite(actionsEnded))
        m_thread->queue.push(HistoryEvent(StoredFire{station, plugIn, started, actionsBegan, actionsEnded}));
}

void HistoryWriter::started(RecordId plugIn, Date date, WatchReason reason) {
    if (isFinite(date)) m_thread->queue.push(HistoryEvent(WatchBegan{plugIn, date, reason}));
}

void HistoryWriter::stopped(RecordId plugIn, Date date, WatchReason reason) {
    if (isFinite(date)) m_thread->queue.push(HistoryEvent(WatchEnded{plugIn, date, reason}));
}

void HistoryWriter::archived(const PlugInRecord& plugIn, Date date, ArchiveReason reason) {
    if (isFinite(date) && m_thread->archives.wants(plugIn, date, reason))
        m_thread->queue.push(
            HistoryEvent(ArchiveTaken{std::make_shared<const PlugInRecord>(plugIn), date, reason}));
}

void HistoryWriter::archived(PlugInRecord&& plugIn, Date date, ArchiveReason reason) {
    if (isFinite(date) && m_thread->archives.wants(plugIn, date, reason))
        m_thread->queue.push(HistoryEvent(
            ArchiveTaken{std::make_shared<const PlugInRecord>(std::move(plugIn)), date, reason}));
}

void HistoryWriter::named(RecordId station, const std::string& name) {
    m_thread->queue.push(HistoryEvent(StationNamed{station, std::make_shared<const std::string>(name)}));
}

void HistoryWriter::forget(RecordId station) {
    m_thread->queue.push(HistoryEvent(StationForgotten{station}));
}

void HistoryWriter::flush() {
    m_thread->queue.flush();
}

HistoryCounts HistoryWriter::counts() const {
    return m_thread->queue.counts();
}

const std::string& HistoryWriter::file() const {
    return m_thread->file;
}

}  // namespace vigil
