#include <QApplication>
#include <QCloseEvent>
#include <QFileInfo>
#include <QInputDialog>
#include <QMessageBox>
#include <QVBoxLayout>

#include "host/desktop/SiteWindow.hpp"
#include "host/desktop/StationDialog.hpp"
#include "host/desktop/Words.hpp"

// What people do with stations and monitors.

namespace vigil {
namespace {

/// A window that gives its content back when it is closed.
class UndockedWindow : public QWidget {
  public:
    UndockedWindow(QWidget* content, std::function<void()> closed) : m_closed(std::move(closed)) {
        auto* column = new QVBoxLayout(this);
        column->setContentsMargins(0, 0, 0, 0);
        column->addWidget(content);
        content->show();
        resize(820, 720);
        setAttribute(Qt::WA_DeleteOnClose);
    }

  protected:
    void closeEvent(QCloseEvent* event) override {
        m_closed();
        event->accept();
    }

  private:
    const std::function<void()> m_closed;
};

}  // namespace

std::string SiteWindow::siteFolder() const {
    return utf8(QFileInfo(qt(m_session->path())).absolutePath());
}

void SiteWindow::addStation() {
    if (!m_session) return;
    StationDialog dialog({}, siteFolder(), this);
    if (dialog.exec() != QDialog::Accepted || !m_session) return;
    m_session->putStation(dialog.record(), [this](const Result<RecordId>& added) {
        if (!added) return;
        refresh();
        m_stations->choose(added.value());
    });
}

void SiteWindow::addMonitor() {
    QMenu offered;
    for (QAction* item : m_toolbar->actions())
        if (item->property("plugIn").toBool()) offered.addAction(item);
    if (offered.actions().size() == 1) return offered.actions().front()->trigger();
    if (!offered.isEmpty()) offered.exec(m_addMonitor->mapToGlobal(QPoint(0, m_addMonitor->height())));
}

void SiteWindow::editStation() {
    if (!m_session) return;
    for (const StationRecord& record : m_session->site().stations()) {
        if (record.id != station()) continue;
        StationDialog dialog(record, siteFolder(), this);
        if (dialog.exec() == QDialog::Accepted && m_session) m_session->putStation(dialog.record(), {});
        return;
    }
}

void SiteWindow::removeStation() {
    if (!m_session || station() == 0) return;
    const auto answer = QMessageBox::question(this, say("Remove the station"),
                                              say("The station and all of its monitors are removed. This "
                                                  "cannot be undone. Its history stays until it is "
                                                  "pruned."),
                                              QMessageBox::Yes | QMessageBox::Cancel, QMessageBox::Cancel);
    if (answer == QMessageBox::Yes && m_session) m_session->removeStation(station());
}

void SiteWindow::renameMonitor(RecordId id) {
    HostedPlugIn* hosted = m_session ? m_session->site().plugIn(id) : nullptr;
    if (!hosted) return;
    if (!hosted->call([](QRVPlugIn& plugIn) { return plugIn.isRenamable(); }))
        return showTrouble(say("This one keeps its name."));
    bool taken = false;
    const QString title = QInputDialog::getText(this, say("Rename"), say("Title of the monitor:"),
                                                QLineEdit::Normal, qt(hosted->plugIn()->title()), &taken);
    if (!taken || !m_session) return;
    const auto renamed = m_session->site().setTitle(id, utf8(title.trimmed()));
    showTrouble(renamed ? QString() : qt(renamed.error().message));
    refresh();
}

void SiteWindow::deleteMonitor(RecordId id) {
    HostedPlugIn* hosted = m_session ? m_session->site().plugIn(id) : nullptr;
    if (hosted && !hosted->call([](QRVPlugIn& plugIn) { return plugIn.isDeletable(); }))
        return showTrouble(say("This one cannot be deleted."));
    if (!m_session || id == 0) return;
    if (const auto pane = m_panes.find(id); pane != m_panes.end() && pane->second->view())
        pane->second->view()->flush();
    m_session->removePlugIn(id, [this](PlugInRecord record) {
        m_deleted.push_back(std::move(record));
        m_undoDelete->setEnabled(true);
        m_undoDelete->setText(say("&Undo deleting \"%1\"").arg(qt(m_deleted.back().title)));
    });
}

void SiteWindow::undoDelete() {
    if (!m_session || m_deleted.empty()) return;
    m_session->restorePlugIn(std::move(m_deleted.back()));
    m_deleted.pop_back();
    m_undoDelete->setEnabled(!m_deleted.empty());
    m_undoDelete->setText(m_deleted.empty() ? say("&Undo delete")
                                            : say("&Undo deleting \"%1\"").arg(qt(m_deleted.back().title)));
}

void SiteWindow::undock(RecordId id) {
    const auto found = m_panes.find(id);
    HostedPlugIn* hosted = m_session ? m_session->site().plugIn(id) : nullptr;
    if (found == m_panes.end() || !hosted || m_stack->indexOf(found->second) < 0) return;
    if (!hosted->call([](QRVPlugIn& plugIn) { return plugIn.isUndockable(); }))
        return showTrouble(say("This one stays in the window."));
    MonitorPane* shown = found->second;
    m_stack->removeWidget(shown);
    auto* window = new UndockedWindow(shown, [this, id] {
        const auto still = m_panes.find(id);
        if (still == m_panes.end()) return;
        m_stack->addWidget(still->second);
        if (monitor() == id) showMonitor(id);
    });
    window->setWindowTitle(qt(hosted->plugIn()->title()));
    connect(shown, &QObject::destroyed, window, &QWidget::deleteLater);
    window->show();
    showMonitor(monitor());
}

}  // namespace vigil
