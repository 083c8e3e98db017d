#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/site/SiteRecords.hpp"
#include "platform/Date.hpp"
#include "platform/Result.hpp"

namespace vigil {

class SiteDatabase;
class SiteLock;
struct SiteSchema;

/// Why a site file could not be opened. The message names the file and what to do.
struct SiteError {
    enum class Kind {
        NotThere,     ///< no such file
        Locked,       ///< another process runs this site
        Damaged,      ///< its pages or tables do not hold together
        TooNew,       ///< a later version of the program wrote it
        NotASite,     ///< another kind of file
        Environment,  ///< the disk, the rights, the memory
    };

    Kind kind = Kind::Environment;
    std::string message{};
};

/// What an open file is for. Any number of processes may read and edit a site while one holds it.
enum class Access {
    Read,
    Edit,   ///< stations and plug-ins are changed, also while another process runs the site
    Write,  ///< the site is run: nobody else holds it, and a `SiteWriter` may write to it
};

/// The rows of a site, counted.
struct SiteSummary {
    int version = 0;          ///< of the tables
    std::uint64_t bytes = 0;  ///< of the file and its log
    std::size_t stations = 0;
    std::size_t plugIns = 0;
    std::size_t fires = 0;
    std::size_t openFires = 0;  ///< without a completion
    std::size_t effects = 0;
    std::size_t openEffects = 0;   ///< without an end
    std::optional<Date> oldest{};  ///< effect, by when it was queued
    bool clean = true;             ///< closed cleanly, or never written to since
};

/// A mail or short message that was refused for now and may be tried again.
struct DeferredEffect {
    EffectRecord last{};  ///< its latest attempt
    Date first{};         ///< when it was handed over
};

/// What a stop left open.
struct Interrupted {
    std::vector<FireRecord> fires{};  ///< intents without a completion, in the order of their ids
    std::vector<EffectRecord>
        effects{};  ///< as they stand now: ended, "interrupted"; begun where `started` is
    std::vector<DeferredEffect> deferred{};  ///< to be tried again, in the order of their ids
};

/// Which effects to list.
struct EffectQuery {
    std::optional<Date> since{};           ///< queued then or later
    std::size_t limit = 100;               ///< the newest so many
    std::optional<std::string> title{};    ///< of the plug-in, as it was when it acted
    std::optional<std::string> station{};  ///< as it was called then
    bool failed = false;                   ///< only those that ended and did not succeed
};

/// A site: stations, plug-ins and their archives, fires and effects, in one SQLite database
/// (docs/formats/site.md). Closing one that was open for writing marks it clean; where that mark is missing,
/// the next one to write checks the file before it uses it.
///
/// One thread: its owner's, the main thread. It may wait for the disk, so it is for what people do and for
/// the start of a run; what monitors do goes through a `SiteWriter`. Each change is a transaction of its own,
/// on the disk when the call returns. Texts are UTF-8.
class SiteFile {
  public:
    /// How long an ended effect and a completed fire stay where nobody says otherwise.
    static constexpr double kKeptSeconds = 90 * 86400.0;

    /// "vigil/home.vigilsite" below $XDG_DATA_HOME, else below ~/.local/share.
    static std::string defaultFile();

    /// Makes a site of those stations, and the folders above it. A file that is there already is an error and
    /// stays. The site is there whole, and on the disk, or not at all.
    static Result<Done> create(const std::string& path, const std::vector<StationRecord>& stations = {});

    /// Writing takes the lock beside the file for as long as this object lives, brings an older version up to
    /// date, and checks a file that was not closed cleanly. So does editing where the lock is free; where
    /// another process has it, that one has done the rest.
    static Result<std::unique_ptr<SiteFile>, SiteError> open(const std::string& path, Access access);

    /// The same for tables of another version than this program's own; tests of coming versions use it.
    static Result<std::unique_ptr<SiteFile>, SiteError> open(const std::string& path, Access access,
                                                             const SiteSchema& schema);

    SiteFile(const SiteFile&) = delete;
    SiteFile& operator=(const SiteFile&) = delete;
    /// Marks the file clean. Every `SiteWriter` of it has stopped before.
    ~SiteFile();

    const std::string& path() const { return m_path; }
    Access access() const { return m_access; }
    /// The process that holds the lock beside a file that was opened for editing; 0: this one.
    long runner() const { return m_runner; }
    /// Whether this opening found the file not closed cleanly, checked it, and found it whole.
    bool wasChecked() const { return m_wasChecked; }

    /// All of them, in the order in which they were made.
    Result<std::vector<StationRecord>> stations() const;
    Result<std::vector<PlugInRecord>> plugIns() const;
    Result<std::optional<StationRecord>> stationNamed(std::string_view name) const;
    Result<std::optional<PlugInRecord>> plugInTitled(std::string_view title) const;

    // An error says which name or title is taken or empty, or that there is no such row any more.

    /// The id of the record is not looked at; the new one is returned.
    Result<RecordId> addStation(const StationRecord& station);
    Result<Done> editStation(const StationRecord& station);
    /// Takes its plug-ins and their fires along; their effects stay in the ledger.
    Result<Done> removeStation(RecordId station);

    Result<RecordId> addPlugIn(const PlugInRecord& plugIn);
    /// Title and archive; class and station stay, and the edition goes up by one. An error where it is not
    /// the record's edition any more: somebody else has changed it since it was read.
    Result<Done> editPlugIn(const PlugInRecord& plugIn);
    /// Takes its fires along; its effects stay in the ledger.
    Result<Done> removePlugIn(RecordId plugIn);

    /// For the start of a run: every effect without an end becomes one that ended `now`, "interrupted" (of a
    /// mail or message that had begun the detail says that it may have been sent), and what is older than
    /// `kKeptSeconds` goes. Messages that were refused for now are listed and stay as they are. Writes
    /// nothing where there is nothing to do.
    Result<Interrupted> openLedger(Date now);

    /// In the order in which they were queued.
    Result<std::vector<EffectRecord>> effects(const EffectQuery& query = {}) const;
    /// The fire, or nothing where it is not there (any more).
    Result<std::optional<FireRecord>> fire(RecordId id) const;

    /// When each plug-in that has fired last began to.
    Result<std::map<RecordId, Date>> lastFires() const;
    /// Of each plug-in that has done something, the last effect that has ended.
    Result<std::vector<EffectRecord>> lastEffects() const;

    Result<SiteSummary> summary() const;

    /// The highest id that a fire or effect of this file has ever had.
    Result<RecordId> highestId() const;

    /// Tells this site from every other one, also from one that is made in its place. Copies and what is
    /// imported from them have their original's.
    Result<std::string> identity() const;

  private:
    SiteFile(std::string path, Access access, std::unique_ptr<SiteLock> lock,
             std::unique_ptr<SiteDatabase> database, bool wasChecked, long runner);

    std::string m_path;
    Access m_access;
    bool m_wasChecked;
    long m_runner;
    std::unique_ptr<SiteLock> m_lock;  // goes last
    std::unique_ptr<SiteDatabase> m_database;
};

}  // namespace vigil
