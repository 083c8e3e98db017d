#pragma once

#include <QLabel>
#include <QPlainTextEdit>
#include <functional>
#include <memory>

#include "conditions/ConditionPredicate.hpp"

namespace vigil {

/// A whole condition as text that may be typed: a mistake is told where it is, and what says a condition is
/// taken. Main thread.
class ConditionText : public QWidget {
  public:
    explicit ConditionText(QWidget* parent = nullptr);

    /// Shows the condition unless somebody types; an empty text is none.
    void show(const QString& text);
    /// Gets what was typed, once it says a condition; absent for an empty text.
    std::function<void(std::shared_ptr<ConditionPredicate>)> onTyped;
    QPlainTextEdit& field() { return *m_text; }

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    void fit();
    void typed();
    void mark(const SyntaxError* error);

    QPlainTextEdit* m_text;
    QLabel* m_mistake;
    QString m_shown;
    bool m_showing = false;
};

/// What is wrong, with a caret under the place, in two lines of equal letters. With less room than `letters`
/// a line, less of what stands before the mistake is shown.
QString caretText(const std::string& text, const SyntaxError& error, int letters = 200);

}  // namespace vigil
