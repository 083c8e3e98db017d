#pragma once

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QWidget>

#include "host/desktop/LogBook.hpp"

namespace vigil {

/// The lines of a log, filtered by level and text. Main thread.
class LogView : public QWidget {
  public:
    explicit LogView(QWidget* parent = nullptr);
    /// The book outlives the view, or is replaced before; absent: none.
    void show(LogBook* book);
    /// Adds what is new.
    void refresh();
    /// Says how many of the log's lines found no way out of the program.
    void showLost(std::uint64_t lines);

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void filter();
    void append(const LogBook::Line& line);
    bool passes(const LogBook::Line& line) const;

    LogBook* m_book = nullptr;
    std::uint64_t m_seen = 0;
    QComboBox* m_level;
    QLineEdit* m_words;
    QLabel* m_lost;
    QPlainTextEdit* m_lines;
};

}  // namespace vigil
