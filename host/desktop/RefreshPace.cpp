#include "host/desktop/RefreshPace.hpp"

#include <QCoreApplication>
#include <QEvent>
#include <algorithm>

namespace vigil {

RefreshPace::RefreshPace(std::function<void()> call) : m_call(std::move(call)) {
    m_timer.setSingleShot(true);
    QObject::connect(&m_timer, &QTimer::timeout, this, [this] { this->call(); });
}

void RefreshPace::ring() {
    if (!m_rung.exchange(true)) QCoreApplication::postEvent(this, new QEvent(QEvent::User));
}

void RefreshPace::ringAtOnce() {
    m_atOnce = true;
    m_rung = true;
    QCoreApplication::postEvent(this, new QEvent(QEvent::User));
}

bool RefreshPace::event(QEvent* event) {
    if (event->type() != QEvent::User) return QObject::event(event);
    const bool waits = !m_atOnce.exchange(false) && m_since.isValid();
    const qint64 since = waits ? m_since.elapsed() : kRefreshMilliseconds;
    const int wait = static_cast<int>(std::max<qint64>(0, kRefreshMilliseconds - since));
    if (!m_timer.isActive() || wait < m_timer.remainingTime()) m_timer.start(wait);
    return true;
}

void RefreshPace::call() {
    m_rung = false;
    m_since.start();
    m_call();
}

}  // namespace vigil
