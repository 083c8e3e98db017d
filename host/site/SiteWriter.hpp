#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <variant>

#include "host/site/SiteFile.hpp"
#include "host/site/SiteRecords.hpp"
#include "platform/Date.hpp"
#include "platform/Result.hpp"

namespace vigil {

class SiteBatch;

struct SiteWriterOptions {
    /// Only to say since when something is wrong; absent: nobody says.
    std::function<Date()> now{};
    /// Writes that may wait, those that are kept because the disk refuses them included.
    std::size_t writes = 65536;
    /// Bytes of their texts, against archives that fill the memory while a disk is full.
    std::size_t bytes = std::size_t{32} << 20;
    double firstRetrySeconds = 0.1;  ///< doubled from attempt to attempt
    double longestRetrySeconds = 5;
};

/// How the writer is.
struct SiteWriterState {
    bool well = true;
    std::string words{};          ///< "writing", or what is wrong, of which file, and what waits
    std::optional<Date> since{};  ///< when it went wrong
    std::size_t waiting = 0;      ///< writes that are not on the disk yet
    std::uint64_t written = 0;    ///< writes that are, since the start
    std::uint64_t commits = 0;    ///< in so many transactions
    std::uint64_t refused = 0;    ///< writes that found no place and are lost
};

/// Writes what monitors do. A thread with a connection of its own takes all that waits and commits it at
/// once, so that a thousand monitors that fire together cost one sync. The thread starts with the first
/// write.
///
/// Any thread may call any member but `stop`. `Committed` is called exactly once a write: on the writer's
/// thread in the order of the writes, and then the write is on the disk or the error says why it is not; or,
/// where a write is refused (no place, or stopped already), before the call returns, on the calling thread.
/// It must not wait, throw, nor call `stop`.
///
/// When a commit fails (a full disk, a failing one), everything that waits hears of it at once, and all that
/// follows until it works again; the writes themselves are kept in their order and tried again until they
/// stand. A write that the file itself refuses (its plug-in is gone or of a later edition, its title is
/// taken) hears so alone and is not kept.
class SiteWriter {
  public:
    using Committed = std::function<void(const Result<Done>&)>;

    /// The site is open for writing and outlives the writer.
    explicit SiteWriter(SiteFile& site, SiteWriterOptions options = {});
    SiteWriter(const SiteWriter&) = delete;
    SiteWriter& operator=(const SiteWriter&) = delete;
    ~SiteWriter();

    /// For a fire or an effect: above every one that the file has ever had, and never given twice.
    RecordId newId() { return ++m_lastId; }

    /// Inserts the fire, or replaces the one with its id.
    void putFire(FireRecord fire, Committed committed = {});
    /// Inserts the effect, or replaces the one with its id. A fire or plug-in that is not there (any more) is
    /// left out.
    void putEffect(EffectRecord effect, Committed committed = {});
    /// The fire is over, and this is its plug-in's archive (and title) behind it: both or neither.
    void completeFire(RecordId fire, PlugInRecord archive, Committed committed = {});
    /// A plug-in's archive (and title).
    void saveArchive(PlugInRecord archive, Committed committed = {});

    /// Some of the completed fires and ended effects from before that date go, few enough that nobody who
    /// waits for a commit behind them notices. Nothing is written where there are none.
    void forget(Date before, Committed committed = {});

    SiteWriterState state() const;

    /// Commits what waits, with what is written from within `Committed` meanwhile, and joins the thread; what
    /// a failing disk does not take in one more attempt is lost, and `state` says so. Later writes are
    /// refused. The owner's thread.
    void stop();

  private:
    struct Completion {
        RecordId fire;
        PlugInRecord plugIn;
    };
    struct Forgetting {
        Date before;
    };
    using Record = std::variant<FireRecord, EffectRecord, PlugInRecord, Completion, Forgetting>;
    struct Write {
        Record record;
        Committed committed;
        std::size_t bytes;
    };
    struct Work;

    void take(Write write);
    std::string refusal(const Write& write);  // with the mutex; empty: there is a place

    // On the writer's thread.
    void run();
    void attempt(Work& work);
    void tell(Work& work);
    void note(Work& work, bool last);  // with the mutex
    static Result<Done> apply(SiteBatch& batch, const FireRecord& fire);
    static Result<Done> apply(SiteBatch& batch, const EffectRecord& effect);
    static Result<Done> apply(SiteBatch& batch, const PlugInRecord& plugIn);
    static Result<Done> apply(SiteBatch& batch, const Completion& completion);
    static Result<Done> apply(SiteBatch& batch, const Forgetting& forgetting);

    SiteFile& m_site;
    const SiteWriterOptions m_options;
    std::atomic<RecordId> m_lastId{0};

    mutable std::mutex m_mutex;
    std::condition_variable m_wake;
    std::deque<Write> m_queue;
    SiteWriterState m_state;
    std::size_t m_bytes = 0;  // of all that waits
    bool m_stopping = false;
    std::thread m_thread;
    std::thread::id m_writing{};  // the thread's, once it runs
};

}  // namespace vigil
