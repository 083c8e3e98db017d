#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <sstream>
#include <utility>

#include "host/site/MonitorsFile.hpp"
#include "host/site/SiteCheck.hpp"
#include "host/site/SiteCopy.hpp"
#include "host/site/SiteCopy_Database.hpp"
#include "host/site/SiteDatabase.hpp"
#include "host/site/SiteFiles.hpp"
#include "host/site/SiteLines.hpp"
#include "host/site/SiteLock.hpp"
#include "host/site/SiteSql.hpp"

namespace vigil {
namespace {

namespace fs = std::filesystem;

using Form = Imported::Form;

/// What every database of the library begins with.
constexpr std::string_view kDatabaseMark("SQLite format 3\0", 16);
/// A file of monitors is read whole; one monitor takes a few kilobytes.
constexpr std::size_t kMostMonitorsBytes = std::size_t{256} << 20;

Result<Form> formOf(const std::string& from) {
    std::ifstream file(from, std::ios::binary);
    std::string head(kDatabaseMark.size(), '\0');
    if (!file.read(head.data(), static_cast<std::streamsize>(head.size())) && !file.eof())
        return Error{from + ": could not be read"};
    if (head == kDatabaseMark) return Form::Database;
    file.clear();
    file.seekg(0);
    std::getline(file, head);
    return beginsAsSiteLines(head) ? Form::Lines : Form::Monitors;
}

Error of(const std::string& from, const std::string& what) {
    return {from + ": " + what};
}

/// An error of the fresh file is one of the file that it was made from.
std::string withoutPath(const std::string& message, const std::string& path) {
    return message.starts_with(path + ": ") ? message.substr(path.size() + 2) : message;
}

Result<Done> fillFromLines(const std::string& from, const std::string& fresh) {
    std::ifstream file(from, std::ios::binary);
    return asked<Done>(fresh, [&]() -> Result<Done> {
        SQLite::Database database(fresh, SQLite::OPEN_READWRITE);
        createTables(database, SiteSchema::current());
        database.exec("PRAGMA foreign_keys = ON");
        auto read = readSiteLines(file, database);
        if (read && file.bad()) return of(from, "could not be read to its end");
        return read ? std::move(read) : of(from, read.error().message);
    });
}

Result<std::string> wholeText(const std::string& from) {
    std::error_code failed;
    if (fs::file_size(from, failed) > kMostMonitorsBytes || failed)
        return of(from, failed ? failed.message() : "is too large for a file of monitors");
    std::ifstream file(from, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    if (!file) return of(from, "could not be read");
    return text.str();
}

Result<Done> addMonitors(const std::string& from, SiteFile& site, Imported& imported) {
    const auto text = wholeText(from);
    if (!text) return text.error();
    const auto monitors = readMonitors(text.value());
    if (!monitors) return of(from, monitors.error().message);
    std::map<std::string, RecordId> stations;
    const auto known = site.stations();
    if (!known) return known.error();
    for (const StationRecord& station : known.value())
        stations[station.name] = station.id;
    for (const FiledMonitor& monitor : monitors.value()) {
        if (!stations.contains(monitor.station)) {
            const auto added = site.addStation({.name = monitor.station});
            if (!added) return of(from, added.error().message);
            stations[monitor.station] = added.value();
            ++imported.stations;
        }
        const auto added = site.addPlugIn({.station = stations[monitor.station],
                                           .className = monitor.className,
                                           .title = monitor.title,
                                           .archive = monitor.archive});
        if (!added) return of(from, added.error().message);
        ++imported.plugIns;
    }
    return Done{};
}

/// What `from` says, as a site of its own in the place of `fresh`.
Result<Done> fill(const std::string& from, const std::string& site, const FreshFile& fresh,
                  Imported& imported, const SiteProgress& progress) {
    if (imported.form == Form::Lines) return fillFromLines(from, fresh.path());
    if (imported.form == Form::Database) return copyDatabase(from, fresh.path(), progress);
    std::error_code unknown;
    if (fs::exists(site, unknown)) return copyDatabase(site, fresh.path(), progress);
    return asked<Done>(fresh.path(), [&] {
        SQLite::Database database(fresh.path(), SQLite::OPEN_READWRITE);
        createTables(database, SiteSchema::current());
        return Done{};
    });
}

Result<Done> checkFresh(const std::string& from, const FreshFile& fresh, Imported& imported,
                        const SiteProgress& progress) {
    {
        const auto opened = SiteFile::open(fresh.path(), Access::Write);
        if (!opened) return of(from, withoutPath(opened.error().message, fresh.path()));
        if (imported.form == Form::Monitors) {
            if (auto added = addMonitors(from, *opened.value(), imported); !added) return added;
        } else {
            const auto summary = opened.value()->summary();
            if (!summary) return of(from, withoutPath(summary.error().message, fresh.path()));
            imported.stations = summary.value().stations;
            imported.plugIns = summary.value().plugIns;
        }
    }
    const auto findings = checkSite(fresh.path(), progress);
    if (!findings) return of(from, withoutPath(findings.error().message, fresh.path()));
    if (!findings.value().empty()) return of(from, "is damaged: " + findings.value().front());
    return Done{};
}

/// Takes the old one's log into it, so that nothing of it lies beside the new one.
void settle(const std::string& site) {
    try {
        SiteDatabase(site, Access::Write).sql().exec("PRAGMA wal_checkpoint(TRUNCATE)");
    } catch (const SQLite::Exception&) {
        // It is replaced whatever it was, also because it cannot be read any more.
    }
    for (const char* part : {"-wal", "-shm", "-journal"})
        fs::remove(site + part);
}

}  // namespace

Result<Imported> importSite(const std::string& from, const std::string& site, bool replace,
                            const SiteProgress& progress) {
    const auto form = formOf(from);
    if (!form) return form.error();
    Imported imported = {.form = form.value()};
    const bool adds = imported.form == Form::Monitors;
    std::error_code unknown;
    const bool there = fs::exists(site, unknown);
    if (there && !adds && !replace) return Error{site + ": " + std::string(kIsThere)};
    if (auto made = makeFolderOf(site); !made) return made.error();
    const auto lock = SiteLock::take(site);
    if (!lock) return Error{lock.error().message};
    const FreshFile fresh(site);
    if (auto made = fresh.make(); !made) return made.error();
    if (auto filled = fill(from, site, fresh, imported, progress); !filled) return filled.error();
    if (auto checked = checkFresh(from, fresh, imported, progress); !checked) return checked.error();
    if (there) settle(site);
    if (auto placed = fresh.takePlace(/*ofAnother=*/there); !placed) return placed.error();
    return imported;
}

}  // namespace vigil
