#include "host/desktop/SiteWindow.hpp"

#include <QCloseEvent>
#include <QPushButton>
#include <QSettings>
#include <QStatusBar>
#include <QVBoxLayout>

#include "host/desktop/Icons.hpp"
#include "host/desktop/ToolButton.hpp"
#include "host/desktop/Words.hpp"

// How the window is put together. Other files hold what it shows and what people do in it.

namespace vigil {

SiteWindow::SiteWindow(SiteSession::Options options) : m_options(std::move(options)) {
    setObjectName(QStringLiteral("siteWindow"));
    setWindowTitle(say("Vigil"));
    setUnifiedTitleAndToolBarOnMac(true);
    setDockNestingEnabled(true);
    makePanes();
    makeMenus();
    makeToolbar();
    resize(1440, 900);
    const QSettings settings;
    restoreGeometry(settings.value(QStringLiteral("geometry")).toByteArray());
    restoreState(settings.value(QStringLiteral("docks")).toByteArray());
}

SiteWindow::~SiteWindow() {
    closeSite();
}

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
    column->addWidget(m_stack, 1);
    line->addLayout(column, 1);
    setCentralWidget(middle);

    m_readings = new ReadingsTable(this);
    makeDock("readings", say("Readings"), m_readings, Qt::RightDockWidgetArea);
    m_inspector = new QTextBrowser(this);
    m_inspector->setProperty("quiet", true);
    m_inspector->setAccessibleName(say("About the monitor"));
    auto* inspector = makeDock("inspector", say("About the monitor"), m_inspector, Qt::RightDockWidgetArea);
    inspector->hide();
    m_ledger = new LedgerView(this);
    m_ledger->onAsk = [this] {
        m_ledgerSum = ~std::uint64_t{0};
        if (m_session) m_session->ring();
    };
    auto* ledger = makeDock("ledger", say("What was done"), m_ledger, Qt::BottomDockWidgetArea);
    m_log = new LogView(this);
    auto* log = makeDock("log", say("Log"), m_log, Qt::BottomDockWidgetArea);
    tabifyDockWidget(ledger, log);
    ledger->hide();
    log->hide();
    resizeDocks({dock(QStringLiteral("readings"))}, {410}, Qt::Horizontal);
    resizeDocks({ledger}, {220}, Qt::Vertical);

    m_where = new QLabel(this);
    m_problems = new QLabel(this);
    statusBar()->addWidget(m_where, 1);
    statusBar()->addPermanentWidget(m_problems);
    statusBar()->setSizeGripEnabled(false);
}

QWidget* SiteWindow::makeSidebar() {
    auto* side = new QWidget(this);
    side->setObjectName(QStringLiteral("sidebar"));
    side->setFixedWidth(fontMetrics().averageCharWidth() * 33);
    auto* column = new QVBoxLayout(side);
    column->setContentsMargins(14, 12, 8, 12);
    column->setSpacing(6);
    const auto heading = [&](const QString& words, QLabel** kept) {
        auto* made = label(words, "section", side);
        if (kept) *kept = made;
        column->addWidget(made);
    };
    heading(say("Stations"), nullptr);
    m_stations = new CardList(side);
    m_stations->setObjectName(QStringLiteral("stations"));
    m_stations->setAccessibleName(say("Stations"));
    m_stations->setMostShown(5);
    m_stations->onChosen = [this](RecordId) { changed(); };
    m_stations->onActivated = [this](RecordId) { editStation(); };
    column->addWidget(m_stations);
    column->addSpacing(10);
    heading(say("Monitors"), &m_monitorsTitle);
    m_monitors = new CardList(side);
    m_monitors->setObjectName(QStringLiteral("monitors"));
    m_monitors->setAccessibleName(say("Monitors"));
    m_monitors->onChosen = [this](RecordId id) { showMonitor(id); };
    m_monitors->onActivated = [this](RecordId id) { renameMonitor(id); };
    column->addWidget(m_monitors, 1);
    return side;
}

QDockWidget* SiteWindow::makeDock(const char* name, const QString& title, QWidget* content,
                                  Qt::DockWidgetArea area) {
    auto* made = new QDockWidget(title, this);
    made->setObjectName(QLatin1String(name));
    made->setWidget(content);
    made->setFeatures(QDockWidget::DockWidgetClosable | QDockWidget::DockWidgetMovable |
                      QDockWidget::DockWidgetFloatable);
    addDockWidget(area, made);
    return made;
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
