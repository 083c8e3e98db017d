#pragma once

#include <QAction>
#include <QDockWidget>
#include <QLabel>
#include <QMainWindow>
#include <QMenu>
#include <QStackedWidget>
#include <QTextBrowser>
#include <QToolBar>
#include <QToolButton>
#include <map>
#include <memory>
#include <vector>

#include "host/desktop/Card.hpp"
#include "host/desktop/LedgerView.hpp"
#include "host/desktop/LogView.hpp"
#include "host/desktop/MonitorPane.hpp"
#include "host/desktop/Notices.hpp"
#include "host/desktop/ReadingTrails.hpp"
#include "host/desktop/ReadingsTable.hpp"
#include "host/desktop/SiteSession.hpp"

namespace vigil {

/// The window of a site. Shows snapshots of it, at most ten a second. Main thread.
class SiteWindow : public QMainWindow {
  public:
    explicit SiteWindow(SiteSession::Options options);
    ~SiteWindow() override;

    /// Opens the site of that path in place of the one that is shown.
    void openSite(const QString& path) { showSite(path, /*fresh=*/false); }
    /// The same for a site of which `makeFirstSite` said this: one that it made gets a monitor.
    void openFirstSite(const QString& path, const Result<bool>& made);
    SiteSession* session() const { return m_session.get(); }
    MonitorPane* pane() const;
    RecordId station() const { return m_stations->chosen(); }
    RecordId monitor() const { return m_monitors->chosen(); }
    QDockWidget* dock(const QString& name) const { return findChild<QDockWidget*>(name); }

  protected:
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

  private:
    void makePanes();
    QWidget* makeSidebar();
    QDockWidget* makeDock(const char* name, const QString& title, Qt::DockWidgetArea area);
    void makeMenus();
    void makeToolbar();
    void takeKeys();
    QAction* action(QMenu& menu, const char* iconName, const QString& words, const QKeySequence& keys,
                    std::function<void()> call);

    // What is shown.
    void changed();
    void refresh();
    void refreshCards(const SiteStatus& status);
    void refreshProblems(const SiteStatus& status);
    void refreshLedger(const SiteStatus& status);
    void refreshInspector();
    void showMonitor(RecordId id);
    void showToolbarItems();
    void select(RecordId id);
    void showTrouble(const QString& words);
    void showWhere(const QString& path);
    void showPage(const QString& title, const QString& words, const QString& button,
                  std::function<void()> call);

    // What people do.
    void showSite(const QString& path, bool fresh);
    std::string siteFolder() const;
    void addStation();
    /// By the item of the toolbar plug-ins; where there are several, one is chosen.
    void addMonitor();
    void editStation();
    void removeStation();
    void renameMonitor(RecordId id);
    void deleteMonitor(RecordId id);
    void undoDelete();
    void undock(RecordId id);
    void setAppearance(const QString& name);
    void chooseSite();
    void newSite();
    void closeSite();
    void fillRecent();
    void noteRecent(const QString& path);

    const SiteSession::Options m_options;
    std::unique_ptr<SiteSession> m_session;
    CardList* m_stations = nullptr;
    CardList* m_monitors = nullptr;
    QWidget* m_sidebar = nullptr;
    QToolButton* m_addMonitor = nullptr;
    QStackedWidget* m_stack = nullptr;
    QWidget* m_page = nullptr;  // what stands where no monitor does
    ReadingsTable* m_readings = nullptr;
    LogView* m_log = nullptr;
    LedgerView* m_ledger = nullptr;
    QTextBrowser* m_inspector = nullptr;
    QFrame* m_banner = nullptr;
    QLabel* m_bannerWords = nullptr;
    QLabel* m_where = nullptr;
    QLabel* m_problems = nullptr;
    QToolBar* m_toolbar = nullptr;
    QAction* m_toolbarEnd = nullptr;
    QMenu* m_recent = nullptr;
    QAction* m_undoDelete = nullptr;
    Notices m_notices{this};
    std::vector<QAction*> m_stationActions, m_monitorActions;
    std::map<RecordId, MonitorPane*> m_panes;
    std::map<RecordId, std::unique_ptr<ReadingTrails>> m_trails;
    std::vector<PlugInRecord> m_deleted;
    RecordId m_itemsOf = 0;         // the station whose toolbar items are shown
    std::uint64_t m_ledgerSum = 0;  // of what the ledger showed last
    bool m_saving = false;          // somebody asked, and is told when it is so
    bool m_closing = false;
    bool m_arranged = false;  // the panes are as the user left them
};

}  // namespace vigil
