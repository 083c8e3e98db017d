#pragma once

#include <QComboBox>
#include <QFrame>
#include <QLabel>
#include <memory>
#include <string>

#include "host/desktop/Background.hpp"
#include "host/desktop/Chart.hpp"
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
    struct Block;
    double span() const;
    double shownSpan() const;
    void load(double from);
    void take(const Block& block);
    void tell();

    const std::string m_siteFile;
    const RecordId m_station, m_monitor;
    Chart* m_chart;
    QComboBox* m_spans;
    QLabel* m_words;
    std::shared_ptr<Columns> m_columns = std::make_shared<Columns>();
    std::vector<std::string> m_keys;
    double m_from = 0;   // what the columns reach back to, in seconds since 2001
    double m_asked = 0;  // when the history was last asked
    Date m_now;
    bool m_loading = false;
    std::uint64_t m_turn = 0;  // of the columns; a block of another one is dropped
    Background m_background;   // last: its thread uses the others
};

}  // namespace vigil
