#include "host/site/HistoryReader.hpp"
#include "host/site/HistoryReader_File.hpp"

// What a history holds beside the readings.

namespace vigil {
namespace {

Date dateOf(const SQLite::Column& column) {
    return Date(column.getDouble());
}

}  // namespace

Result<std::vector<StoredFire>> HistoryReader::fires(RecordId plugIn, HistoryRange range) {
    return m_file->answer<std::vector<StoredFire>>([&] {
        SQLite::Statement ask(*m_file->database,
                              "SELECT station, started, actionsBegan, actionsEnded FROM fires "
                              "WHERE plugIn = ? AND started >= ? AND started < ? ORDER BY id");
        ask.bind(1, plugIn);
        bindRange(ask, 2, range);
        std::vector<StoredFire> all;
        while (ask.executeStep())
            all.push_back({ask.getColumn(0).getInt64(), plugIn, dateOf(ask.getColumn(1)),
                           dateOf(ask.getColumn(2)), dateOf(ask.getColumn(3))});
        return all;
    });
}

Result<std::vector<StoredWatch>> HistoryReader::watches(RecordId plugIn, HistoryRange range) {
    return m_file->answer<std::vector<StoredWatch>>([&] {
        SQLite::Statement ask(*m_file->database,
                              "SELECT began, beganBy, ended, endedBy FROM watches WHERE plugIn = ? "
                              "AND (ended IS NULL OR ended > ?) AND began < ? ORDER BY id");
        ask.bind(1, plugIn);
        bindRange(ask, 2, range);
        std::vector<StoredWatch> all;
        while (ask.executeStep()) {
            StoredWatch& watch = all.emplace_back();
            watch.plugIn = plugIn;
            watch.from = dateOf(ask.getColumn(0));
            watch.began = watchReasonNamed(ask.getColumn(1).getString());
            if (ask.getColumn(2).isNull()) continue;
            watch.to = dateOf(ask.getColumn(2));
            watch.ended = watchReasonNamed(ask.getColumn(3).getString());
        }
        return all;
    });
}

Result<std::vector<StoredArchive>> HistoryReader::archives(RecordId plugIn, HistoryRange range) {
    return m_file->answer<std::vector<StoredArchive>>([&] {
        SQLite::Statement ask(*m_file->database,
                              "SELECT since, reason, archive FROM archives "
                              "WHERE plugIn = ? AND since >= ? AND since < ? ORDER BY id");
        ask.bind(1, plugIn);
        bindRange(ask, 2, range);
        std::vector<StoredArchive> all;
        while (ask.executeStep())
            all.push_back({plugIn, dateOf(ask.getColumn(0)), archiveReasonNamed(ask.getColumn(1).getString()),
                           ask.getColumn(2).getString()});
        return all;
    });
}

Result<std::vector<StoredLoss>> HistoryReader::losses(RecordId station, HistoryRange range) {
    return m_file->answer<std::vector<StoredLoss>>([&] {
        SQLite::Statement ask(*m_file->database,
                              "SELECT began, ended, count FROM losses WHERE station = ? "
                              "AND ended >= ? AND began < ? ORDER BY id");
        ask.bind(1, station);
        bindRange(ask, 2, range);
        std::vector<StoredLoss> all;
        while (ask.executeStep())
            all.push_back({station, dateOf(ask.getColumn(0)), dateOf(ask.getColumn(1)),
                           static_cast<std::uint64_t>(ask.getColumn(2).getInt64())});
        return all;
    });
}

}  // namespace vigil
