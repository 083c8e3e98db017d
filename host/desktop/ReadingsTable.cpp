#include "host/desktop/ReadingsTable.hpp"

#include <QHeaderView>
#include <QPainter>
#include <QPainterPath>
#include <QStyledItemDelegate>
#include <algorithm>

#include "host/desktop/Theme.hpp"
#include "host/desktop/Words.hpp"

namespace vigil {
namespace {

/// A line of the last hours, as high as the row.
class TrendDelegate : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        QStyledItemDelegate::paint(painter, option, index);
        const auto* points = static_cast<const std::vector<ReadingTrails::Point>*>(
            index.data(ReadingsModel::kPoints).value<void*>());
        if (!points || points->size() < 2) return;
        const auto [least, most] = std::minmax_element(
            points->begin(), points->end(), [](const auto& a, const auto& b) { return a.value < b.value; });
        const QRectF box = QRectF(option.rect).adjusted(8, 6, -8, -6);
        const double from = points->front().when, span = std::max(1e-9, points->back().when - from);
        const double low = least->value, range = most->value - low;
        const auto at = [&](const ReadingTrails::Point& point) {
            const double height = range > 0 ? (point.value - low) / range : 0.5;
            return QPointF(box.left() + box.width() * (point.when - from) / span,
                           box.bottom() - box.height() * height);
        };
        QPainterPath line(at(points->front()));
        for (const auto& point : *points)
            line.lineTo(at(point));
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(QPen(theme().accent, 1.4));
        painter->drawPath(line);
        painter->setBrush(theme().accent);
        painter->setPen(Qt::NoPen);
        painter->drawEllipse(at(points->back()), 2.2, 2.2);
        painter->restore();
    }
};

}  // namespace

void ReadingsModel::show(std::shared_ptr<const Readings> readings, const ReadingTrails* trails, Date now) {
    const bool sameRows = readings->table() == m_readings->table() &&
                          readings->entries().size() == m_readings->entries().size();
    if (!sameRows) beginResetModel();
    m_readings = std::move(readings);
    m_trails = trails;
    m_now = now;
    if (!sameRows) return endResetModel();
    if (rowCount() > 0) Q_EMIT dataChanged(index(0, Now), index(rowCount() - 1, Age));
}

int ReadingsModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_readings->entries().size());
}

int ReadingsModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : Columns;
}

const AgentProperty& ReadingsModel::readingAt(int row) const {
    return m_readings->entries().at(static_cast<std::size_t>(row));
}

std::string ReadingsModel::keyAt(int row) const {
    return readingAt(row).propertyName();
}

QString ReadingsModel::ageAt(int row) const {
    const auto& time = readingAt(row).time();
    return time ? ageText(m_now.secondsSince(*time)) : QString();
}

QVariant ReadingsModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount()) return {};
    const AgentProperty& reading = readingAt(index.row());
    if (role == kPoints && index.column() == Trend && m_trails)
        return QVariant::fromValue(static_cast<void*>(
            const_cast<std::vector<ReadingTrails::Point>*>(&m_trails->of(reading.propertyName()))));
    if (role == Qt::TextAlignmentRole && (index.column() == Now || index.column() == Age))
        return QVariant::fromValue(Qt::Alignment(Qt::AlignRight | Qt::AlignVCenter));
    if (role == Qt::ForegroundRole && index.column() == Age) return theme().muted;
    if (role == Qt::ToolTipRole)
        return qt(reading.propertyName()) + QStringLiteral("\n") + qt(reading.unitStringValueWithUnitShort());
    if (role == Qt::AccessibleTextRole)
        return qt(reading.name()) + QLatin1Char(' ') + qt(reading.unitStringValueWithUnitShort());
    if (role != Qt::DisplayRole) return {};
    switch (index.column()) {
        case Name:
            return reading.name().empty() ? qt(reading.propertyName()) : qt(reading.name());
        case Now:
            if (reading.type() == kDateType) return momentText(Date(reading.value()), m_now);
            return qt(reading.unitStringValueWithUnitShort());
        case Age:
            return ageAt(index.row());
        default:
            return {};
    }
}

QVariant ReadingsModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (role == Qt::TextAlignmentRole && (section == Now || section == Age))
        return QVariant::fromValue(Qt::Alignment(Qt::AlignRight | Qt::AlignVCenter));
    if (role == Qt::TextAlignmentRole)
        return QVariant::fromValue(Qt::Alignment(Qt::AlignLeft | Qt::AlignVCenter));
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    switch (section) {
        case Name:
            return say("Reading");
        case Now:
            return say("Now");
        case Trend:
            return say("Trend");
        default:
            return say("Age");
    }
}

ReadingsTable::ReadingsTable(QWidget* parent) : QTableView(parent) {
    setModel(&m_model);
    setItemDelegateForColumn(ReadingsModel::Trend, new TrendDelegate(this));
    setSelectionBehavior(SelectRows);
    setSelectionMode(SingleSelection);
    setShowGrid(false);
    setWordWrap(false);
    setFrameShape(NoFrame);
    setTabKeyNavigation(false);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 13);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setSectionResizeMode(ReadingsModel::Name, QHeaderView::Stretch);
    horizontalHeader()->setSectionResizeMode(ReadingsModel::Now, QHeaderView::ResizeToContents);
    horizontalHeader()->setSectionResizeMode(ReadingsModel::Trend, QHeaderView::Interactive);
    horizontalHeader()->setSectionResizeMode(ReadingsModel::Age, QHeaderView::ResizeToContents);
    horizontalHeader()->setResizeContentsPrecision(40);
    setColumnWidth(ReadingsModel::Trend, 56);
    setAccessibleName(say("Readings"));
}

void ReadingsTable::paintEvent(QPaintEvent* event) {
    QTableView::paintEvent(event);
    if (m_model.rowCount() > 0) return;
    QPainter painter(viewport());
    painter.setPen(theme().muted);
    constexpr int kEdge = 9;  // where the cells' words begin
    painter.drawText(viewport()->rect().adjusted(kEdge, kEdge, -kEdge, 0),
                     Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap, say("No readings yet"));
}

}  // namespace vigil
