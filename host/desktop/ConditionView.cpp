#include "host/desktop/ConditionView.hpp"

#include <QDragEnterEvent>
#include <QMimeData>
#include <QPushButton>
#include <algorithm>

#include "host/desktop/ConditionTree.hpp"
#include "host/desktop/ToolButton.hpp"
#include "host/desktop/Words.hpp"

namespace vigil {

ConditionView::ConditionView(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("conditionView"));
    setAcceptDrops(true);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(10);
    m_lines = new QVBoxLayout;
    m_lines->setSpacing(0);
    column->addLayout(m_lines);
    m_empty = label(say("Nothing is compared yet. Add a comparison with +, or type a condition below."),
                    "muted", this);
    static_cast<QLabel*>(m_empty)->setWordWrap(true);
    column->addWidget(m_empty);
    m_text = new ConditionText(this);
    m_text->onTyped = [this](std::shared_ptr<ConditionPredicate> condition) {
        const std::string now = condition ? condition->printed() : std::string();
        if (now == m_last) return;
        note(now, /*typedInto=*/~std::uint64_t{0});
        replaceWith(std::move(condition));
    };
    column->addWidget(m_text);
}

ConditionView::~ConditionView() = default;

std::string ConditionView::printed() const {
    return m_editor && m_editor->objectValue() ? m_editor->objectValue()->printed() : std::string();
}

void ConditionView::attach(std::shared_ptr<PredicateEditor> editor, Replace replace,
                           std::function<void()> edited) {
    m_editor = std::move(editor);
    m_replace = std::move(replace);
    m_edited = std::move(edited);
    m_calls = calls();
    m_last = printed();
    m_edits = m_editor->observeEdits([this] { editedByModel(); });
    m_changes = m_editor->observe([this] { rebuild(); });
    rebuild();
}

void ConditionView::editedByModel() {
    if (const std::string now = printed(); now != m_last) note(now, m_typing);
    if (m_edited) m_edited();
}

// Typing into one field is one step, however many letters it takes.
void ConditionView::note(const std::string& now, std::uint64_t typedInto) {
    if (!m_stepping && (typedInto == 0 || typedInto != m_typedInto)) {
        m_undo.push_back(m_last);
        if (m_undo.size() > kUndoSteps) m_undo.erase(m_undo.begin());
    }
    if (!m_stepping) m_redo.clear();
    m_typedInto = typedInto;
    m_last = now;
}

void ConditionView::replaceWith(std::shared_ptr<ConditionPredicate> condition) {
    if (m_replace) m_replace(std::move(condition));
    if (m_edited) m_edited();
}

void ConditionView::step(std::vector<std::string>& from, std::vector<std::string>& to) {
    if (from.empty()) return;
    const std::string text = std::move(from.back());
    from.pop_back();
    to.push_back(m_last);
    m_last = text;
    m_typedInto = 0;
    m_stepping = true;
    const auto parsed = ConditionPredicate::predicateWithFormat(text);
    replaceWith(parsed ? parsed.value() : nullptr);
    m_stepping = false;
    m_text->show(qt(text));
}

ConditionRow* ConditionView::rowAt(std::size_t row) const {
    return row < m_order.size() ? m_rows.at(m_order[row]) : nullptr;
}

// Rows that stay keep their widgets, and so the place where somebody types.
void ConditionView::rebuild() {
    const auto rows = m_editor->rows();
    std::vector<std::uint64_t> order;
    for (const PredicateEditorRow& row : rows)
        order.push_back(row.id);
    for (auto known = m_rows.begin(); known != m_rows.end();) {
        // A condition that is shown anew counts its rows anew: a group may stand where a comparison did.
        const auto same = std::find(order.begin(), order.end(), known->first);
        if (same != order.end() &&
            rows[static_cast<std::size_t>(same - order.begin())].isGroup == known->second->isGroup()) {
            ++known;
            continue;
        }
        m_lines->removeWidget(known->second);
        known->second->hide();
        known->second->deleteLater();
        known = m_rows.erase(known);
    }
    QWidget* before = nullptr;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        ConditionRow*& row = m_rows[rows[i].id];
        const bool fresh = row == nullptr;
        if (fresh) row = new ConditionRow(*m_editor, m_calls, rows[i].isGroup, this);
        if (fresh || m_lines->indexOf(row) != static_cast<int>(i))
            m_lines->insertWidget(static_cast<int>(i), row);
        row->show(rows[i], i);
        if (m_readings) row->judge(*m_readings, m_now);
        if (fresh) row->setVisible(true);
        before = row;
    }
    static_cast<void>(before);
    m_order = std::move(order);
    m_empty->setVisible(!m_editor->objectValue());
    m_text->show(qt(printed()));
    if (!m_stepping && m_text->field().hasFocus() == false) m_last = printed();
}

void ConditionView::judge(const std::shared_ptr<const Readings>& readings, Date now) {
    m_readings = readings;
    m_now = now;
    constexpr std::size_t kValues = 50;
    for (const AgentProperty& reading : readings->entries()) {
        if (reading.type() != kTextType) continue;
        auto& values = m_seen[reading.propertyName()];
        const std::string value = reading.stringValue();
        if (values.size() < kValues && std::find(values.begin(), values.end(), value) == values.end())
            values.push_back(value);
    }
    for (const auto& [id, row] : m_rows)
        row->judge(*readings, now);
}

}  // namespace vigil
