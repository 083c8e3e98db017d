#include <QFileDialog>
#include <QFileInfo>
#include <QSettings>

#include "host/desktop/FirstSite.hpp"
#include "host/desktop/SiteWindow.hpp"
#include "host/desktop/Words.hpp"

// Which site is shown.

namespace vigil {
namespace {

constexpr qsizetype kRecent = 8;
const char* const kRecentKey = "recent";

QString filter() {
    return say("Sites (*.vigilsite)");
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

void SiteWindow::openSite(const QString& path, bool first) {
    closeSite();
    showTrouble({});
    const bool fresh = first && !QFileInfo::exists(path);
    if (fresh)
        if (const auto made = makeFirstSite(utf8(path)); !made)
            return showPage(say("This site cannot be made"), qt(made.error().message), say("Choose another…"),
                            [this] { chooseSite(); });
    auto opened = SiteSession::open(utf8(path), m_options);
    if (!opened) {
        setWindowTitle(say("Vigil"));
        m_where->setText({});
        const bool runs = opened.error().kind == SiteError::Kind::Locked;
        return showPage(runs ? say("This site runs elsewhere") : say("This site cannot be opened"),
                        qt(opened.error().message), runs ? say("Try again") : say("Choose another…"),
                        [this, runs, path] { runs ? openSite(path, false) : chooseSite(); });
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
    m_where->setText(path);
    noteRecent(path);
    m_session->start();
    if (fresh) m_session->addFirstMonitor();
    refresh();
}

void SiteWindow::chooseSite() {
    const QString path = QFileDialog::getOpenFileName(this, say("Open a site"), {}, filter());
    if (path.isEmpty()) return;
    const auto open = [this, path] { openSite(path, false); };
    // Not inside a task of the site that is to end.
    if (!m_session) return open();
    m_session->atRest([this, open] { QMetaObject::invokeMethod(this, open, Qt::QueuedConnection); });
}

void SiteWindow::newSite() {
    QString path = QFileDialog::getSaveFileName(this, say("New site"), {}, filter());
    if (path.isEmpty()) return;
    if (!path.endsWith(QLatin1String(".vigilsite"))) path += QLatin1String(".vigilsite");
    if (const auto made = makeEmptySite(utf8(path)); !made) return showTrouble(qt(made.error().message));
    const auto open = [this, path] { openSite(path, false); };
    if (!m_session) return open();
    m_session->atRest([this, open] { QMetaObject::invokeMethod(this, open, Qt::QueuedConnection); });
}

void SiteWindow::noteRecent(const QString& path) {
    QSettings settings;
    QStringList recent = settings.value(QLatin1String(kRecentKey)).toStringList();
    recent.removeAll(path);
    recent.prepend(path);
    settings.setValue(QLatin1String(kRecentKey), recent.mid(0, kRecent));
}

void SiteWindow::fillRecent() {
    m_recent->clear();
    for (const QString& path : QSettings().value(QLatin1String(kRecentKey)).toStringList()) {
        QAction* made = m_recent->addAction(path);
        made->setEnabled(QFileInfo::exists(path));
        connect(made, &QAction::triggered, this, [this, path] {
            const auto open = [this, path] { openSite(path, false); };
            if (!m_session) return open();
            m_session->atRest([this, open] { QMetaObject::invokeMethod(this, open, Qt::QueuedConnection); });
        });
    }
    if (m_recent->isEmpty()) m_recent->addAction(say("None yet"))->setEnabled(false);
}

}  // namespace vigil
