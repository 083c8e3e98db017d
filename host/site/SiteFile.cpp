#include "host/site/SiteFile.hpp"

#include <cstdlib>
#include <filesystem>
#include <utility>

#include "host/site/FileOwner.hpp"
#include "host/site/SiteDatabase.hpp"
#include "host/site/SiteLock.hpp"
#include "host/site/SiteSchema.hpp"
#include "host/site/SiteSql.hpp"

namespace vigil {
namespace {

namespace fs = std::filesystem;

using Opened = Result<std::unique_ptr<SiteFile>, SiteError>;

SiteError refusal(SiteError::Kind kind, const std::string& path, const std::string& reason) {
    return {.kind = kind, .message = path + ": " + reason};
}

SiteError damaged(const std::string& path, const std::string& found) {
    return {
        .kind = SiteError::Kind::Damaged,
        .message = path + ": the site is damaged (" + found +
                   "); `vigil site check` lists what, `vigil site import COPY --force` brings a copy back",
        .found = found};
}

SiteError notASite(const std::string& path) {
    return refusal(SiteError::Kind::NotASite, path,
                   "this is no site; name another file, or make one with `vigil site create`");
}

SiteError asError(const std::string& path, const SQLite::Exception& failure) {
    if (tellsOfDamage(failure)) return damaged(path, failure.what());
    if (tellsOfAnotherFormat(failure)) return notASite(path);
    return {.kind = SiteError::Kind::Environment, .message = failureText(path, failure)};
}

/// What the header says: that it is a site, of a version that this program knows.
Result<int, SiteError> readVersion(const std::string& path, SQLite::Database& database,
                                   const SiteSchema& schema) {
    if (database.execAndGet("PRAGMA application_id").getInt() != kSiteApplicationId) return notASite(path);
    const int version = versionOf(database);
    if (version > schema.version)
        return refusal(SiteError::Kind::TooNew, path,
                       "a later version of vigil wrote it (format " + std::to_string(version) +
                           ", this one knows up to " + std::to_string(schema.version) +
                           "); use that version, or bring a copy from before back");
    return version;
}

}  // namespace

std::string SiteFile::defaultFile() {
    const char* data = std::getenv("XDG_DATA_HOME");
    if (data && *data == '/') return std::string(data) + "/vigil/home.vigilsite";
    const char* home = std::getenv("HOME");
    return std::string(home ? home : "") + "/.local/share/vigil/home.vigilsite";
}

Opened SiteFile::open(const std::string& path, Access access) {
    return open(path, access, SiteSchema::current());
}

Opened SiteFile::open(const std::string& path, Access access, const SiteSchema& schema) {
    std::error_code unknown;
    if (!fs::exists(path, unknown) && !unknown)
        return refusal(SiteError::Kind::NotThere, path,
                       "there is no such site; `vigil site create` makes one");
    if (const auto reason = notAllowed(path, access != Access::Read))
        return refusal(SiteError::Kind::Environment, path, *reason);
    std::unique_ptr<SiteLock> lock;
    long runner = 0;
    if (access != Access::Read) {
        auto taken = SiteLock::take(path);
        if (taken)
            lock = std::move(taken).value();
        else if (access == Access::Write || taken.error().kind != SiteError::Kind::Locked)
            return taken.error();
        else
            runner = SiteLock::holder(path);
    }
    try {
        auto database = std::make_unique<SiteDatabase>(path, access);
        const auto version = readVersion(path, database->sql(), schema);
        if (!version) return version.error();
        const bool older = version.value() < schema.version;
        if (older && !lock) {
            database.reset();
            if (auto upgraded = open(path, Access::Write, schema); !upgraded) return upgraded;
            return open(path, access, schema);
        }
        bool checked = false;
        if (access != Access::Read) database->prepareToWrite();
        if (lock) {
            checked = !database->isClean();
            const std::string found = checked ? database->firstDamage() : std::string();
            if (!found.empty()) return damaged(path, found);
            if (older && !bringUpToDate(database->sql(), schema))
                return damaged(path, "no version of vigil wrote tables of its format " +
                                         std::to_string(version.value()));
        }
        return std::unique_ptr<SiteFile>(
            new SiteFile(path, access, std::move(lock), std::move(database), checked, runner));
    } catch (const SQLite::Exception& failure) {
        return asError(path, failure);
    }
}

SiteFile::SiteFile(std::string path, Access access, std::unique_ptr<SiteLock> lock,
                   std::unique_ptr<SiteDatabase> database, bool wasChecked, long runner)
    : m_path(std::move(path)),
      m_access(access),
      m_wasChecked(wasChecked),
      m_runner(runner),
      m_lock(std::move(lock)),
      m_database(std::move(database)) {}

SiteFile::~SiteFile() {
    if (!m_lock) return;
    try {
        m_database->markClean();
    } catch (const SQLite::Exception&) {
        // Without the mark the next one to write checks the file, as it should after such an end.
    }
}

}  // namespace vigil
