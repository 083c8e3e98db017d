#include "host/desktop/LogView.hpp"

#include <QAction>
#include <QEvent>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "host/desktop/Icons.hpp"
#include "host/desktop/Theme.hpp"
#include "host/desktop/ToolButton.hpp"
#include "host/desktop/Words.hpp"
#include "host/kit/StandardLog.hpp"

namespace vigil {

LogView::LogView(QWidget* parent) : QWidget(parent) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(12, 8, 12, 12);
    column->setSpacing(8);
    auto* line = new QHBoxLayout;
    m_level = new QComboBox(this);
    m_level->addItems({say("Problems"), say("Notices too"), say("Every judgement")});
    m_level->setCurrentIndex(1);
    nameBox(*m_level, say("Level of the log"));
    m_words = new QLineEdit(this);
    m_words->setPlaceholderText(say("Lines that hold…"));
    // The line's own button takes the desktop's theme of pictures into memory.
    QAction* clear = m_words->addAction(icon(QStringLiteral("clear")), QLineEdit::TrailingPosition);
    clear->setText(say("Clear the filter"));
    clear->setVisible(false);
    connect(clear, &QAction::triggered, m_words, &QLineEdit::clear);
    m_words->setAccessibleName(say("Filter of the log"));
    line->addWidget(m_level);
    line->addWidget(m_words, 1);
    column->addLayout(line);
    m_lost = label({}, "error", this);
    m_lost->setObjectName(QStringLiteral("lostLines"));
    m_lost->setWordWrap(true);
    m_lost->hide();
    column->addWidget(m_lost);
    m_lines = new QPlainTextEdit(this);
    m_lines->setReadOnly(true);
    m_lines->setMinimumHeight(2 * fontMetrics().height());
    m_lines->setMaximumBlockCount(static_cast<int>(kLogBookLines));
    m_lines->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_lines->setAccessibleName(say("Log"));
    m_lines->setProperty("quiet", true);
    m_lines->setTabChangesFocus(true);
    column->addWidget(m_lines, 1);
    connect(m_level, &QComboBox::currentIndexChanged, this, [this](int index) {
        if (m_book) m_book->setHighestLevel(std::max(kLogNotice, index + 1));
        filter();
    });
    connect(m_words, &QLineEdit::textChanged, this, [this, clear](const QString& words) {
        clear->setVisible(!words.isEmpty());
        filter();
    });
}

void LogView::show(LogBook* book) {
    m_book = book;
    filter();
}

void LogView::showLost(std::uint64_t lines) {
    m_lost->setVisible(lines > 0);
    if (lines == 0) return;
    m_lost->setText(lines == 1
                        ? say("A line of the log could not be written outside the window; it stands here.")
                        : say("%1 lines of the log could not be written outside the window; they stand here.")
                              .arg(lines));
}

// The colours of lines are the theme's.
void LogView::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::StyleChange) filter();
}

bool LogView::passes(const LogBook::Line& line) const {
    if (line.level > m_level->currentIndex() + 1) return false;
    return m_words->text().isEmpty() || qt(line.message).contains(m_words->text(), Qt::CaseInsensitive);
}

void LogView::append(const LogBook::Line& line) {
    const QString words = momentText(line.when, line.when) + QStringLiteral("   ") +
                          qt(line.message).replace(QLatin1Char('\n'), QLatin1String("\\n"));
    QTextCharFormat format;
    format.setForeground(line.level == kLogProblem ? theme().bad : theme().text);
    QTextCursor cursor(m_lines->document());
    cursor.movePosition(QTextCursor::End);
    if (!m_lines->document()->isEmpty()) cursor.insertBlock();
    cursor.insertText(line.level == kLogProblem ? QStringLiteral("! ") + words : words, format);
}

void LogView::filter() {
    m_lines->clear();
    m_seen = 0;
    refresh();
}

void LogView::refresh() {
    if (!m_book) return;
    for (const LogBook::Line& line : m_book->since(m_seen)) {
        m_seen = line.number;
        if (passes(line)) append(line);
    }
}

}  // namespace vigil
