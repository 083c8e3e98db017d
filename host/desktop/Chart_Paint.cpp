#include <QDateTime>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

#include "host/desktop/Chart.hpp"
#include "host/desktop/Theme.hpp"
#include "host/desktop/Words.hpp"

// How a chart is drawn.

namespace vigil {
namespace {

constexpr double kTicks[] = {60, 300, 900, 1800, 3600, 7200, 21600, 43200, 86400, 172800, 604800, 2592000};

double timeStep(double span) {
    for (const double step : kTicks)
        if (span / step <= 7) return step;
    return span / 6;
}

QDateTime localTime(double secondsSinceReference) {
    return QDateTime::fromMSecsSinceEpoch(
        static_cast<qint64>(Date(secondsSinceReference).secondsSinceUnix() * 1000));
}

}  // namespace

void Chart::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QFont small = font();
    small.setPointSizeF(font().pointSizeF() * 0.86);
    painter.setFont(small);
    if (m_panels.empty()) {
        painter.setPen(theme().muted);
        painter.drawText(rect(), Qt::AlignCenter,
                         say("The condition compares no numbers, so there is nothing to draw."));
        return;
    }
    paintTimes(painter);
    paintHeld(painter);
    for (std::size_t panel = 0; panel < m_panels.size(); ++panel)
        paintPanel(painter, panel);
    paintStrip(painter);
    if (hasFocus() && !m_focused) {
        painter.setPen(QPen(theme().accent, 1));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 6, 6);
    }
}

void Chart::paintHeld(QPainter& painter) const {
    const QRectF first = panelBox(0), last = panelBox(m_panels.size() - 1);
    painter.setPen(Qt::NoPen);
    QColor shade = theme().warn;
    shade.setAlphaF(theme().dark ? 0.22f : 0.14f);
    painter.setBrush(shade);
    double painted = first.left();
    for (const Stretch& stretch : m_result.held) {
        if (stretch.to < m_now - m_span) continue;
        const double from = std::max(painted, xOf(stretch.from));
        const double to = std::min(first.right(), std::max(xOf(stretch.to), xOf(stretch.from) + 2));
        if (to <= from) continue;
        painter.drawRect(QRectF(from, first.top(), to - from, last.bottom() - first.top()));
        painted = to;  // stretches of less than two pixels are drawn once
    }
}

