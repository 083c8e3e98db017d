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

bool RefreshPace::event(QEvent* event) {
    if (event->type() != QEvent::User) return QObject::event(event);
    const qint64 since = m_since.isValid() ? m_since.elapsed() : kRefreshMilliseconds;
    m_timer.start(static_cast<int>(std::max<qint64>(0, kRefreshMilliseconds - since)));
    return true;
}

void RefreshPace::call() {
    m_rung = false;
    m_since.start();
    m_call();
}

}  // namespace vigil
