#include "host/site/SiteCheck.hpp"

#include <algorithm>
#include <utility>

#include <nlohmann/json.hpp>

#include "host/site/SiteDatabase.hpp"
#include "host/site/SiteRows.hpp"
#include "host/site/SiteSql.hpp"

namespace vigil {
namespace {

using Findings = std::vector<std::string>;

/// Runs one look at the file; what the library cannot even read is a finding as well.
template <class Look>
void look(Findings& findings, Look what) {
    try {
        what();
    } catch (const SQLite::Exception& failure) {
        findings.push_back(std::string("could not be read on: ") + failure.what());
    }
}

void checkPages(SQLite::Database& database, Findings& findings) {
    SQLite::Statement check(database, "PRAGMA integrity_check(" + std::to_string(kMostPageFindings) + ")");
    while (check.executeStep()) {
        std::string found = check.getColumn(0).getString();
        if (found != "ok") findings.push_back("pages: " + std::move(found));
    }
}

void checkOwners(SQLite::Database& database, Findings& findings) {
    SQLite::Statement check(database, "PRAGMA foreign_key_check");
    while (check.executeStep())
        findings.push_back("row " + check.getColumn(1).getString() + " of " + check.getColumn(0).getString() +
                           " belongs to one of " + check.getColumn(2).getString() + " that is not there");
}

void checkStations(SQLite::Database& database, Findings& findings) {
    SQLite::Statement all(database, std::string("SELECT ") + kStationColumns + " FROM stations ORDER BY id");
    while (all.executeStep())
        if (const auto station = readStation(all); !station) findings.push_back(station.error().message);
}

bool isArchive(const std::string& text) {
    return jsonDepth(text) <= kMostJsonDepth && nlohmann::json::accept(text) &&
           nlohmann::json::parse(text).is_object();
}

void checkArchives(SQLite::Database& database, Findings& findings, const SiteProgress& progress) {
    const auto all = static_cast<std::size_t>(database.execAndGet("SELECT count(*) FROM plugIns").getInt64());
    SQLite::Statement plugIns(database,
                              std::string("SELECT ") + kPlugInColumns + " FROM plugIns ORDER BY id");
    for (std::size_t done = 0; plugIns.executeStep(); ++done) {
        tellProgress(progress, "archives", done, all);
        const PlugInRecord plugIn = readPlugIn(plugIns);
        if (!isArchive(plugIn.archive))
            findings.push_back("the monitor \"" + plugIn.title + "\": no archive");
    }
}

}  // namespace

std::size_t jsonDepth(std::string_view text) {
    std::size_t depth = 0, most = 0;
    bool inText = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (inText) {
            if (c == '\\') ++i;
            if (c == '"') inText = false;
        } else if (c == '"') {
            inText = true;
        } else if (c == '[' || c == '{') {
            most = std::max(most, ++depth);
        } else if ((c == ']' || c == '}') && depth > 0) {
            --depth;
        }
    }
    return most;
}

Result<std::vector<std::string>, SiteError> checkSite(const std::string& path, const SiteProgress& progress) {
    if (auto opened = SiteFile::open(path, Access::Read); !opened) {
        if (opened.error().kind != SiteError::Kind::Damaged) return opened.error();
        return Findings{path + ": the site is damaged (" + opened.error().found +
                        "); `vigil site import COPY --force` brings a copy back"};
    }
    Findings findings;
    look(findings, [&] {
        SiteDatabase database(path, Access::Read);
        tellProgress(progress, "pages", 0, 0);
        look(findings, [&] { checkPages(database.sql(), findings); });
        tellProgress(progress, "rows", 0, 0);
        look(findings, [&] { checkOwners(database.sql(), findings); });
        look(findings, [&] { checkStations(database.sql(), findings); });
        look(findings, [&] { checkArchives(database.sql(), findings, progress); });
    });
    return findings;
}

}  // namespace vigil
