#include "host/desktop/MonitorPane.hpp"

#include <QHBoxLayout>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

#include "host/desktop/Card.hpp"
#include "host/desktop/ConditionView.hpp"
#include "host/desktop/MonitorCards.hpp"
#include "host/desktop/ToolButton.hpp"
#include "host/desktop/Words.hpp"

namespace vigil {

MonitorPane::MonitorPane(SiteSession& session, RecordId plugIn, QWidget* parent)
    : QWidget(parent), m_session(session), m_id(plugIn) {
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->setSpacing(0);
    outer->addWidget(makeHeader());
    auto* scroll = new QScrollArea(this);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    auto* page = new QWidget(scroll);
    page->setProperty("plain", true);
    auto* column = new QVBoxLayout(page);
    column->setContentsMargins(18, 4, 18, 18);
    column->setSpacing(10);
    // While it is empty: all that it holds would be given its style once more.
    scroll->setWidget(page);
    if (HostedPlugIn* hosted = session.site().plugIn(plugIn)) m_plugIn = hosted->plugIn();
    auto view = InterfaceView::make(session, plugIn, page);
    if (view) {
        m_view = view.value();
        column->addWidget(m_view);
        makeChart(*page, *column);
    } else {
        auto* wrong = label(qt(view.error().message), "error", page);
        wrong->setWordWrap(true);
        column->addWidget(wrong);
    }
    column->addStretch(1);
    outer->addWidget(scroll, 1);
}

MonitorPane::~MonitorPane() = default;

QWidget* MonitorPane::makeHeader() {
    auto* header = new QWidget(this);
    m_header = header;
    auto* line = new QHBoxLayout(header);
    line->setContentsMargins(18, 12, 14, 4);
    line->setSpacing(8);
    m_title = label({}, "title", header);
    m_title->setTextInteractionFlags(Qt::NoTextInteraction);
    m_state = new QLabel(header);
    m_state->setProperty("chip", QLatin1String("calm"));
    m_state->setObjectName(QStringLiteral("monitorState"));
    m_title->setMinimumWidth(1);
    m_state->setMinimumWidth(1);
    line->addWidget(m_title);
    line->addWidget(m_state);
    line->addStretch(1);
    const auto add = [&](const char* iconName, const char* name, std::function<void()> call) {
        auto* button = bareButton(QLatin1String(iconName), say(name), header);
        connect(button, &QToolButton::clicked, this, std::move(call));
        line->addWidget(button);
        return button;
    };
    m_undo = add("undo", "Undo the last change of the condition", [this] {
        if (m_view && m_view->condition()) m_view->condition()->undo();
    });
    m_redo = add("redo", "Redo the change of the condition", [this] {
        if (m_view && m_view->condition()) m_view->condition()->redo();
    });
    add("edit", "Rename this monitor", [this] {
        if (onRename) onRename();
    });
    add("undock", "Show this monitor in a window of its own", [this] {
        if (onUndock) onUndock();
    });
    add("trash", "Delete this monitor", [this] {
        if (onDelete) onDelete();
    });
    return header;
}

void MonitorPane::refresh(const MonitorStatus& status, const std::shared_ptr<const Readings>& readings,
                          Date now) {
    const Card card = cardOf(status, now);
    m_titleWords = qt(status.title);
    m_stateWords = card.words;
    fitHeader();
    restyle(*m_state, "chip", QLatin1String(moodName(card.mood)));
    if (!m_view) return;
    const bool hasCondition = m_view->condition() != nullptr;
    m_undo->setEnabled(hasCondition && m_view->condition()->canUndo());
    m_redo->setEnabled(hasCondition && m_view->condition()->canRedo());
    m_view->refresh(readings, now);
    refreshChart(now);
}

// Long titles and states make the window no wider; both are whole under the mouse.
void MonitorPane::fitHeader() {
    const QMargins margins = m_header->layout()->contentsMargins();
    int room = m_header->width() - margins.left() - margins.right();
    for (const QToolButton* button : m_header->findChildren<QToolButton*>())
        room -= button->sizeHint().width() + m_header->layout()->spacing();
    constexpr int kAroundState = 36;  // its frame, and what stands between it and its neighbours
    room = std::max(room - kAroundState, 0);
    const auto put = [](QLabel& shown, const QString& words, int width) {
        const QString fitting = shown.fontMetrics().elidedText(words, Qt::ElideRight, width);
        if (shown.text() != fitting) shown.setText(fitting);
        shown.setToolTip(words);
        shown.setAccessibleName(words);
    };
    const int state = m_state->fontMetrics().horizontalAdvance(m_stateWords);
    put(*m_title, m_titleWords, std::max(room / 2, room - state));
    put(*m_state, m_stateWords, room - m_title->fontMetrics().horizontalAdvance(m_title->text()));
}

void MonitorPane::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    fitHeader();
}

void MonitorPane::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    HostedPlugIn* hosted = m_session.site().plugIn(m_id);
    if (hosted && hosted->plugIn() == m_plugIn)
        hosted->call([](QRVPlugIn& plugIn) { plugIn.viewWillAppear(); });
}

void MonitorPane::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    HostedPlugIn* hosted = m_session.site().plugIn(m_id);
    if (hosted && hosted->plugIn() == m_plugIn)
        hosted->call([](QRVPlugIn& plugIn) { plugIn.viewWillDisappear(); });
}

}  // namespace vigil
