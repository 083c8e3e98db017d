#include "host/desktop/SiteWindow.hpp"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QSettings>
#include <utility>

#include "host/desktop/Words.hpp"

// How the window comes to be and ends. Other files hold its panes and menus, what it shows, and what people
// do in it.

namespace vigil {
namespace {

constexpr QSize kSize(1440, 900);
/// In letters of middle width: a window that is narrower begins without its readings, which would leave the
/// monitor no room.
constexpr int kRoomForReadings = 130;

}  // namespace

SiteWindow::SiteWindow(SiteSession::Options options) : m_options(std::move(options)) {
    setObjectName(QStringLiteral("siteWindow"));
    setWindowTitle(say("Vigil"));
    setUnifiedTitleAndToolBarOnMac(true);
    setDockNestingEnabled(true);
    makePanes();
    makeMenus();
    makeToolbar();
    const QSize room = QGuiApplication::primaryScreen()->availableSize();
    resize(kSize.boundedTo(room));
    const QSettings settings;
    restoreGeometry(settings.value(QStringLiteral("geometry")).toByteArray());
    m_arranged = restoreState(settings.value(QStringLiteral("docks")).toByteArray());
    m_stations->setFocus();
}

void SiteWindow::showEvent(QShowEvent* event) {
    QMainWindow::showEvent(event);
    const bool narrow = width() < kRoomForReadings * fontMetrics().averageCharWidth();
    if (!std::exchange(m_arranged, true) && narrow) dock(QStringLiteral("readings"))->hide();
}

SiteWindow::~SiteWindow() {
    // A pane tells that it goes, and this is no such window any more then.
    for (QDockWidget* pane : findChildren<QDockWidget*>())
        pane->disconnect(this);
    closeSite();
}

MonitorPane* SiteWindow::pane() const {
    return dynamic_cast<MonitorPane*>(m_stack->currentWidget());
}

// A monitor that acts is left to end; then the window closes.
void SiteWindow::closeEvent(QCloseEvent* event) {
    if (m_session && !m_closing) {
        event->ignore();
        const bool waits = m_session->atRest([this] {
            m_closing = true;
            close();
        });
        if (waits) return;
    }
    QSettings settings;
    settings.setValue(QStringLiteral("geometry"), saveGeometry());
    settings.setValue(QStringLiteral("docks"), saveState());
    hide();
    event->accept();
    // Not inside a task of the site that is to end.
    QMetaObject::invokeMethod(
        this,
        [this] {
            closeSite();
            QCoreApplication::quit();
        },
        Qt::QueuedConnection);
}

}  // namespace vigil
