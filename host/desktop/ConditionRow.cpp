#include "host/desktop/ConditionRow.hpp"

#include <QApplication>
#include <QDrag>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QToolButton>

#include "host/desktop/Icons.hpp"
#include "host/desktop/PopUpBox.hpp"
#include "host/desktop/Theme.hpp"
#include "host/desktop/ToolButton.hpp"
#include "host/desktop/Words.hpp"

namespace vigil {
namespace {

constexpr int kIndent = 22;

/// In letters of middle width: a view that is narrower has each comparison's reading below it. It is the
/// view's width and not what is left inside of a group, so that all rows of a condition look alike.
constexpr int kOneLineLetters = 78;

/// Of a pop-up's words, at the least.
constexpr int kFewestLetters = 4;

}  // namespace

ConditionRow::ConditionRow(const PredicateEditor& editor, const ConditionRowCalls& calls, bool isGroup,
                           QWidget* parent)
    : QFrame(parent), m_editor(editor), m_calls(calls), m_isGroup(isGroup) {
    auto* lines = new QVBoxLayout(this);
    lines->setContentsMargins(0, 3, 0, 3);
    lines->setSpacing(1);
    m_line = new QHBoxLayout;
    m_line->setSpacing(8);
    lines->addLayout(m_line);
    m_below = new QHBoxLayout;
    lines->addLayout(m_below);
    setObjectName(isGroup ? QStringLiteral("conditionGroup") : QStringLiteral("conditionRow"));
    for (std::size_t i = 0; i < (isGroup ? 1u : 2u); ++i) {
        m_popUps[i] = new PopUpBox(this);
        m_popUps[i]->setSizeAdjustPolicy(isGroup ? QComboBox::AdjustToContents
                                                 : QComboBox::AdjustToMinimumContentsLengthWithIcon);
        m_popUps[i]->setMinimumContentsLength(isGroup ? 0 : kFewestLetters);
        m_popUps[i]->setMaxVisibleItems(16);
        connect(m_popUps[i], &QComboBox::activated, this, [this, i](int choice) {
            if (choice >= 0) m_calls.choose(m_index, i, static_cast<std::size_t>(choice));
        });
    }
    if (isGroup)
        makeGroup(*m_line);
    else
        makeComparison(*m_line);
}

void ConditionRow::addButton(QHBoxLayout& line, const char* iconName, const char* name, const char* object,
                             std::function<void(std::size_t)> call) {
    auto* button = bareButton(QLatin1String(iconName), say(name), this);
    button->setObjectName(QLatin1String(object));
    connect(button, &QToolButton::clicked, this, [this, call = std::move(call)] { call(m_index); });
    line.addWidget(button);
}

void ConditionRow::makeGroup(QHBoxLayout& line) {
    m_popUps[0]->setObjectName(QStringLiteral("connective"));
    nameBox(*m_popUps[0], say("Of the rows below"));
    line.addWidget(m_popUps[0]);
    line.addWidget(label(say("must hold"), "muted", this));
    line.addStretch(1);
    addButton(line, "plus", "Add a comparison to this group", "addRow", m_calls.addRow);
    addButton(line, "group", "Add a group to this group", "addGroup", m_calls.addGroup);
    addButton(line, "trash", "Remove this group", "remove", m_calls.remove);
}

void ConditionRow::makeComparison(QHBoxLayout& line) {
    m_mark = new QLabel(this);
    m_mark->setObjectName(QStringLiteral("verdict"));
    const int side = fontMetrics().height() + 4;
    m_mark->setFixedSize(side, side);
    line.addWidget(m_mark);
    m_popUps[0]->setObjectName(QStringLiteral("reading"));
    nameBox(*m_popUps[0], say("Reading"));
    m_popUps[1]->setObjectName(QStringLiteral("operator"));
    nameBox(*m_popUps[1], say("Comparison"));
    for (QComboBox* popUp : m_popUps)
        popUp->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    m_popUps[0]->setMaximumWidth(fontMetrics().averageCharWidth() * 40);
    m_popUps[1]->setMaximumWidth(fontMetrics().averageCharWidth() * 34);
    line.addWidget(m_popUps[0], 4);
    line.addWidget(m_popUps[1], 4);
    m_valuePlace = new QHBoxLayout;
    line.addLayout(m_valuePlace);
    // What changes keeps its place, so that the columns of all rows stand below each other.
    m_unit = label({}, "muted", this);
    m_unit->setMinimumWidth(fontMetrics().averageCharWidth() * 5);
    line.addWidget(m_unit);
    m_reading = label({}, "muted", this);
    m_reading->setObjectName(QStringLiteral("now"));
    m_reading->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    line.addWidget(m_reading);
    addButton(line, "trash", "Remove this comparison", "remove", m_calls.remove);
}

void ConditionRow::fill(std::size_t popUp) {
    PopUpBox& box = *m_popUps[popUp];
    QStringList titles, shown;
    for (const std::string& title : m_editor.choices(m_index, popUp))
        titles << qt(title);
    for (int i = 0; i < box.count(); ++i)
        shown << box.itemText(i);
    const QSignalBlocker quiet(box);
    if (titles != shown) {
        box.clear();
        box.addItems(titles);
    }
    const auto& now = m_row.popUps[popUp];
    box.setOtherwise(now.chosen ? QString() : qt(now.shown));
    box.setCurrentIndex(now.chosen ? static_cast<int>(*now.chosen) : -1);
}

void ConditionRow::show(const PredicateEditorRow& row, std::size_t index) {
    m_row = row;
    m_index = index;
    m_judged = false;
    // The outermost group stands at the edge; each level inside is a bar further in.
    layout()->setContentsMargins(static_cast<int>(row.depth) * kIndent + 2, 3, 0, 3);
    for (std::size_t i = 0; i < row.popUps.size(); ++i)
        fill(i);
    if (!m_isGroup) return showValue();
    for (QToolButton* button : findChildren<QToolButton*>(QStringLiteral("remove")))
        button->setVisible(row.depth > 0);
}

void ConditionRow::judge(const Readings& readings, Date now) {
    if (m_isGroup) return;
    const RowVerdict verdict = verdictOf(m_row.condition, readings, now);
    if (!m_judged || verdict.kind != m_shown) {
        const QColor colour = verdict.kind == RowVerdict::Holds         ? theme().good
                              : verdict.kind == RowVerdict::DoesNotHold ? theme().muted
                                                                        : theme().warn;
        m_mark->setPixmap(iconPixmap(QLatin1String(verdictIcon(verdict.kind)), m_mark->width(), colour,
                                     devicePixelRatioF()));
        m_mark->setToolTip(verdictWords(verdict.kind));
        m_mark->setAccessibleName(verdictWords(verdict.kind));
        m_shown = verdict.kind;
        m_judged = true;
    }
    m_now = verdict.reading.isEmpty() ? say("no value") : verdict.reading;
    m_age = verdict.age;
    fitReading();
    const AgentProperty* reading = readings.objectForKey(keyOf(m_row.condition));
    const QString unit = reading && m_kind == 0 ? qt(reading->unit()) : QString();
    if (m_unit->text() != unit) m_unit->setText(unit);
}

void ConditionRow::fitReading() {
    if (m_isGroup) return;
    const int letter = fontMetrics().averageCharWidth();
    const bool narrow = width() < kOneLineLetters * letter;
    if (narrow != (m_below->indexOf(m_reading) >= 0)) {
        (narrow ? m_line : m_below)->removeWidget(m_reading);
        if (narrow)
            m_below->addWidget(m_reading, 1);
        else
            m_line->insertWidget(m_line->count() - 1, m_reading);
    }
    const int room = narrow ? width() - layout()->contentsMargins().left() : 17 * letter;
    m_reading->setMinimumWidth(narrow ? 1 : room);
    m_reading->setMaximumWidth(narrow ? QWIDGETSIZE_MAX : room);
    m_unit->setVisible(!narrow);
    const QString whole = m_age.isEmpty() ? m_now : m_now + QStringLiteral(" · ") + m_age;
    // Rather the reading alone than a part of it with its age.
    const bool fits = fontMetrics().horizontalAdvance(whole) <= room;
    const QString shown = fits ? whole : fontMetrics().elidedText(m_now, Qt::ElideRight, room);
    if (m_reading->text() != shown) m_reading->setText(shown);
    m_reading->setToolTip(whole);
}

void ConditionRow::resizeEvent(QResizeEvent* event) {
    QFrame::resizeEvent(event);
    fitReading();
}

// The sign is drawn anew in the colours of another theme.
void ConditionRow::changeEvent(QEvent* event) {
    QFrame::changeEvent(event);
    if (event->type() == QEvent::StyleChange) m_judged = false;
}

void ConditionRow::paintEvent(QPaintEvent* event) {
    QFrame::paintEvent(event);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme().accentSoft);
    for (std::size_t level = 1; level <= m_row.depth; ++level)
        painter.drawRect(QRectF((static_cast<double>(level) - 1) * kIndent + 7, 0, 3, height()));
}

void ConditionRow::keyPressEvent(QKeyEvent* event) {
    const bool alt = event->modifiers().testFlag(Qt::AltModifier);
    if (alt && event->key() == Qt::Key_Up) return m_calls.moveUp(m_index);
    if (alt && event->key() == Qt::Key_Down) return m_calls.moveDown(m_index);
    QFrame::keyPressEvent(event);
}

void ConditionRow::mousePressEvent(QMouseEvent* event) {
    m_pressed = event->pos();
}

void ConditionRow::mouseMoveEvent(QMouseEvent* event) {
    const bool far = (event->pos() - m_pressed).manhattanLength() >= QApplication::startDragDistance();
    if (!(event->buttons() & Qt::LeftButton) || !far || m_row.depth == 0) return;
    auto* carried = new QMimeData;
    carried->setData(QLatin1String(kConditionRowMime), QByteArray::number(static_cast<qulonglong>(m_index)));
    auto* drag = new QDrag(this);
    drag->setMimeData(carried);
    drag->setPixmap(grab());
    drag->exec(Qt::MoveAction);
}

}  // namespace vigil
