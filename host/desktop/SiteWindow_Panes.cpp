#include <QPushButton>
#include <QStatusBar>
#include <QVBoxLayout>
#include <algorithm>

#include "host/desktop/SiteWindow.hpp"
#include "host/desktop/ToolButton.hpp"
#include "host/desktop/Words.hpp"

// What stands where in the window.

namespace vigil {
namespace {

constexpr int kWidestSidebar = 320;  // with large letters
/// What a monitor needs beside the other panes, which give way first.
constexpr int kMonitorLetters = 74, kMonitorWidth = 600;

}  // namespace

void SiteWindow::makePanes() {
    auto* middle = new QWidget(this);
    auto* line = new QHBoxLayout(middle);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(0);
    line->addWidget(makeSidebar());
    auto* column = new QVBoxLayout;
    column->setSpacing(0);
    m_banner = new QFrame(middle);
    m_banner->setProperty("banner", true);
    auto* banner = new QHBoxLayout(m_banner);
    banner->setContentsMargins(14, 6, 8, 6);
    m_bannerWords = new QLabel(m_banner);
    m_bannerWords->setWordWrap(true);
    m_bannerWords->setAccessibleName(say("What went wrong"));
    banner->addWidget(m_bannerWords, 1);
    auto* close = wordButton(QStringLiteral("yes"), say("Understood"), m_banner);
    connect(close, &QToolButton::clicked, m_banner, &QWidget::hide);
    banner->addWidget(close);
    m_banner->hide();
    auto* bannerPlace = new QHBoxLayout;
    bannerPlace->setContentsMargins(18, 10, 18, 0);
    bannerPlace->addWidget(m_banner);
    column->addLayout(bannerPlace);
    m_stack = new QStackedWidget(middle);
    m_stack->setMinimumWidth(std::min(fontMetrics().averageCharWidth() * kMonitorLetters, kMonitorWidth));
    column->addWidget(m_stack, 1);
    line->addLayout(column, 1);
    setCentralWidget(middle);

    // The words of its cells begin where the pane's title does.
    auto* readings = makeDock("readings", say("Readings"), Qt::RightDockWidgetArea);
    auto* margins = new QWidget(readings);
    auto* around = new QVBoxLayout(margins);
    around->setContentsMargins(5, 0, 5, 5);
    m_readings = new ReadingsTable(margins);
    around->addWidget(m_readings);
    readings->setWidget(margins);
    auto* inspector = makeDock("inspector", say("About the monitor"), Qt::RightDockWidgetArea);
    m_inspector = new QTextBrowser(inspector);
    m_inspector->setProperty("quiet", true);
    m_inspector->setAccessibleName(say("About the monitor"));
    inspector->setWidget(m_inspector);
    inspector->hide();
    auto* ledger = makeDock("ledger", say("What was done"), Qt::BottomDockWidgetArea);
    m_ledger = new LedgerView(ledger);
    m_ledger->onAsk = [this] {
        m_ledgerSum = ~std::uint64_t{0};
        if (m_session) m_session->ring();
    };
    ledger->setWidget(m_ledger);
    auto* log = makeDock("log", say("Log"), Qt::BottomDockWidgetArea);
    m_log = new LogView(log);
    log->setWidget(m_log);
    tabifyDockWidget(ledger, log);
    ledger->hide();
    log->hide();
    resizeDocks({readings}, {436}, Qt::Horizontal);
    resizeDocks({ledger}, {220}, Qt::Vertical);

    m_where = new QLabel(this);
    m_problems = new QLabel(this);
    statusBar()->addWidget(m_where, 1);
    statusBar()->addPermanentWidget(m_problems);
    statusBar()->setSizeGripEnabled(false);
    statusBar()->setContentsMargins(8, 0, 8, 0);
}

QWidget* SiteWindow::makeSidebar() {
    auto* side = m_sidebar = new QWidget(this);
    side->setObjectName(QStringLiteral("sidebar"));
    side->setFixedWidth(std::min(fontMetrics().averageCharWidth() * 33, kWidestSidebar));
    auto* column = new QVBoxLayout(side);
    column->setContentsMargins(14, 12, 8, 12);
    column->setSpacing(6);
    const auto heading = [&](const QString& words, const QString& adds, std::function<void()> add) {
        auto* line = new QHBoxLayout;
        line->addWidget(label(words, "section", side), 1);
        auto* button = bareButton(QStringLiteral("plus"), adds, side);
        connect(button, &QToolButton::clicked, this, std::move(add));
        line->addWidget(button);
        column->addLayout(line);
        return button;
    };
    heading(say("Stations"), say("Add a station"), [this] { addStation(); });
    m_stations = new CardList(side);
    m_stations->setObjectName(QStringLiteral("stations"));
    m_stations->setAccessibleName(say("Stations"));
    m_stations->setMostShown(5);
    m_stations->setNone(say("None yet"));
    m_stations->onChosen = [this](RecordId) { changed(); };
    m_stations->onActivated = [this](RecordId) { editStation(); };
    column->addWidget(m_stations);
    column->addSpacing(10);
    m_addMonitor =
        heading(say("Monitors"), say("Add a monitor for the chosen station"), [this] { addMonitor(); });
    m_monitors = new CardList(side);
    m_monitors->setObjectName(QStringLiteral("monitors"));
    m_monitors->setAccessibleName(say("Monitors"));
    m_monitors->setMinimumHeight(2 * fontMetrics().height());
    m_monitors->setNone(say("None yet"));
    m_monitors->onChosen = [this](RecordId id) { showMonitor(id); };
    m_monitors->onActivated = [this](RecordId id) { renameMonitor(id); };
    column->addWidget(m_monitors, 1);
    return side;
}

// What it holds is made in it: given to it later, it would be given its style once more.
QDockWidget* SiteWindow::makeDock(const char* name, const QString& title, Qt::DockWidgetArea area) {
    auto* made = new QDockWidget(title, this);
    made->setObjectName(QLatin1String(name));
    made->setFeatures(QDockWidget::DockWidgetClosable | QDockWidget::DockWidgetMovable |
                      QDockWidget::DockWidgetFloatable);
    addDockWidget(area, made);
    // What is shown again is filled at once.
    connect(made, &QDockWidget::visibilityChanged, this, [this] {
        if (m_session) m_session->ring();
    });
    return made;
}

}  // namespace vigil
