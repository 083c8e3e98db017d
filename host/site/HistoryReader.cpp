#include "host/site/HistoryReader.hpp"

#include <filesystem>
#include <utility>

#include "host/site/FileAccess.hpp"
#include "host/site/HistoryFile.hpp"
#include "host/site/HistoryReader_File.hpp"
#include "host/site/HistoryReader_Source.hpp"

namespace vigil {
namespace {

namespace fs = std::filesystem;

constexpr double kBeyondAllTimes = 1e300;

std::optional<Date> dateOf(const SQLite::Column& column) {
    if (column.isNull()) return std::nullopt;
    return Date(column.getDouble());
}

}  // namespace

void bindRange(SQLite::Statement& statement, int index, const HistoryRange& range) {
    statement.bind(index, range.since ? range.since->secondsSinceReference() : -kBeyondAllTimes);
    statement.bind(index + 1, range.until ? range.until->secondsSinceReference() : kBeyondAllTimes);
}

HistoryReader::File::File(std::string where)
    : path(std::move(where)), database(openHistoryForReading(path)) {}

HistoryReader::HistoryReader(std::unique_ptr<File> file) : m_file(std::move(file)) {}

HistoryReader::~HistoryReader() = default;

Result<std::unique_ptr<HistoryReader>> HistoryReader::open(const std::string& siteFile) {
    const std::string path = historyFileOf(siteFile);
    std::error_code failed;
    if (const auto obstacle = accessObstacle(path)) return Error{"cannot read the history: " + *obstacle};
    if (!fs::exists(path, failed)) return Error{"there is no history " + path + "; \"vigil run\" keeps one"};
    try {
        auto file = std::make_unique<File>(path);
        if (!isHistoryOf(*file->database, siteIdentity(siteFile)))
            return Error{"the history " + path +
                         " belongs to another site; \"vigil run\" sets it aside and begins a new one"};
        return std::unique_ptr<HistoryReader>(new HistoryReader(std::move(file)));
    } catch (const SQLite::Exception& what) {
        return Error{"cannot read the history " + path + ": " + what.what()};
    }
}

Result<std::vector<StoredStation>> HistoryReader::stations() {
    return m_file->answer<std::vector<StoredStation>>([this] {
        SQLite::Statement ask(*m_file->database,
                              "SELECT s.id, s.name, count(n.id), min(n.started), max(n.started), "
                              "coalesce(sum(length(n.readings)), 0) FROM stations AS s "
                              "LEFT JOIN notifications AS n ON n.station = s.id GROUP BY s.id ORDER BY s.id");
        std::vector<StoredStation> all;
        while (ask.executeStep())
            all.push_back({ask.getColumn(0).getInt64(), ask.getColumn(1).getString(),
                           static_cast<std::uint64_t>(ask.getColumn(2).getInt64()), dateOf(ask.getColumn(3)),
                           dateOf(ask.getColumn(4)),
                           static_cast<std::uint64_t>(ask.getColumn(5).getInt64())});
        return all;
    });
}

Result<std::vector<StoredPlugIn>> HistoryReader::plugIns() {
    return m_file->answer<std::vector<StoredPlugIn>>([this] {
        SQLite::Statement ask(*m_file->database, "SELECT id, station, title FROM plugIns ORDER BY id");
        std::vector<StoredPlugIn> all;
        while (ask.executeStep())
            all.push_back(
                {ask.getColumn(0).getInt64(), ask.getColumn(1).getInt64(), ask.getColumn(2).getString()});
        return all;
    });
}

Result<std::unique_ptr<HistorySource>> HistoryReader::source(RecordId station, HistoryRange range) {
    return m_file->answer<std::unique_ptr<HistorySource>>([&] {
        return std::unique_ptr<HistorySource>(std::make_unique<StoredSource>(m_file->path, station, range));
    });
}

Result<std::unique_ptr<HistorySource>> HistoryReader::sourceOf(RecordId station, HistoryRange range,
                                                               std::vector<std::string> keys) {
    return m_file->answer<std::unique_ptr<HistorySource>>([&] {
        return std::unique_ptr<HistorySource>(
            std::make_unique<StoredSource>(m_file->path, station, range, std::move(keys)));
    });
}

Result<std::optional<StoredNotification>> HistoryReader::latest(RecordId station, std::optional<Date> at) {
    try {
        return StoredSource(m_file->path, station, at).next();
    } catch (const SQLite::Exception& what) {
        return Error{"cannot read the history " + m_file->path + ": " + what.what()};
    }
}

std::uint64_t HistoryReader::bytes() const {
    std::uint64_t sum = 0;
    for (const char* suffix : {"", "-wal"}) {
        std::error_code failed;
        const auto size = fs::file_size(m_file->path + suffix, failed);
        if (!failed) sum += size;
    }
    return sum;
}

const std::string& HistoryReader::file() const {
    return m_file->path;
}

}  // namespace vigil
