#include "host/desktop/RuleRow.hpp"

#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QToolButton>

#include "host/desktop/ControlViews.hpp"
#include "host/desktop/PopUpBox.hpp"
#include "host/desktop/ToolButton.hpp"
#include "host/desktop/Words.hpp"

namespace vigil {

RuleRow::RuleRow(RuleEditor& editor, std::int64_t row, const RuleRowCalls& calls, QWidget* parent)
    : QFrame(parent),
      m_calls(calls),
      m_row(row),
      m_criteria(editor.criteriaForRow(row)),
      m_values(editor.displayValuesForRow(row)) {
    setObjectName(QStringLiteral("ruleRow"));
    auto* lines = new QVBoxLayout(this);
    lines->setContentsMargins(0, 3, 0, 3);
    lines->setSpacing(1);
    auto* line = new QHBoxLayout;
    line->setSpacing(8);
    lines->addLayout(line);
    for (std::size_t column = 0; column < m_values.size(); ++column)
        addColumn(editor, column, *line);
    line->addStretch(1);
    m_result = label({}, "muted", this);
    m_result->setObjectName(QStringLiteral("result"));
    m_result->setContentsMargins(3, 0, 0, 0);
    m_result->setMinimumWidth(1);
    m_result->hide();
    lines->addWidget(m_result);
    addButton(*line, "up", "Move this action up", "up", m_calls.moveUp);
    addButton(*line, "down", "Move this action down", "down", m_calls.moveDown);
    addButton(*line, "play", "Test this action", "testRow", m_calls.test);
    addButton(*line, "trash", "Remove this action", "remove", m_calls.remove);
    m_remove = findChild<QToolButton*>(QStringLiteral("remove"));
}

void RuleRow::addButton(QHBoxLayout& line, const char* iconName, const char* name, const char* object,
                        std::function<void(std::int64_t)> call) {
    auto* button = bareButton(QLatin1String(iconName), say(name), this);
    button->setObjectName(QLatin1String(object));
    connect(button, &QToolButton::clicked, this, [this, call = std::move(call)] {
        if (call) call(m_row);
    });
    line.addWidget(button);
}

void RuleRow::addColumn(RuleEditor& editor, std::size_t column, QHBoxLayout& line) {
    const DisplayValue& value = m_values[column];
    if (const auto* field = std::get_if<std::shared_ptr<TextField>>(&value)) {
        auto* edit = new QLineEdit(this);
        edit->setMinimumWidth(fontMetrics().averageCharWidth() * 10);
        // A layout takes from what was stretched first.
        edit->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        edit->setAccessibleName(say("Text of the action"));
        edit->setPlaceholderText(stringValue(m_values[0]) == "Run script" ? say("script.sh and its arguments")
                                                                          : say("Text"));
        attach(*edit, *field, m_calls.edited);
        line.addWidget(edit, 4);
        return;
    }
    auto* box = new PopUpBox(this);
    // As wide as its longest words where there is room, and elided where there is not.
    box->setSmallest(6);
    line.addWidget(box);
    if (!m_first) m_first = box;
    if (const auto* popUp = std::get_if<std::shared_ptr<PopUpButton>>(&value)) {
        nameBox(*box, say("Sound"));
        attach(*box, *popUp, m_calls.edited);
        return;
    }
    nameBox(*box, column == 0 ? say("Action") : say("Choice"));
    const RuleEditorCell cell{m_row, static_cast<std::int64_t>(column)};
    const RuleEditorChoices choices = editor.choices(cell);
    for (const auto& choice : choices.choices) {
        if (const auto* text = std::get_if<std::string>(&choice.displayValue))
            box->addItem(qt(*text));
        else if (std::holds_alternative<std::shared_ptr<MenuItem>>(choice.displayValue))
            box->insertSeparator(box->count());
        else
            box->addItem(say("…"));
    }
    box->setOtherwise(qt(stringValue(value).value_or("")));
    box->setCurrentIndex(choices.chosen ? static_cast<int>(*choices.chosen) : -1);
    connect(box, &QComboBox::activated, this, [this, column](int choice) {
        if (choice >= 0) m_calls.choose({m_row, static_cast<std::int64_t>(column)}, choice);
    });
}

bool RuleRow::shows(const RuleEditor& editor, std::int64_t row) const {
    return editor.criteriaForRow(row) == m_criteria && editor.displayValuesForRow(row) == m_values;
}

void RuleRow::setRow(std::int64_t row, std::int64_t count) {
    m_row = row;
    m_remove->setEnabled(count > 1);
    findChild<QToolButton*>(QStringLiteral("up"))->setEnabled(row > 0);
    findChild<QToolButton*>(QStringLiteral("down"))->setEnabled(row + 1 < count);
    setAccessibleName(say("Action %1").arg(row + 1));
}

void RuleRow::setResult(const QString& words, bool failed) {
    m_resultWords = words;
    m_result->setToolTip(words);
    m_result->setAccessibleName(words);
    fitResult();
    m_result->setVisible(!words.isEmpty());
    restyle(*m_result, "role", QLatin1String(failed ? "error" : "muted"));
}

void RuleRow::fitResult() {
    const QString shown = m_result->fontMetrics().elidedText(m_resultWords, Qt::ElideRight, width() - 12);
    if (m_result->text() != shown) m_result->setText(shown);
}

void RuleRow::resizeEvent(QResizeEvent* event) {
    QFrame::resizeEvent(event);
    fitResult();
}

void RuleRow::keyPressEvent(QKeyEvent* event) {
    const bool alt = event->modifiers().testFlag(Qt::AltModifier);
    if (alt && event->key() == Qt::Key_Up) return m_calls.moveUp(m_row);
    if (alt && event->key() == Qt::Key_Down) return m_calls.moveDown(m_row);
    QFrame::keyPressEvent(event);
}

}  // namespace vigil
