#include "host/desktop/ConditionText.hpp"

#include <QAbstractTextDocumentLayout>
#include <QFontDatabase>
#include <QResizeEvent>
#include <QScrollBar>
#include <QTextBlock>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

#include "host/desktop/Theme.hpp"
#include "host/desktop/ToolButton.hpp"
#include "host/desktop/Words.hpp"

namespace vigil {
namespace {

constexpr int kBefore = 40, kBehind = 20;  // letters around a mistake
constexpr int kFewestBefore = 10;          // where a view is narrow
constexpr int kFewestLines = 2, kMostLines = 8;

/// Letters of the text's first bytes, which a mistake may cut in two.
int lettersOf(const std::string& text, std::size_t bytes) {
    return static_cast<int>(
        QString::fromUtf8(text.data(), static_cast<qsizetype>(std::min(bytes, text.size()))).size());
}

}  // namespace

QString caretText(const std::string& text, const SyntaxError& error, int letters) {
    const QString whole = qt(text).replace(QLatin1Char('\n'), QLatin1Char(' '));
    const int at = lettersOf(text, error.offset);
    const QString message = qt(error.message());
    const int room = letters - static_cast<int>(message.size()) - 3;
    const int begin = std::max(0, at - std::clamp(room, kFewestBefore, kBefore));
    const int end = std::min(static_cast<int>(whole.size()), at + kBehind);
    QString line = whole.mid(begin, end - begin);
    int column = at - begin;
    if (begin > 0) line = QStringLiteral("…") + line, ++column;
    if (end < whole.size()) line += QStringLiteral("…");
    return line + QLatin1Char('\n') + QString(column, QLatin1Char(' ')) + QStringLiteral("^ ") + message;
}

ConditionText::ConditionText(QWidget* parent) : QWidget(parent) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(4);
    QFont mono = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    mono.setPointSizeF(font().pointSizeF() * 0.94);
    m_text = new QPlainTextEdit(this);
    m_text->setObjectName(QStringLiteral("conditionText"));
    m_text->setAccessibleName(say("The whole condition as text"));
    m_text->setFont(mono);
    m_text->setTabChangesFocus(true);
    const auto fitSoon = [this] {
        QMetaObject::invokeMethod(
            this, [this] { fit(); }, Qt::QueuedConnection);
    };
    connect(m_text, &QPlainTextEdit::textChanged, this, fitSoon);
    connect(m_text->verticalScrollBar(), &QScrollBar::rangeChanged, this, fitSoon);
    m_text->setPlaceholderText(say("No condition: this monitor never fires."));
    m_mistake = new QLabel(this);
    m_mistake->setObjectName(QStringLiteral("mistake"));
    m_mistake->setProperty("role", QLatin1String("error"));
    m_mistake->setFont(mono);
    m_mistake->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_mistake->setMinimumWidth(1);
    m_mistake->hide();
    column->addWidget(m_text);
    column->addWidget(m_mistake);
    fit();
    connect(m_text, &QPlainTextEdit::textChanged, this, [this] { typed(); });
}

void ConditionText::show(const QString& text) {
    m_shown = text;
    if (m_text->hasFocus() || m_text->toPlainText() == text) return;
    m_showing = true;
    m_text->setPlainText(text);
    m_showing = false;
    mark(nullptr);
}

// As high as its lines are many, which a narrow view makes more.
void ConditionText::fit() {
    constexpr int kAround = 26;
    const QAbstractTextDocumentLayout& layout = *m_text->document()->documentLayout();
    int lines = 0;
    for (QTextBlock block = m_text->document()->begin(); block.isValid(); block = block.next()) {
        layout.blockBoundingRect(block);  // a block's lines are counted only when somebody asks where it is
        lines += block.lineCount();
    }
    const double line = QFontMetricsF(m_text->font()).lineSpacing();
    m_text->setFixedHeight(std::clamp(lines, kFewestLines, kMostLines) * static_cast<int>(std::ceil(line)) +
                           kAround);
}

void ConditionText::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (event->size().width() != event->oldSize().width()) fit();
}

void ConditionText::typed() {
    if (m_showing) return;
    const QString typed = m_text->toPlainText();
    if (typed.trimmed().isEmpty()) {
        mark(nullptr);
        if (onTyped) onTyped(nullptr);
        return;
    }
    // A text of several lines is one condition: a line's end stands for a blank.
    const std::string text = utf8(QString(typed).replace(QLatin1Char('\n'), QLatin1Char(' ')));
    const auto parsed = ConditionPredicate::predicateWithFormat(text);
    mark(parsed ? nullptr : &parsed.error());
    if (parsed && onTyped && qt(parsed.value()->printed()) != m_shown) onTyped(parsed.value());
}

void ConditionText::mark(const SyntaxError* error) {
    const std::string text = utf8(m_text->toPlainText());
    QList<QTextEdit::ExtraSelection> selections;
    if (error) {
        QTextEdit::ExtraSelection wrong;
        wrong.cursor = QTextCursor(m_text->document());
        const int begin = lettersOf(text, error->offset);
        const int end = std::max(lettersOf(text, error->offset + error->length), begin + 1);
        const int last = static_cast<int>(m_text->toPlainText().size());
        wrong.cursor.setPosition(std::min(begin, std::max(0, last - 1)));
        wrong.cursor.setPosition(std::min(end, last), QTextCursor::KeepAnchor);
        wrong.format.setUnderlineStyle(QTextCharFormat::WaveUnderline);
        wrong.format.setUnderlineColor(theme().bad);
        selections << wrong;
        m_mistake->setText(
            caretText(text, *error, width() / std::max(1, m_mistake->fontMetrics().averageCharWidth())));
    }
    m_text->setExtraSelections(selections);
    m_mistake->setVisible(error != nullptr);
    restyle(*m_text, "bad", error != nullptr);
}

}  // namespace vigil
