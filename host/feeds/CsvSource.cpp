#include <unordered_set>
#include <utility>

#include "host/feeds/CsvColumns.hpp"
#include "host/feeds/CsvRows.hpp"
#include "host/feeds/OpenRecorded.hpp"
#include "host/feeds/OpenRecorded_Bytes.hpp"
#include "host/feeds/OrderWindow.hpp"
#include "host/feeds/TimeForms.hpp"
#include "host/readings/KeyNames.hpp"
#include "platform/Files.hpp"

namespace vigil {
namespace {

class CsvSource final : public RecordedSource {
  public:
    CsvSource(std::unique_ptr<CsvRows> rows, CsvColumns columns, CsvOptions options, ProblemTeller tell)
        : m_rows(std::move(rows)),
          m_columns(std::move(columns)),
          m_options(std::move(options)),
          m_tell(std::move(tell)),
          m_window(m_options.orderWindow, m_tell) {}

    Result<std::optional<RecordedNotification>> next() override {
        for (;;) {
            if (auto ready = m_window.take()) return ready;
            if (m_ended) return std::optional<RecordedNotification>();
            if (m_rows->next(m_row)) {
                takeRow();
                continue;
            }
            m_ended = true;
            if (m_rows->failure()) return *m_rows->failure();
            m_window.finish();
        }
    }

  private:
    void takeRow() {
        if (!hasRightSize()) return;
        const auto station = stationOfRow();
        if (!station) return;
        const std::string_view cell = m_row.cell(m_columns.timeColumn());
        const auto time = recordedTime(cell);
        if (!time) return tell(repairedUtf8(time.error().message) + "; the row is left out");
        m_window.add({*station, time.value(), m_columns.readings(m_row, time.value(), m_tell), m_row.line()});
    }

    /// Cells beyond the header's columns are no trouble as long as they are empty.
    bool hasRightSize() {
        std::size_t size = m_row.size();
        while (size > m_columns.size() && m_row.cell(size - 1).empty())
            --size;
        if (size == m_columns.size()) return true;
        tell("the row has " + std::to_string(size) + " cells where the header has " +
             std::to_string(m_columns.size()) + "; left out");
        return false;
    }

    /// Nothing when the row is not wanted.
    std::optional<std::string> stationOfRow() {
        std::string station;
        if (m_columns.stationColumn()) station = m_row.cell(*m_columns.stationColumn());
        if (m_options.station && station != *m_options.station) return std::nullopt;
        if (m_stations.contains(station)) return station;
        if (!isValidUtf8(station)) {
            tell("the station's name is not UTF-8; the row is left out");
            return std::nullopt;
        }
        if (m_stations.size() == kMostStations) {
            tell("more than " + std::to_string(kMostStations) + " stations; the row is left out");
            return std::nullopt;
        }
        m_stations.insert(station);
        return station;
    }

    void tell(std::string message) {
        if (m_tell) m_tell({m_row.line(), std::move(message)});
    }

    std::unique_ptr<CsvRows> m_rows;
    CsvColumns m_columns;
    CsvOptions m_options;
    ProblemTeller m_tell;
    OrderWindow m_window;
    CsvRow m_row;
    std::unordered_set<std::string> m_stations;
    bool m_ended = false;
};

}  // namespace

Opened openCsv(std::unique_ptr<Bytes> bytes, const std::string& name, CsvOptions options,
               ProblemTeller tell) {
    using Kind = OpenError::Kind;
    auto rows = std::make_unique<CsvRows>(std::move(bytes), options.separator, tell);
    CsvRow header;
    if (!rows->next(header)) {
        if (rows->failure()) return OpenError{Kind::CannotRead, rows->failure()->message};
        return OpenError{Kind::BadInput, name + ": is empty; expected a row with the names of the columns"};
    }
    const bool wide = header.cell(0).starts_with("\xFF\xFE") || header.cell(0).starts_with("\xFE\xFF");
    if (wide) return OpenError{Kind::BadInput, name + ": is UTF-16; expected UTF-8"};
    auto columns = CsvColumns::fromHeader(header, options, tell);
    if (!columns)
        return OpenError{Kind::BadInput,
                         name + ":" + std::to_string(header.line()) + ": " + columns.error().message};
    return std::unique_ptr<RecordedSource>(std::make_unique<CsvSource>(
        std::move(rows), std::move(columns).value(), std::move(options), std::move(tell)));
}

}  // namespace vigil
