#include <QDateTimeEdit>
#include <QLineEdit>

#include "host/desktop/ConditionRow.hpp"
#include "host/desktop/ToolButton.hpp"
#include "host/desktop/Words.hpp"

// The right side of a comparison: a number, a text, a date.

namespace vigil {
namespace {

constexpr std::size_t kText = 1, kDate = 2;  // as ComparisonLiteral counts them; 0 is a number

QDateTime dateTimeOf(Date date) {
    return QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(date.secondsSinceUnix() * 1000));
}

}  // namespace

void ConditionRow::setBad(const QString& why) {
    restyle(*m_value, "bad", !why.isEmpty());
    m_value->setToolTip(why);
}

void ConditionRow::makeValue(std::size_t kind) {
    delete m_value;
    m_kind = kind;
    const auto take = [this](const QString& text) {
        const auto taken = m_calls.setText(m_index, utf8(text));
        setBad(taken ? QString() : qt(taken.error().message));
    };
    if (kind == kDate) {
        auto* edit = new QDateTimeEdit(this);
        edit->setDisplayFormat(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
        edit->setCalendarPopup(true);
        connect(edit, &QDateTimeEdit::dateTimeChanged, this, [take](const QDateTime& when) {
            take(when.toUTC().toString(QStringLiteral("yyyy-MM-ddTHH:mm:ssZ")));
        });
        m_value = edit;
    } else if (kind == kText) {
        auto* box = new QComboBox(this);
        box->setEditable(true);
        box->setInsertPolicy(QComboBox::NoInsert);
        box->setMinimumWidth(120);
        connect(box, &QComboBox::editTextChanged, this, take);
        nameBox(*box, say("Value"));
        m_value = box;
    } else {
        auto* edit = new QLineEdit(this);
        edit->setAlignment(Qt::AlignRight);
        edit->setFixedWidth(fontMetrics().averageCharWidth() * 9);
        // Also what a screen reader puts in, which Qt does not call an edit.
        connect(edit, &QLineEdit::textChanged, this, take);
        connect(edit, &QLineEdit::editingFinished, this, [this, edit] {
            const QSignalBlocker quiet(edit);
            setBad({});
            edit->setText(qt(m_row.valueText));
        });
        m_value = edit;
    }
    m_value->setObjectName(QStringLiteral("value"));
    m_value->setAccessibleName(say("Value"));
    m_valuePlace->addWidget(m_value);
    QWidget::setTabOrder(m_popUps[1], m_value);
}

void ConditionRow::showValue() {
    if (!m_row.value) return;
    if (m_kind != m_row.value->index()) makeValue(m_row.value->index());
    const QString text = qt(m_row.valueText);
    if (auto* edit = qobject_cast<QLineEdit*>(m_value)) {
        const QSignalBlocker quiet(edit);
        // While somebody types, "1." stands although the model says 1.
        if (!edit->hasFocus() || !edit->isModified()) edit->setText(text);
    } else if (auto* box = qobject_cast<QComboBox*>(m_value)) {
        const QSignalBlocker quiet(box);
        if (box->count() == 0 && m_calls.valuesSeen)
            for (const std::string& value : m_calls.valuesSeen(keyOf(m_row.condition)))
                box->addItem(qt(value));
        if (box->currentText() != text) box->setEditText(text);
    } else if (auto* when = qobject_cast<QDateTimeEdit*>(m_value)) {
        const QSignalBlocker quiet(when);
        if (const Date* date = std::get_if<Date>(&*m_row.value)) when->setDateTime(dateTimeOf(*date));
    }
}

}  // namespace vigil
