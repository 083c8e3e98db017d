#include <QFileInfo>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>

#include "host/desktop/Icons.hpp"
#include "host/desktop/MonitorCards.hpp"
#include "host/desktop/SiteWindow.hpp"
#include "host/desktop/Theme.hpp"
#include "host/desktop/ToolButton.hpp"
#include "host/desktop/Words.hpp"
#include "host_contract/QRVPlugIn.hpp"

// What the window shows, taken anew from the site at each refresh.

namespace vigil {
namespace {

constexpr int kWidestWords = 560;  // with large letters

}  // namespace

void SiteWindow::changed() {
    if (m_session) refresh();
}

void SiteWindow::refresh() {
    if (!m_session) return;
    const SiteStatus status = m_session->site().status();
    refreshCards(status);
    showToolbarItems();
    if (station() == 0) m_readings->readings().show(Readings::make({}), nullptr, status.now);
    for (const StationStatus& one : status.stations) {
        const auto running = m_session->site().stationOf(one.id);
        if (!running) continue;
        auto& trails = m_trails[one.id];
        if (!trails) trails = std::make_unique<ReadingTrails>();
        const auto readings = running->properties();
        trails->take(*readings, status.now);
        if (one.id == station() && m_readings->isVisible())
            m_readings->readings().show(readings, trails.get(), status.now);
        for (const MonitorStatus& shown : one.monitors) {
            const auto pane = m_panes.find(shown.id);
            if (pane != m_panes.end() && pane->second->isVisible())
                pane->second->refresh(shown, readings, status.now);
        }
    }
    if (m_saving && status.writesWaiting == 0) {
        m_saving = false;
        m_where->setText(say("Everything is saved; it always is, as soon as it is changed"));
    }
    m_notices.look(status);
    refreshProblems(status);
    refreshLedger(status);
    if (m_inspector->isVisible()) refreshInspector();
    if (m_log->isVisible()) m_log->refresh();
    m_log->showLost(status.lostLogLines);
}

void SiteWindow::refreshCards(const SiteStatus& status) {
    std::vector<Card> stations, monitors;
    for (const StationStatus& one : status.stations)
        stations.push_back(cardOf(one, status.now));
    m_stations->setCards(stations);
    for (const StationStatus& one : status.stations)
        for (const MonitorStatus& monitor : one.monitors)
            if (one.id == station()) monitors.push_back(cardOf(monitor, status.now));
    m_monitors->setCards(monitors);
    // Another object may stand for the monitor that is shown.
    if (MonitorPane* shown = pane()) {
        const HostedPlugIn* hosted = m_session->site().plugIn(shown->id());
        if (!hosted || hosted->plugIn() != shown->plugIn()) showMonitor(monitor());
    }
    if (monitors.empty()) showMonitor(0);
    for (QAction* one : m_stationActions)
        one->setEnabled(station() != 0);
    m_addMonitor->setEnabled(station() != 0);
    for (QAction* one : m_monitorActions)
        one->setEnabled(monitor() != 0);
}

void SiteWindow::refreshProblems(const SiteStatus& status) {
    QStringList words;
    for (const std::string& problem : status.problems)
        words << qt(problem);
    const QString count = words.isEmpty()     ? say("all is well")
                          : words.size() == 1 ? say("1 problem: %1").arg(words[0])
                                              : say("%1 problems").arg(words.size());
    const QString shown = m_problems->fontMetrics().elidedText(count, Qt::ElideRight, width() / 2);
    if (m_problems->text() != shown) m_problems->setText(shown);
    m_problems->setToolTip(words.join(QLatin1Char('\n')));
    restyle(*m_problems, "chip", QLatin1String(words.isEmpty() ? "good" : "bad"));
}

void SiteWindow::refreshLedger(const SiteStatus& status) {
    if (!m_ledger->isVisible()) return;
    std::uint64_t sum = 1;
    for (const auto& [of, count] : status.actions)
        sum += count;
    if (sum == m_ledgerSum) return;
    m_ledgerSum = sum;
    m_session->readLedger(m_ledger->query(), [this, now = status.now](const auto& effects) {
        if (effects) m_ledger->show(effects.value(), now);
    });
}

void SiteWindow::refreshInspector() {
    HostedPlugIn* hosted = m_session->site().plugIn(monitor());
    const QString html = hosted ? qt(hosted->call([](QRVPlugIn& plugIn) { return plugIn.htmlDescription(); }))
                                : say("No monitor is chosen.");
    if (m_inspector->property("html").toString() == html) return;
    m_inspector->setProperty("html", html);
    m_inspector->setHtml(QStringLiteral("<style>th{padding-bottom:8px} td{padding:4px}</style>") + html);
}

void SiteWindow::showMonitor(RecordId id) {
    HostedPlugIn* hosted = m_session ? m_session->site().plugIn(id) : nullptr;
    if (id == 0 || !m_session) {
        if (!m_session) return;
        if (station() == 0)
            return showPage(
                say("No station yet"),
                say("A station is where readings come from: a console that uploads, a radio receiver, a "
                    "broker, a file, or weather that is made up to try things."),
                say("Add a station…"), [this] { addStation(); });
        return showPage(
            say("No monitor here yet"),
            say("A monitor watches this station: it judges a condition on every new reading and acts "
                "when it holds."),
            say("Add a monitor"), [this] { addMonitor(); });
    }
    const auto known = m_panes.find(id);
    if (known != m_panes.end() && (!hosted || known->second->plugIn() != hosted->plugIn())) {
        known->second->deleteLater();
        m_panes.erase(known);
    }
    if (!m_panes.contains(id)) {
        auto* made = new MonitorPane(*m_session, id, m_stack);
        made->onRename = [this, id] { renameMonitor(id); };
        made->onDelete = [this, id] { deleteMonitor(id); };
        made->onUndock = [this, id] { undock(id); };
        m_stack->addWidget(made);
        m_panes[id] = made;
    }
    if (m_stack->indexOf(m_panes[id]) < 0)
        return showPage(say("In a window of its own"), say("This monitor is shown in another window."), {},
                        {});
    m_stack->setCurrentWidget(m_panes[id]);
    m_session->ring();
}

void SiteWindow::showPage(const QString& title, const QString& words, const QString& button,
                          std::function<void()> call) {
    if (m_page && m_stack->currentWidget() == m_page && m_page->accessibleName() == title) return;
    delete m_page;
    m_page = new QWidget(m_stack);
    m_page->setAccessibleName(title);
    // It bounds no window from below, least of all while it does not show.
    m_page->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
    auto* column = new QVBoxLayout(m_page);
    column->setContentsMargins(40, 40, 40, 40);
    column->addStretch(2);
    auto* picture = new QLabel(m_page);
    picture->setPixmap(iconPixmap(QStringLiteral("vigil"), 72, theme().accent, devicePixelRatioF()));
    column->addWidget(picture, 0, Qt::AlignHCenter);
    column->addSpacing(10);
    column->addWidget(label(title, "title", m_page), 0, Qt::AlignHCenter);
    auto* text = label(words, "muted", m_page);
    text->setWordWrap(true);
    text->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    text->setFixedWidth(std::min(fontMetrics().averageCharWidth() * 64, kWidestWords));
    text->setMinimumHeight(text->heightForWidth(text->width()));
    column->addWidget(text, 0, Qt::AlignHCenter);
    column->addSpacing(10);
    if (!button.isEmpty()) {
        auto* push = new QPushButton(button, m_page);
        push->setProperty("primary", true);
        connect(push, &QPushButton::clicked, this, std::move(call));
        column->addWidget(push, 0, Qt::AlignHCenter);
    }
    column->addStretch(3);
    m_stack->addWidget(m_page);
    m_stack->setCurrentWidget(m_page);
}

void SiteWindow::showTrouble(const QString& words) {
    m_bannerWords->setText(words);
    m_banner->setVisible(!words.isEmpty());
}

// The file's name; where it is stands under the mouse.
void SiteWindow::showWhere(const QString& path) {
    m_sidebar->setVisible(m_session != nullptr);
    m_where->setText(QFileInfo(path).fileName());
    m_where->setToolTip(path);
    m_problems->setVisible(m_session != nullptr);
    m_toolbar->setEnabled(m_session != nullptr);
}

void SiteWindow::select(RecordId id) {
    for (const StationRecord& one : m_session->site().stations())
        for (const PlugInRecord& record : m_session->site().plugIns(one.id))
            if (record.id == id) m_stations->choose(one.id);
    refresh();
    m_monitors->choose(id);
}

}  // namespace vigil
