#pragma once

#include <QWidget>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "conditions/ConditionPredicate.hpp"
#include "host/desktop/ColumnScan.hpp"

namespace vigil {

/// The readings that a condition names over time, with its thresholds, where it held, when it would have
/// fired, when it did, and how long it then waits. A threshold is dragged with the mouse, or with the arrow
/// keys where it has the focus. Main thread.
class Chart : public QWidget {
  public:
    explicit Chart(QWidget* parent = nullptr);

    /// Absent: no condition. The rule is the monitor's.
    void setCondition(std::shared_ptr<ConditionPredicate> condition, ScanRule rule);
    /// Shared with whoever fills them; `columnsChanged` tells of new rows.
    void setColumns(std::shared_ptr<const Columns> columns);
    void columnsChanged();
    /// What is shown: so many seconds before `now`.
    void setSpan(double seconds, Date now);
    /// When the monitor did fire, in seconds since 2001.
    void setFired(std::vector<double> fires);

    /// Of what is shown.
    const ScanResult& result() const { return m_result; }
    /// Told after every scan.
    std::function<void()> onScanned;
    /// A comparison, counted in the condition's order, was given another number.
    std::function<void(std::size_t comparison, double value)> onThreshold;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {240, sizeHint().height()}; }

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    struct Threshold {
        std::size_t comparison = 0;
        std::size_t panel = 0;
        double value = 0;
        ComparisonOperator op = ComparisonOperator::Less;
    };
    struct Panel {
        std::string key;
        double low = 0, high = 1;
    };

    void collect();
    void measure();
    void rescan();
    std::shared_ptr<ConditionPredicate> moved() const;
    QRectF panelBox(std::size_t panel) const;
    double xOf(double time) const;
    double yOf(const Panel& panel, const QRectF& box, double value) const;
    std::optional<std::size_t> thresholdAt(const QPointF& place) const;
    void moveThreshold(std::size_t threshold, double value);
    void release();

    void paintHeld(QPainter& painter) const;
    void paintPanel(QPainter& painter, std::size_t panel) const;
    void paintLine(QPainter& painter, const Columns::Column& column, const Panel& panel,
                   const QRectF& box) const;
    void paintThresholds(QPainter& painter, std::size_t panel) const;
    void paintStrip(QPainter& painter) const;
    void paintTimes(QPainter& painter) const;

    std::shared_ptr<ConditionPredicate> m_condition;
    ScanRule m_rule;
    std::shared_ptr<const Columns> m_columns = std::make_shared<Columns>();
    std::vector<Panel> m_panels;
    std::vector<Threshold> m_thresholds;
    std::vector<double> m_fired;
    ScanResult m_result;
    double m_span = 3600, m_now = 0;
    std::optional<std::size_t> m_dragged, m_focused;
    bool m_moved = false;
};

/// A round step of which about `wanted` fit into the range.
double niceStep(double range, int wanted);

}  // namespace vigil
