#include "host/desktop/Notices.hpp"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QSettings>
#include <QTimer>

#include "host/desktop/Icons.hpp"
#include "host/desktop/Words.hpp"

namespace vigil {
namespace {

constexpr const char* kKey = "notify";
constexpr int kShownMilliseconds = 10'000;
/// Whether the desktop has a place for the icon is asked over its bus, and answered when it is; a window that
/// begins has better things to do than to wait for that.
constexpr int kTrayAfterMilliseconds = 1000;

}  // namespace

Notices::Notices(QObject* parent) : m_on(QSettings().value(QLatin1String(kKey), true).toBool()) {
    QTimer::singleShot(kTrayAfterMilliseconds, parent, [this, parent] { makeTray(parent); });
}

void Notices::makeTray(QObject* parent) {
    if (!QSystemTrayIcon::isSystemTrayAvailable()) return;
    m_tray = new QSystemTrayIcon(icon(QStringLiteral("vigil")), parent);
    m_tray->setToolTip(m_words.isEmpty() ? say("Vigil: no alert yet") : QStringLiteral("Vigil: ") + m_words);
    QObject::connect(m_tray, &QSystemTrayIcon::activated, parent, [this] {
        if (onPressed) onPressed();
    });
    m_tray->show();
}

void Notices::setOn(bool on) {
    m_on = on;
    QSettings().setValue(QLatin1String(kKey), on);
}

void Notices::look(const SiteStatus& status) {
    for (const StationStatus& station : status.stations)
        for (const MonitorStatus& monitor : station.monitors) {
            if (!monitor.lastFire) continue;
            const auto known = m_known.find(monitor.id);
            if (known != m_known.end() && known->second == *monitor.lastFire) continue;
            m_known[monitor.id] = *monitor.lastFire;
            const QString words =
                say("%1 fired at %2").arg(qt(monitor.title), momentText(*monitor.lastFire, status.now));
            tellTray(words, *monitor.lastFire);
            if (m_on && *monitor.lastFire >= status.since)
                notify(words, qt(station.name) + QStringLiteral(": ") + qt(monitor.condition));
        }
}

void Notices::tellTray(const QString& words, Date when) {
    if (m_last && when < *m_last) return;
    m_last = when;
    m_words = words;
    if (m_tray) m_tray->setToolTip(QStringLiteral("Vigil: ") + words);
}

// Without an answer: a desktop that takes no notifications is no trouble of the monitor's.
void Notices::notify(const QString& title, const QString& words) {
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) return;
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("/org/freedesktop/Notifications"),
        QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("Notify"));
    call << QStringLiteral("Vigil") << 0u << QStringLiteral("vigil") << title << words.toHtmlEscaped()
         << QStringList() << QVariantMap{{QStringLiteral("desktop-entry"), QStringLiteral("vigil")}}
         << kShownMilliseconds;
    bus.send(call);
}

}  // namespace vigil
