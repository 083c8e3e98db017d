#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "host/run/RunningSite.hpp"
#include "host/site/SiteFile.hpp"

namespace vigil {

/// Changes the stations and plug-ins of a site that this process runs, by the way that commands go: on a
/// connection of its own, opened for editing, on a thread of its own, since the main one never waits for a
/// disk. Main thread.
class SiteEditor {
  public:
    /// Changes the file; what it answers is given to `Changed`. On the editor's thread.
    using Change = std::function<Result<RecordId>(SiteFile&)>;
    /// Hears on the main thread, at rest, what came of it and what the file holds then. The rows are absent
    /// where nothing was changed.
    using Changed = std::function<void(Result<RecordId>, std::optional<RunningSite::Rows>)>;

    /// The mailbox outlives this, or is closed.
    SiteEditor(std::string path, Mailbox& mailbox);
    SiteEditor(const SiteEditor&) = delete;
    SiteEditor& operator=(const SiteEditor&) = delete;
    /// Does what waits, and joins.
    ~SiteEditor();

    /// One after another, in this order.
    void apply(Change change, Changed changed);

  private:
    struct Job {
        Change change;
        Changed changed;
    };
    void run();
    void work(std::unique_ptr<SiteFile>& file, Job job);

    const std::string m_path;
    Mailbox& m_mailbox;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::deque<Job> m_jobs;
    bool m_ending = false;
    std::thread m_thread;
};

}  // namespace vigil
