#include <QFileDialog>
#include <QFileInfo>
#include <QSettings>
#include <QTimer>

#include "host/desktop/FirstSite.hpp"
#include "host/desktop/SiteWindow.hpp"
#include "host/desktop/Words.hpp"
#include "host/site/SiteLock.hpp"

// Which site is shown.

namespace vigil {
namespace {

constexpr qsizetype kRecent = 8;
const char* const kRecentKey = "recent";
constexpr int kNotedAfterMilliseconds = 1000;

QString filter() {
    return say("Sites (*.vigilsite)");
}

/// Why nothing of a site can be shown that another process runs.
QString runsElsewhere(const QString& path) {
    return say("%1: process %2 runs this site, as a service does or another window. It has to end before the "
               "site can be shown here; `vigil status` tells how it is doing.")
        .arg(QFileInfo(path).fileName())
        .arg(SiteLock::holder(utf8(path)));
}

}  // namespace

void SiteWindow::closeSite() {
    for (const auto& [id, pane] : m_panes)
        delete pane;
    m_panes.clear();
    m_log->show(nullptr);
    m_readings->readings().show(Readings::make({}), nullptr, Date());
    m_trails.clear();
    m_deleted.clear();
    m_undoDelete->setEnabled(false);
    m_itemsOf = 0;
    for (QAction* old : m_toolbar->actions())
        if (old->property("plugIn").toBool()) m_toolbar->removeAction(old);
    m_session.reset();
}

void SiteWindow::openFirstSite(const QString& path, const Result<bool>& made) {
    if (made) return showSite(path, made.value());
    closeSite();
    showPage(say("This site cannot be made"), qt(made.error().message), say("Choose another…"),
             [this] { chooseSite(); });
}

void SiteWindow::showSite(const QString& path, bool fresh) {
    closeSite();
    showTrouble({});
    auto opened = SiteSession::open(utf8(path), m_options);
    if (!opened) {
        setWindowTitle(say("Vigil"));
        showWhere({});
        const bool runs = opened.error().kind == SiteError::Kind::Locked;
        return showPage(runs ? say("This site runs elsewhere") : say("This site cannot be opened"),
                        runs ? runsElsewhere(path) : qt(opened.error().message),
                        runs ? say("Try again") : say("Choose another…"),
                        [this, runs, path] { runs ? openSite(path) : chooseSite(); });
    }
    m_session = std::move(opened).value();
    m_session->setEvents({.changed = [this] { changed(); },
                          .refresh = [this] { refresh(); },
                          .select = [this](RecordId id) { select(id); },
                          .trouble = [this](const std::string& words) { showTrouble(qt(words)); },
                          .raise =
                              [this] {
                                  showNormal();
                                  raise();
                                  activateWindow();
                              }});
    m_log->show(&m_session->log());
    m_ledgerSum = 0;
    setWindowTitle(QFileInfo(path).completeBaseName() + say(" – Vigil"));
    showWhere(path);
    noteRecent(path);
    m_session->start();
    if (fresh) m_session->addFirstMonitor();
    refresh();
}

void SiteWindow::chooseSite() {
    const QString path = QFileDialog::getOpenFileName(this, say("Open a site"), {}, filter());
    if (path.isEmpty()) return;
    const auto open = [this, path] { openSite(path); };
    // Not inside a task of the site that is to end.
    if (!m_session) return open();
    m_session->atRest([this, open] { QMetaObject::invokeMethod(this, open, Qt::QueuedConnection); });
}

void SiteWindow::newSite() {
    QString path = QFileDialog::getSaveFileName(this, say("New site"), {}, filter());
    if (path.isEmpty()) return;
    if (!path.endsWith(QLatin1String(".vigilsite"))) path += QLatin1String(".vigilsite");
    if (const auto made = makeEmptySite(utf8(path)); !made) return showTrouble(qt(made.error().message));
    const auto open = [this, path] { openSite(path); };
    if (!m_session) return open();
    m_session->atRest([this, open] { QMetaObject::invokeMethod(this, open, Qt::QueuedConnection); });
}

// Settings are brought to the disk when they are written, which a site that has just been opened need not
// wait for.
void SiteWindow::noteRecent(const QString& path) {
    QTimer::singleShot(kNotedAfterMilliseconds, this, [path] {
        QSettings settings;
        QStringList recent = settings.value(QLatin1String(kRecentKey)).toStringList();
        recent.removeAll(path);
        recent.prepend(path);
        settings.setValue(QLatin1String(kRecentKey), recent.mid(0, kRecent));
    });
}

void SiteWindow::fillRecent() {
    m_recent->clear();
    for (const QString& path : QSettings().value(QLatin1String(kRecentKey)).toStringList()) {
        QAction* made = m_recent->addAction(path);
        made->setEnabled(QFileInfo::exists(path));
        connect(made, &QAction::triggered, this, [this, path] {
            const auto open = [this, path] { openSite(path); };
            if (!m_session) return open();
            m_session->atRest([this, open] { QMetaObject::invokeMethod(this, open, Qt::QueuedConnection); });
        });
    }
    if (m_recent->isEmpty()) m_recent->addAction(say("None yet"))->setEnabled(false);
}

}  // namespace vigil
