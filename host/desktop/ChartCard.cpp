#include "host/desktop/ChartCard.hpp"

#include <QHBoxLayout>
#include <QPointer>
#include <QVBoxLayout>
#include <algorithm>

#include "host/desktop/ControlViews.hpp"
#include "host/desktop/ToolButton.hpp"
#include "host/desktop/Words.hpp"
#include "host/site/HistoryReader.hpp"

namespace vigil {
namespace {

/// The history is asked for news so often, in seconds.
constexpr double kAskEvery = 2;
constexpr double kSpans[] = {900, 3600, 6 * 3600, 86400, 7 * 86400, 30 * 86400, 365.0 * 86400};

// The parser bounds the depth.
void keysOf(const ConditionNode& node, std::vector<std::string>& keys) {
    if (const Comparison* comparison = node.comparison())
        if (std::find(keys.begin(), keys.end(), comparison->key) == keys.end())
            keys.push_back(comparison->key);
    for (const ConditionNode& part : node.parts())
        keysOf(part, keys);
}

}  // namespace

/// What was read in one go.
struct ChartCard::Block {
    std::uint64_t turn = 0;
    Columns columns;
    std::vector<double> fires;
    bool fresh = false;
    std::string trouble;
};

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
    auto* legend =
        label(say("Shaded: it held.  △ it would have fired.  ▲ it did.  Bars: it waits.  Drag a dashed "
                  "threshold to see the difference."),
              "muted", this);
    legend->setWordWrap(true);
    column->addWidget(legend);
    connect(m_spans, &QComboBox::currentIndexChanged, this, [this] {
        m_chart->setSpan(shownSpan(), m_now);
        if (m_now.secondsSinceReference() - span() < m_from) m_keys.clear();
        tell();
    });
    m_chart->onScanned = [this] { tell(); };
}

ChartCard::~ChartCard() = default;

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

void ChartCard::show(std::shared_ptr<ConditionPredicate> condition, ScanRule rule, Date now) {
    m_now = now;
    std::vector<std::string> keys;
    if (condition && condition->optionalTree()) keysOf(*condition->optionalTree(), keys);
    m_chart->setSpan(shownSpan(), now);
    m_chart->setCondition(std::move(condition), rule);
    const double time = now.secondsSinceReference();
    if (keys != m_keys) {
        m_keys = std::move(keys);
        ++m_turn;
        m_loading = false;
        m_from = time - span();
        return load(m_from);
    }
    if (m_keys.empty()) return;
    const auto& times = m_columns->times();
    if (!m_loading && time - m_asked >= kAskEvery) load(times.empty() ? m_from : times.back());
}

void ChartCard::load(double from) {
    m_loading = true;
    m_asked = m_now.secondsSinceReference();
    const bool fresh = from == m_from;
    const HistoryRange range{.since = Date(from)};
    const auto read = [range, fresh, keys = m_keys, file = m_siteFile, station = m_station,
                       monitor = m_monitor, turn = m_turn, from] {
        Block block{turn, Columns(keys, /*texts=*/true), {}, fresh, {}};
        auto reader = HistoryReader::open(file);
        auto source = reader ? reader.value()->source(station, range)
                             : Result<std::unique_ptr<HistorySource>>(reader.error());
        if (!source) {
            block.trouble = source.error().message;
            return block;
        }
        for (auto next = source.value()->next(); !next || next.value(); next = source.value()->next())
            // What was read already comes again: from that moment on, itself included.
            if (next && (fresh || next.value()->started.secondsSinceReference() > from))
                block.columns.append(next.value()->started, *next.value()->readings);
        if (const auto fires = reader.value()->fires(monitor))
            for (const StoredFire& fire : fires.value())
                block.fires.push_back(fire.started.secondsSinceReference());
        return block;
    };
    m_background.run([read, where = QPointer<ChartCard>(this)] {
        const auto block = std::make_shared<Block>(read());
        QMetaObject::invokeMethod(
            qApp,
            [where, block] {
                if (where) where->take(*block);
            },
            Qt::QueuedConnection);
    });
}

void ChartCard::take(const Block& block) {
    if (block.turn != m_turn) return;
    m_loading = false;
    m_words->setToolTip(qt(block.trouble));
    if (block.fresh) {
        m_columns = std::make_shared<Columns>(block.columns);
        m_chart->setColumns(m_columns);
    } else if (block.columns.rows() > 0) {
        m_columns->append(block.columns);
        m_chart->columnsChanged();
    }
    m_chart->setFired(block.fires);
}

void ChartCard::tell() {
    const double since = m_now.secondsSinceReference() - span();
    const auto& fires = m_chart->result().fires;
    const auto count = fires.end() - std::lower_bound(fires.begin(), fires.end(), since);
    const QString words = m_loading && m_columns->rows() == 0 ? say("reading the history…")
                          : m_columns->rows() == 0            ? say("no history yet")
                          : count == 1                        ? say("once")
                                                              : say("%1 times").arg(count);
    if (m_words->text() != words) m_words->setText(words);
}

}  // namespace vigil