void Chart::paintPanel(QPainter& painter, std::size_t index) const {
    const Panel& panel = m_panels[index];
    const QRectF box = panelBox(index);
    const auto* column = m_columns->column(panel.key);
    painter.setPen(QPen(theme().border, 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(box);
    const double step = niceStep(panel.high - panel.low, 4);
    for (double value = std::ceil(panel.low / step) * step; value <= panel.high; value += step) {
        const double y = yOf(panel, box, value);
        painter.setPen(QPen(theme().border, 0.6));
        painter.drawLine(QPointF(box.left(), y), QPointF(box.right(), y));
        painter.setPen(theme().muted);
        painter.drawText(QRectF(0, y - 10, box.left() - 6, 20), Qt::AlignRight | Qt::AlignVCenter,
                         numberWords(value, 4));
    }
    painter.save();
    painter.setClipRect(box);
    if (column) {
        painter.setPen(QPen(theme().series[index % std::size(theme().series)], 1.6));
        paintLine(painter, *column, panel, box);
    }
    painter.restore();
    paintThresholds(painter, index);
    const QString unit =
        column && !column->unit.empty() ? QStringLiteral(" (%1)").arg(qt(column->unit)) : QString();
    const QString name = qt(column ? column->name : panel.key) + unit;
    painter.setPen(theme().series[index % std::size(theme().series)]);
    painter.drawText(QRectF(box.left(), box.top() - 19, box.width(), 18), Qt::AlignVCenter, name);
}

// Of the rows that share a pixel the lowest and the highest value are drawn. Strokes with soft edges cost by
// how often they cross, so where each pixel holds many rows the lines are plain ones.
void Chart::paintLine(QPainter& painter, const Columns::Column& column, const Panel& panel,
                      const QRectF& box) const {
    const auto& times = m_columns->times();
    // Further apart than this the line breaks: nobody knows what was in between.
    const double gap = std::max(m_span / 60, 30.0);
    auto row = static_cast<std::size_t>(std::lower_bound(times.begin(), times.end(), m_now - m_span) -
                                        times.begin());
    if (row > 0) --row;
    const bool dense = static_cast<double>(times.size() - row) > 2 * box.width();
    const double pixel = m_span / box.width();
    QVector<QLineF> lines;
    double before = -INFINITY;
    QPointF last;
    while (row < times.size()) {
        const double begin = times[row];
        double low = INFINITY, high = -INFINITY, value = NAN;
        for (const double end = begin + pixel;
             row < times.size() && (times[row] < end || times[row] == begin); ++row) {
            const double one = column.unitValue[row];
            if (!std::isfinite(one)) continue;
            low = std::min(low, one);
            high = std::max(high, one);
            value = one;
        }
        if (!(low <= high)) continue;
        const double x = xOf(begin);
        const QPointF next(x, yOf(panel, box, value));
        if (begin - before <= gap) lines << QLineF(last, QPointF(x, yOf(panel, box, (low + high) / 2)));
        if (high > low) lines << QLineF(x, yOf(panel, box, low), x, yOf(panel, box, high));
        last = next;
        before = times[row - 1];
    }
    painter.setRenderHint(QPainter::Antialiasing, !dense);
    QPen pen = painter.pen();
    pen.setWidthF(dense ? 1 : 1.6);
    pen.setCapStyle(Qt::RoundCap);
    painter.setPen(pen);
    painter.drawLines(lines);
    painter.setRenderHint(QPainter::Antialiasing);
}

void Chart::paintThresholds(QPainter& painter, std::size_t index) const {
    const QRectF box = panelBox(index);
    for (std::size_t i = 0; i < m_thresholds.size(); ++i) {
        const Threshold& threshold = m_thresholds[i];
        if (threshold.panel != index) continue;
        const double y = std::clamp(yOf(m_panels[index], box, threshold.value), box.top(), box.bottom());
        const bool held = m_dragged == i || (m_focused == i && hasFocus());
        const QColor colour = held ? theme().accent : theme().bad;
        painter.setPen(QPen(colour, held ? 2 : 1.2, Qt::DashLine));
        painter.drawLine(QPointF(box.left(), y), QPointF(box.right(), y));
        const QString words =
            qt(operatorText(threshold.op)) + QLatin1Char(' ') + numberWords(threshold.value, 4);
        const QRectF tag(box.right() + 4, y - 10,
                         std::max(44.0, painter.fontMetrics().horizontalAdvance(words) + 12.0), 20);
        painter.setPen(Qt::NoPen);
        painter.setBrush(held ? theme().accentSoft : theme().badSoft);
        painter.drawRoundedRect(tag, 5, 5);
        painter.setPen(colour);
        painter.drawText(tag, Qt::AlignCenter, words);
    }
}

// Below the readings: waits as bars, fires as marks; filled where the monitor did fire.
void Chart::paintStrip(QPainter& painter) const {
    const QRectF last = panelBox(m_panels.size() - 1);
    const QRectF strip(last.left(), last.bottom() + 5, last.width(), 17);
    painter.save();
    painter.setClipRect(strip.adjusted(-8, -2, 8, 2));
    const double wait = waitSeconds(m_rule.retriggerMinutes);
    double painted = strip.left();
    for (const double fire : m_result.fires) {
        if (fire + wait < m_now - m_span) continue;
        const double from = std::max(painted, xOf(fire)), to = std::min(strip.right(), xOf(fire + wait));
        if (to <= from) continue;
        painter.fillRect(QRectF(from, strip.top() + 6, to - from, 5), theme().accentSoft);
        painted = to;
    }
    const auto mark = [&](double fire, bool filled) {
        const double x = xOf(fire);
        if (x < strip.left() - 1) return;
        QPainterPath path(QPointF(x, strip.top()));
        path.lineTo(x + 5.5, strip.bottom() - 5);
        path.lineTo(x - 5.5, strip.bottom() - 5);
        path.closeSubpath();
        painter.setPen(QPen(theme().accent, 1.4));
        painter.setBrush(filled ? QBrush(theme().accent) : QBrush(theme().card));
        painter.drawPath(path);
    };
    double drawn = -INFINITY;
    for (const double fire : m_result.fires)
        if (xOf(fire) - drawn >= 2) mark(fire, /*filled=*/false), drawn = xOf(fire);
    for (const double fire : m_fired)
        mark(fire, /*filled=*/true);
    painter.restore();
}

void Chart::paintTimes(QPainter& painter) const {
    const QRectF first = panelBox(0), last = panelBox(m_panels.size() - 1);
    const double step = timeStep(m_span);
    // Full hours of the user's clock.
    const double shift = localTime(m_now).offsetFromUtc();
    const bool days = step >= 86400;
    for (double tick = std::ceil((m_now - m_span + shift) / step) * step - shift; tick <= m_now;
         tick += step) {
        const double x = xOf(tick);
        painter.setPen(QPen(theme().border, 0.6));
        painter.drawLine(QPointF(x, first.top()), QPointF(x, last.bottom()));
        painter.setPen(theme().muted);
        const QString words =
            localTime(tick).toString(days ? QStringLiteral("d MMM") : QStringLiteral("HH:mm"));
        painter.drawText(QRectF(x - 40, last.bottom() + 22, 80, 20), Qt::AlignHCenter | Qt::AlignVCenter,
                         words);
    }
}

}  // namespace vigil
