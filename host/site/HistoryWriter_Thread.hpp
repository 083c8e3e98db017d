#pragma once

#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "host/site/HistoryArchives.hpp"
#include "host/site/HistoryCheck.hpp"
#include "host/site/HistoryContext.hpp"
#include "host/site/HistoryFile.hpp"
#include "host/site/HistoryLock.hpp"
#include "host/site/HistoryQueue.hpp"
#include "host/site/HistoryRetention.hpp"
#include "host/site/HistoryStore.hpp"
#include "host/site/HistoryWriter.hpp"

namespace vigil {

/// The writer's thread and what it works on. Members below `run` are its own.
class HistoryWriter::Thread {
  public:
    /// `identity` of the site; empty where it is not known.
    Thread(HistoryLock lock, std::string file, std::string identity, HistoryOptions options);
    ~Thread();
    /// Opens the file, before the thread begins. An error says why there is no history.
    Result<Done> open();
    void begin();

    HistoryQueue queue;
    HistoryArchives archives;
    const std::string file;

  private:
    void run();
    /// Writes what was taken in one transaction.
    void write(const std::vector<HistoryEvent>& taken);
    std::uint64_t insert(const std::vector<HistoryEvent>& events);
    void giveUp(const std::vector<HistoryEvent>& taken, const std::string& why);
    void boundKept();
    void openStore();
    void lookAtCheck();
    /// False when not even a new file can be made.
    bool beginAnew(HistoryObstacle obstacle, const std::string& why);
    void tell(const std::string& sentence) const;

    const HistoryLock m_lock;
    const std::string m_identity;
    const HistoryOptions m_options;
    std::unique_ptr<HistoryStore> m_store;
    std::unique_ptr<HistoryCheck> m_check;
    HistoryRetention m_retention;
    HistoryContext m_context;
    std::vector<HistoryEvent> m_kept;  // what the file refused and must still learn
    Date m_newest = Date::distantPast();
    std::uint64_t m_deleted = 0;
    bool m_failing = false;
    std::thread m_thread;
};

}  // namespace vigil
