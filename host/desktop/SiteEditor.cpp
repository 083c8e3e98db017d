#include "host/desktop/SiteEditor.hpp"

#include <memory>
#include <utility>

namespace vigil {

SiteEditor::SiteEditor(std::string path, Mailbox& mailbox)
    : m_path(std::move(path)), m_mailbox(mailbox), m_thread([this] { run(); }) {}

SiteEditor::~SiteEditor() {
    {
        const std::lock_guard lock(m_mutex);
        m_ending = true;
    }
    m_wake.notify_all();
    m_thread.join();
}

void SiteEditor::apply(Change change, Changed changed) {
    {
        const std::lock_guard lock(m_mutex);
        m_jobs.push_back({std::move(change), std::move(changed)});
    }
    m_wake.notify_all();
}

void SiteEditor::run() {
    std::unique_ptr<SiteFile> file;
    std::unique_lock lock(m_mutex);
    while (true) {
        m_wake.wait(lock, [this] { return m_ending || !m_jobs.empty(); });
        if (m_jobs.empty()) return;
        Job job = std::move(m_jobs.front());
        m_jobs.pop_front();
        lock.unlock();
        work(file, std::move(job));
        lock.lock();
    }
}

void SiteEditor::work(std::unique_ptr<SiteFile>& file, Job job) {
    Result<RecordId> answer = Error{};
    std::optional<RunningSite::Rows> rows;
    if (!file) {
        auto opened = SiteFile::open(m_path, Access::Edit);
        if (opened)
            file = std::move(opened).value();
        else
            answer = Error{opened.error().message};
    }
    if (file) {
        answer = job.change(*file);
        if (answer) {
            auto stations = file->stations();
            auto plugIns = file->plugIns();
            if (stations && plugIns)
                rows = RunningSite::Rows{.stations = std::move(stations).value(),
                                         .plugIns = std::move(plugIns).value()};
            else
                answer = stations ? plugIns.error() : stations.error();
        }
    }
    const auto told = std::make_shared<Result<RecordId>>(std::move(answer));
    m_mailbox.dispatchAtRest([changed = std::move(job.changed), told, rows] { changed(*told, rows); });
}

}  // namespace vigil
