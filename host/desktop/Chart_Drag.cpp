#include <QKeyEvent>
#include <QMouseEvent>
#include <algorithm>
#include <cmath>

#include "host/desktop/Chart.hpp"

// Moving a threshold, and seeing at once when it would have fired.

namespace vigil {
namespace {

constexpr double kReach = 7;  // a hand meets a line within so many pixels

}  // namespace

std::optional<std::size_t> Chart::thresholdAt(const QPointF& place) const {
    std::optional<std::size_t> nearest;
    double distance = kReach;
    for (std::size_t i = 0; i < m_thresholds.size(); ++i) {
        const Panel& panel = m_panels[m_thresholds[i].panel];
        const QRectF box = panelBox(m_thresholds[i].panel);
        if (!box.adjusted(0, -kReach, width(), kReach).contains(place)) continue;
        const double away = std::abs(yOf(panel, box, m_thresholds[i].value) - place.y());
        if (away > distance) continue;
        distance = away;
        nearest = i;
    }
    return nearest;
}

void Chart::mousePressEvent(QMouseEvent* event) {
    m_dragged = event->button() == Qt::LeftButton ? thresholdAt(event->position()) : std::nullopt;
    m_focused = m_dragged;
    m_moved = false;
    update();
}

void Chart::mouseMoveEvent(QMouseEvent* event) {
    if (!m_dragged) {
        setCursor(thresholdAt(event->position()) ? Qt::SizeVerCursor : Qt::ArrowCursor);
        return;
    }
    const Panel& panel = m_panels[m_thresholds[*m_dragged].panel];
    const QRectF box = panelBox(m_thresholds[*m_dragged].panel);
    const double part = std::clamp((box.bottom() - event->position().y()) / box.height(), 0.0, 1.0);
    // As fine as a pixel tells.
    const double step = niceStep(panel.high - panel.low, static_cast<int>(box.height()));
    const double value = std::round((panel.low + part * (panel.high - panel.low)) / step) * step;
    const double digits = std::pow(10.0, std::max(0.0, -std::floor(std::log10(step))));
    moveThreshold(*m_dragged, std::round(value * digits) / digits);
}

void Chart::moveThreshold(std::size_t threshold, double value) {
    if (m_thresholds[threshold].value == value) return;
    m_thresholds[threshold].value = value;
    m_moved = true;
    rescan();
}

void Chart::mouseReleaseEvent(QMouseEvent*) {
    release();
}

void Chart::release() {
    if (!m_dragged) return;
    const Threshold dragged = m_thresholds[*m_dragged];
    m_dragged.reset();
    if (m_moved && onThreshold) onThreshold(dragged.comparison, dragged.value);
    m_moved = false;
    measure();
    rescan();
}

void Chart::keyPressEvent(QKeyEvent* event) {
    const bool up = event->key() == Qt::Key_Up, down = event->key() == Qt::Key_Down;
    const bool left = event->key() == Qt::Key_Left, right = event->key() == Qt::Key_Right;
    if (m_thresholds.empty() || !(up || down || left || right)) return QWidget::keyPressEvent(event);
    if (left || right) {
        const std::size_t count = m_thresholds.size();
        m_focused = m_focused ? (*m_focused + (right ? 1 : count - 1)) % count : 0;
        return update();
    }
    if (!m_focused) m_focused = 0;
    const Threshold& threshold = m_thresholds[*m_focused];
    const Panel& panel = m_panels[threshold.panel];
    const double step = niceStep(panel.high - panel.low, 50);
    const double value = std::round((threshold.value + (up ? step : -step)) / step) * step;
    const double digits = std::pow(10.0, std::max(0.0, -std::floor(std::log10(step))));
    const auto focused = m_focused;
    m_dragged = m_focused;
    moveThreshold(*m_dragged, std::round(value * digits) / digits);
    release();
    m_focused = focused;
}

}  // namespace vigil
