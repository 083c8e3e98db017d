#include "host/desktop/ChartCard.hpp"

#include <QHBoxLayout>
#include <QPointer>
#include <QVBoxLayout>
#include <algorithm>
#include <variant>

#include "host/desktop/ControlViews.hpp"
#include "host/desktop/ToolButton.hpp"
#include "host/desktop/Words.hpp"

namespace vigil {
namespace {

/// The history is asked for news so often, in seconds.
constexpr double kAskEvery = 2;
constexpr double kSpans[] = {900, 3600, 6 * 3600, 86400, 7 * 86400, 30 * 86400, 365.0 * 86400};

void addOnce(std::vector<std::string>& to, const std::string& key) {
    if (std::find(to.begin(), to.end(), key) == to.end()) to.push_back(key);
}

// The parser bounds the depth.
void keysOf(const ConditionNode& node, std::vector<std::string>& keys, std::vector<std::string>& texts) {
    if (const Comparison* comparison = node.comparison()) {
        addOnce(keys, comparison->key);
        if (std::holds_alternative<std::string>(comparison->literal)) addOnce(texts, comparison->key);
    }
    for (const ConditionNode& part : node.parts())
        keysOf(part, keys, texts);
}

}  // namespace

ChartCard::ChartCard(std::string siteFile, RecordId station, RecordId monitor, QWidget* parent)
    : QFrame(parent), m_siteFile(std::move(siteFile)), m_station(station), m_monitor(monitor) {
    setProperty("card", true);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(14, 12, 14, 12);
    auto* line = new QHBoxLayout;
    line->addWidget(label(say("When would this have fired?"), "heading", this));
    m_words = label({}, "muted", this);
    m_words->setObjectName(QStringLiteral("wouldHaveFired"));
    line->addWidget(m_words, 1);
    m_spans = new QComboBox(this);
    nameBox(*m_spans, say("Stretch of time"));
    m_spans->addItems({say("15 minutes"), say("1 hour"), say("6 hours"), say("1 day"), say("7 days"),
                       say("30 days"), say("1 year")});
    m_spans->setCurrentIndex(0);
    line->addWidget(m_spans);
    column->addLayout(line);
    m_chart = new Chart(this);
    column->addWidget(m_chart);
    auto* legend = label(
        say("Shaded: held.  △ would have fired.  ▲ fired.  Bars: waits.  Drag a dashed threshold to see "
            "the difference."),
        "muted", this);
    legend->setWordWrap(true);
    column->addWidget(legend);
    connect(m_spans, &QComboBox::currentIndexChanged, this, [this] {
        m_chart->setSpan(shownSpan(), m_now);
        if (!m_wanted.keys.empty() && m_now.secondsSinceReference() - span() < m_from) loadAll();
        tell();
    });
    m_chart->onScanned = [this] { tell(); };
}

ChartCard::~ChartCard() {
    *m_readTurn = ++m_turn;
}

double ChartCard::span() const {
    return kSpans[m_spans->currentIndex()];
}

// A history that has only begun is shown as large as it is.
double ChartCard::shownSpan() const {
    constexpr double kLeast = 60;
    if (m_columns->rows() == 0) return span();
    const double there = m_now.secondsSinceReference() - m_columns->times().front();
    return std::clamp(there * 1.04, std::min(kLeast, span()), span());
}

ChartCard::Wanted ChartCard::wantedBy(const ConditionPredicate* condition) {
    Wanted wanted;
    if (condition && condition->optionalTree()) keysOf(*condition->optionalTree(), wanted.keys, wanted.texts);
    return wanted;
}

void ChartCard::show(std::shared_ptr<ConditionPredicate> condition, ScanRule rule, Date now) {
    m_now = now;
    Wanted wanted = wantedBy(condition.get());
    m_chart->setSpan(shownSpan(), now);
    m_chart->setCondition(std::move(condition), rule);
    if (wanted != m_wanted) {
        m_wanted = std::move(wanted);
        return loadAll();
    }
    if (m_wanted.keys.empty()) return;
    const auto& times = m_columns->times();
    if (m_loading || now.secondsSinceReference() - m_asked < kAskEvery) return;
    times.empty() ? load(m_from, /*itself=*/true) : load(times.back(), /*itself=*/false);
}

void ChartCard::loadAll() {
    *m_readTurn = ++m_turn;
    m_loading = false;
    m_share.reset();
    if (m_wanted.keys.empty()) {
        m_columns = std::make_shared<Columns>();
        m_chart->setColumns(m_columns);
        return tell();
    }
    m_from = m_now.secondsSinceReference() - span();
    load(m_from, /*itself=*/true);
    tell();
}

void ChartCard::load(double from, bool itself) {
    m_loading = true;
    m_share.reset();
    m_asked = m_now.secondsSinceReference();
    const ChartQuery query{.siteFile = m_siteFile,
                           .station = m_station,
                           .monitor = m_monitor,
                           .keys = m_wanted.keys,
                           .texts = m_wanted.texts,
                           .since = Date(from),
                           .itself = itself,
                           .now = m_now};
    const auto onMain = [where = QPointer<ChartCard>(this)](std::function<void(ChartCard&)> call) {
        QMetaObject::invokeMethod(
            qApp,
            [where, call = std::move(call)] {
                if (where) call(*where);
            },
            Qt::QueuedConnection);
    };
    m_background.run([query, onMain, turn = m_turn, now = m_readTurn] {
        const auto goesOn = [&](double share) {
            onMain([turn, share](ChartCard& card) { card.progress(turn, share); });
            return *now == turn;
        };
        const auto rows = std::make_shared<ChartRows>(readChart(query, goesOn));
        onMain([turn, rows, all = query.itself](ChartCard& card) { card.take(turn, all, *rows); });
    });
}

void ChartCard::progress(std::uint64_t turn, double share) {
    if (turn != m_turn || !m_loading) return;
    m_share = share;
    tell();
}

void ChartCard::take(std::uint64_t turn, bool all, ChartRows& rows) {
    if (turn != m_turn) return;
    m_loading = false;
    m_share.reset();
    m_words->setToolTip(qt(rows.trouble));
    if (all) {
        m_columns = std::make_shared<Columns>(std::move(rows.columns));
        m_chart->setColumns(m_columns);
    } else if (rows.columns.rows() > 0) {
        m_columns->append(rows.columns);
        m_chart->columnsChanged();
    }
    m_chart->setFired(std::move(rows.fires));
    tell();
}

void ChartCard::tell() {
    const double since = m_now.secondsSinceReference() - span();
    const auto& fires = m_chart->result().fires;
    const auto count = fires.end() - std::lower_bound(fires.begin(), fires.end(), since);
    const QString words = m_share ? say("reading the history… %1 %").arg(static_cast<int>(*m_share * 100))
                          : m_loading && m_columns->rows() == 0 ? say("reading the history…")
                          : m_columns->rows() == 0              ? say("no history yet")
                          : count == 1                          ? say("once")
                                                                : say("%1 times").arg(count);
    if (m_words->text() != words) m_words->setText(words);
}

}  // namespace vigil
