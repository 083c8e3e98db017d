#include "host/desktop/RuleView.hpp"

#include <QToolButton>
#include <algorithm>

#include "host/desktop/ToolButton.hpp"
#include "host/desktop/Words.hpp"

namespace vigil {

RuleView::RuleView(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("ruleView"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(6);
    m_lines = new QVBoxLayout;
    m_lines->setSpacing(0);
    column->addLayout(m_lines);
    auto* add = wordButton(QStringLiteral("plus"), say("Add an action"), this);
    add->setObjectName(QStringLiteral("addAction"));
    connect(add, &QToolButton::clicked, this, [this] {
        if (!m_editor || !m_editor->addRow(nullptr)) return;
        if (RuleRow* row = rowAt(m_editor->numberOfRows() - 1))
            row->firstField()->setFocus(Qt::OtherFocusReason);
    });
    column->addWidget(add, 0, Qt::AlignLeft);
}

void RuleView::attach(std::shared_ptr<RuleEditor> editor, std::function<void()> edited,
                      std::function<void(std::int64_t)> test) {
    m_editor = std::move(editor);
    m_calls.edited = edited;
    m_calls.test = std::move(test);
    m_calls.choose = [this](RuleEditorCell cell, std::int64_t choice) {
        if (!m_editor->choose(cell, choice)) return;
        if (RuleRow* row = rowAt(cell.row)) row->firstField()->setFocus(Qt::OtherFocusReason);
    };
    m_calls.remove = [this](std::int64_t row) {
        if (!m_editor->removeRowAtIndex(row)) return;
        if (RuleRow* next = rowAt(std::min(row, m_editor->numberOfRows() - 1)))
            next->firstField()->setFocus(Qt::OtherFocusReason);
    };
    m_calls.moveUp = [this](std::int64_t row) { swap(row, row - 1); };
    m_calls.moveDown = [this](std::int64_t row) { swap(row, row + 1); };
    m_changes = m_editor->observe([this, edited] {
        rebuild();
        if (edited) edited();
    });
    rebuild();
}

void RuleView::setTesting(bool on) {
    for (QToolButton* button : findChildren<QToolButton*>(QStringLiteral("testRow")))
        button->setEnabled(!on);
}

RuleRow* RuleView::rowAt(std::int64_t row) const {
    const auto index = static_cast<std::size_t>(row);
    return row >= 0 && index < m_rows.size() ? m_rows[index] : nullptr;
}

// Both rows keep their nodes and controls, in each other's place.
void RuleView::swap(std::int64_t row, std::int64_t other) {
    if (other < 0 || other >= m_editor->numberOfRows()) return;
    auto criteria = m_editor->criteriaForRow(row);
    auto values = m_editor->displayValuesForRow(row);
    m_editor->setCriteria(m_editor->criteriaForRow(other), m_editor->displayValuesForRow(other), row);
    m_editor->setCriteria(std::move(criteria), std::move(values), other);
    if (RuleRow* moved = rowAt(other)) moved->firstField()->setFocus(Qt::OtherFocusReason);
}

// A row that shows what it showed keeps its widgets, and so the place where somebody types.
void RuleView::rebuild() {
    std::vector<RuleRow*> before = std::move(m_rows);
    m_rows.clear();
    const std::int64_t count = m_editor->numberOfRows();
    for (std::int64_t row = 0; row < count; ++row) {
        const auto same = std::find_if(before.begin(), before.end(),
                                       [&](const RuleRow* known) { return known->shows(*m_editor, row); });
        RuleRow* shown = nullptr;
        if (same != before.end()) {
            shown = *same;
            before.erase(same);
        } else {
            shown = new RuleRow(*m_editor, row, m_calls, this);
        }
        if (m_lines->indexOf(shown) != static_cast<int>(row))
            m_lines->insertWidget(static_cast<int>(row), shown);
        shown->setRow(row, count);
        shown->setVisible(true);
        m_rows.push_back(shown);
    }
    for (RuleRow* gone : before) {
        m_lines->removeWidget(gone);
        gone->hide();
        gone->deleteLater();
    }
}

}  // namespace vigil
