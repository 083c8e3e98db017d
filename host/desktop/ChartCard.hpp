#pragma once

#include <QComboBox>
#include <QFrame>
#include <QLabel>
#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/desktop/Background.hpp"
#include "host/desktop/Chart.hpp"
#include "host/desktop/ChartHistory.hpp"
#include "host/site/SiteRecords.hpp"

namespace vigil {

/// "When would this have fired": a chart over a monitor's stored history, which it reads in the background
/// and keeps up with. Main thread.
class ChartCard : public QFrame {
  public:
    ChartCard(std::string siteFile, RecordId station, RecordId monitor, QWidget* parent);
    ~ChartCard() override;

    void show(std::shared_ptr<ConditionPredicate> condition, ScanRule rule, Date now);
    Chart& chart() { return *m_chart; }

  private:
    /// Which columns there are, or are being read.
    struct Wanted {
        std::vector<std::string> keys, texts;
        bool operator==(const Wanted&) const = default;
    };

    double span() const;
    double shownSpan() const;
    static Wanted wantedBy(const ConditionPredicate* condition);
    void loadAll();
    void load(double from, bool itself);
    void take(std::uint64_t turn, bool all, ChartRows& rows);
    void progress(std::uint64_t turn, double share);
    void tell();

    const std::string m_siteFile;
    const RecordId m_station, m_monitor;
    Chart* m_chart;
    QComboBox* m_spans;
    QLabel* m_words;
    std::shared_ptr<Columns> m_columns = std::make_shared<Columns>();
    Wanted m_wanted;
    double m_from = 0;   // what the columns reach back to, in seconds since 2001
    double m_asked = 0;  // when the history was last asked
    Date m_now;
    bool m_loading = false;
    std::optional<double> m_share;  // of a long reading
    std::uint64_t m_turn = 0;       // of the columns; what was read for another one is dropped
    // The same for the thread that reads.
    std::shared_ptr<std::atomic<std::uint64_t>> m_readTurn = std::make_shared<std::atomic<std::uint64_t>>(0);
    Background m_background;  // last: it waits for what is being read
};

}  // namespace vigil
