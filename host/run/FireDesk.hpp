#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/site/SiteRecords.hpp"
#include "platform/Date.hpp"
#include "platform/Object.hpp"

namespace vigil {

class SiteWriter;

/// Who a plug-in is in its site's file.
struct PlugInIdentity {
    RecordId plugIn = 0;
    std::string station{};
    std::string title{};
};

/// One fire of a plug-in, from its hand-over to the main thread to the end of its actions.
struct Fire {
    RecordId id = 0;
    PlugInIdentity of;
    std::shared_ptr<const Object> plugIn;
    Date began;  ///< its actions, on the main thread
    Date ended;
};

/// Knows which fire is going on where, so that whatever happens on a plug-in's behalf can be written down as
/// its doing. A fire's intent is handed to the writer before its first action begins, and so stands in the
/// site file no later than anything that follows from it.
class FireDesk {
  public:
    FireDesk(SiteWriter& writer, std::function<Date()> clock);

    /// Any thread.
    void enroll(const Object& plugIn, PlugInIdentity identity);
    void dismiss(const Object& plugIn);
    std::optional<PlugInIdentity> identity(const Object& plugIn) const;

    /// The fires of one announcement, noted on the announcing thread while this lives.
    class Announcement {
      public:
        Announcement();
        Announcement(const Announcement&) = delete;
        Announcement& operator=(const Announcement&) = delete;
        ~Announcement();
        std::vector<Fire> fires;  ///< those whose actions have ended; one that threw is not among them

      private:
        Announcement* m_before;
    };

    /// Runs a fire's actions on the main thread by `handOver`, which calls what it is given there.
    void fire(const std::shared_ptr<const Object>& plugIn, PlugInIdentity identity,
              const std::function<void()>& actions,
              const std::function<void(const std::function<void()>&)>& handOver);

    /// When the plug-in's last fire of this run ended, by its place in the site; nothing before one has. Any
    /// thread.
    std::optional<Date> lastEnd(RecordId plugIn) const;

    /// The innermost fire whose actions run now; nothing outside (a test by hand). Main thread.
    const Fire* acting() const { return m_acting.empty() ? nullptr : m_acting.back(); }

  private:
    SiteWriter& m_writer;
    const std::function<Date()> m_clock;
    std::vector<const Fire*> m_acting;  // main thread

    mutable std::mutex m_mutex;
    std::unordered_map<const Object*, PlugInIdentity> m_identities;
    std::unordered_map<RecordId, Date> m_lastEnds;
};

}  // namespace vigil
