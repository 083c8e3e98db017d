#include "host/desktop/ChartHistory.hpp"

#include <algorithm>
#include <chrono>

#include "host/site/HistoryReader.hpp"

namespace vigil {
namespace {

/// Tells how far a reading is, by the times of what it reads: to count it would take as long.
class Teller {
  public:
    Teller(const ChartQuery& query, const ChartProgress& goesOn) : m_query(query), m_goesOn(goesOn) {}

    /// False where the reading is to end.
    bool read(Date at) {
        if (m_rows == 0) m_first = at;
        if (++m_rows % kRowsALook != 0) return true;
        const auto now = std::chrono::steady_clock::now();
        if (now < m_next) return true;
        m_next = now + std::chrono::milliseconds(m_query.toldEvery);
        const double whole = m_query.now.secondsSince(m_first);
        return m_goesOn(whole > 0 ? std::clamp(at.secondsSince(m_first) / whole, 0.0, 1.0) : 1.0);
    }

  private:
    static constexpr std::uint64_t kRowsALook = 256;

    const ChartQuery& m_query;
    const ChartProgress& m_goesOn;
    Date m_first;
    std::uint64_t m_rows = 0;
    std::chrono::steady_clock::time_point m_next =
        std::chrono::steady_clock::now() + std::chrono::milliseconds(m_query.toldAfter);
};

}  // namespace

ChartRows readChart(const ChartQuery& query, const ChartProgress& goesOn) {
    ChartRows rows{.columns = Columns(query.keys, query.texts)};
    const auto reader = HistoryReader::open(query.siteFile);
    const auto source = reader ? reader.value()->sourceOf(query.station, {.since = query.since}, query.keys)
                               : Result<std::unique_ptr<HistorySource>>(reader.error());
    if (!source) {
        rows.trouble = source.error().message;
        return rows;
    }
    Teller teller(query, goesOn);
    for (auto next = source.value()->next(); !next || next.value(); next = source.value()->next()) {
        if (!next) continue;  // one that cannot be read is left out
        const StoredNotification& one = *next.value();
        if (!teller.read(one.started)) return rows;
        if (query.itself || one.started > query.since) rows.columns.append(one.started, *one.readings);
    }
    if (const auto fires = reader.value()->fires(query.monitor))
        for (const StoredFire& fire : fires.value())
            rows.fires.push_back(fire.started.secondsSinceReference());
    return rows;
}

}  // namespace vigil
