#include <QActionGroup>
#include <QApplication>
#include <QMenuBar>
#include <QSettings>

#include "host/desktop/Icons.hpp"
#include "host/desktop/SiteWindow.hpp"
#include "host/desktop/Theme.hpp"
#include "host/desktop/ToolButton.hpp"
#include "host/desktop/Words.hpp"
#include "platform/ToolbarItem.hpp"

// Menus and the toolbar.

namespace vigil {

QAction* SiteWindow::action(QMenu& menu, const char* iconName, const QString& words, const QKeySequence& keys,
                            std::function<void()> call) {
    auto* made = menu.addAction(words);
    if (*iconName) made->setIcon(icon(QLatin1String(iconName)));
    made->setShortcut(keys);
    connect(made, &QAction::triggered, this, std::move(call));
    return made;
}

void SiteWindow::makeMenus() {
    auto& site = *menuBar()->addMenu(say("&Site"));
    action(site, "new", say("&New site…"), QKeySequence::New, [this] { newSite(); });
    action(site, "open", say("&Open site…"), QKeySequence::Open, [this] { chooseSite(); });
    m_recent = site.addMenu(say("&Recent sites"));
    connect(m_recent, &QMenu::aboutToShow, this, [this] { fillRecent(); });
    action(site, "save", say("&Save"), QKeySequence::Save, [this] {
        if (MonitorPane* shown = pane(); shown && shown->view()) shown->view()->flush();
        m_saving = true;
        if (m_session) m_session->ring();
    });
    site.addSeparator();
    action(site, "", say("&Quit"), QKeySequence::Quit, [this] { close(); });

    auto& station = *menuBar()->addMenu(say("S&tation"));
    action(station, "plus", say("&Add a station…"), QKeySequence(QStringLiteral("Ctrl+Shift+N")),
           [this] { addStation(); });
    m_stationActions = {
        action(station, "edit", say("&Edit the station…"), {}, [this] { editStation(); }),
        action(station, "trash", say("&Remove the station…"), {}, [this] { removeStation(); })};

    auto& monitor = *menuBar()->addMenu(say("&Monitor"));
    const auto view = [this]() -> InterfaceView* { return pane() ? pane()->view() : nullptr; };
    m_monitorActions = {
        action(monitor, "edit", say("&Rename…"), QKeySequence(Qt::Key_F2),
               [this] { renameMonitor(this->monitor()); }),
        action(monitor, "", say("&Activate or rest"), QKeySequence(QStringLiteral("Ctrl+E")),
               [view] {
                   if (view() && view()->activate()) view()->activate()->toggle();
               }),
        action(monitor, "play", say("&Test sounds and speech"), QKeySequence(QStringLiteral("Ctrl+T")),
               [view] {
                   if (view()) view()->test();
               }),
        action(monitor, "explain", say("E&xplain which comparisons hold"),
               QKeySequence(QStringLiteral("Ctrl+I")),
               [this] {
                   if (m_session && pane())
                       m_session->perform(pane()->id(), "determineWhatPartOfPredicateCauseAlert");
               }),
        action(monitor, "undock", say("&Window of its own"), QKeySequence(QStringLiteral("Ctrl+U")),
               [this] { undock(this->monitor()); }),
        action(monitor, "trash", say("&Delete"), QKeySequence(QStringLiteral("Ctrl+Backspace")),
               [this] { deleteMonitor(this->monitor()); })};
    m_undoDelete = action(monitor, "undo", say("&Undo delete"), QKeySequence(QStringLiteral("Ctrl+Shift+Z")),
                          [this] { undoDelete(); });
    m_undoDelete->setEnabled(false);

    auto& look = *menuBar()->addMenu(say("&View"));
    const std::pair<const char*, const char*> docks[] = {
        {"readings", "Ctrl+1"}, {"inspector", "Ctrl+2"}, {"ledger", "Ctrl+3"}, {"log", "Ctrl+4"}};
    for (const auto& [name, keys] : docks) {
        QAction* toggle = dock(QLatin1String(name))->toggleViewAction();
        toggle->setShortcut(QKeySequence(QLatin1String(keys)));
        look.addAction(toggle);
    }
    look.addSeparator();
    QAction* notify = action(look, "", say("&Notify me of alerts"), {}, [] {});
    notify->setCheckable(true);
    notify->setChecked(m_notices.isOn());
    connect(notify, &QAction::toggled, this, [this](bool on) { m_notices.setOn(on); });
    m_notices.onPressed = [this] {
        showNormal();
        raise();
        activateWindow();
    };
    auto& appearance = *look.addMenu(icon(QStringLiteral("appearance")), say("&Appearance"));
    const std::pair<const char*, QString> looks[] = {
        {"auto", say("As the &desktop")}, {"light", say("&Light")}, {"dark", say("&Dark")}};
    const QString chosen =
        QSettings().value(QLatin1String(kAppearanceKey), QStringLiteral("auto")).toString();
    auto* one = new QActionGroup(this);
    for (const auto& [name, words] : looks) {
        QAction* made =
            action(appearance, "", words, {}, [this, name = name] { setAppearance(QLatin1String(name)); });
        made->setCheckable(true);
        made->setChecked(chosen == QLatin1String(name));
        one->addAction(made);
    }
}

void SiteWindow::makeToolbar() {
    m_toolbar = addToolBar(say("Tools"));
    m_toolbar->setObjectName(QStringLiteral("tools"));
    m_toolbar->setMovable(false);
    m_toolbar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    const int high = fontMetrics().height() * 5 / 4;
    m_toolbar->setIconSize({high * 13 / 10, high});
    m_toolbarEnd = m_toolbar->addSeparator();
    m_toolbarEnd->setVisible(false);
    m_toolbar->addAction(leadingIcon(icon(QStringLiteral("station"))), say("Add a station"), this,
                         [this] { addStation(); });
    auto* space = new QWidget(m_toolbar);
    space->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    m_toolbar->addWidget(space);
    const std::pair<const char*, const char*> docks[] = {
        {"readings", "readings"}, {"inspector", "info"}, {"ledger", "ledger"}, {"log", "log"}};
    for (const auto& [name, iconName] : docks) {
        QAction* toggle = dock(QLatin1String(name))->toggleViewAction();
        toggle->setIcon(leadingIcon(icon(QLatin1String(iconName))));
        m_toolbar->addAction(toggle);
    }
    takeKeys();
}

// Qt keeps the buttons of a toolbar from the keyboard.
void SiteWindow::takeKeys() {
    for (const QAction* one : m_toolbar->actions())
        if (auto* button = qobject_cast<QToolButton*>(m_toolbar->widgetForAction(const_cast<QAction*>(one))))
            button->setFocusPolicy(Qt::TabFocus);
}

// The items of the site's toolbar plug-ins, for the chosen station.
void SiteWindow::showToolbarItems() {
    const RecordId id = station();
    if (id == m_itemsOf) return;
    m_itemsOf = id;
    for (QAction* old : m_toolbar->actions())
        if (old->property("plugIn").toBool()) m_toolbar->removeAction(old), old->deleteLater();
    m_toolbarEnd->setVisible(id != 0);
    if (!m_session || id == 0) return;
    for (const auto& item : m_session->toolbarItems(id)) {
        auto* made = new QAction(qt(item->label()), m_toolbar);
        if (item->image()) made->setIcon(leadingIcon(QIcon(qt(item->image()->path()))));
        made->setToolTip(say("Add a monitor for the chosen station"));
        made->setProperty("plugIn", true);
        connect(made, &QAction::triggered, this, [this, item] {
            const World::Scope scope(m_session->site().world());
            if (!item->press()) showTrouble(say("Its plug-in has gone"));
        });
        m_toolbar->insertAction(m_toolbarEnd, made);
    }
    takeKeys();
}

void SiteWindow::setAppearance(const QString& name) {
    QSettings().setValue(QLatin1String(kAppearanceKey), name);
    applyTheme(*qApp, appearanceNamed(name));
    if (m_session) m_session->ring();
}

}  // namespace vigil
