#pragma once

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <functional>
#include <memory>

#include "platform/RuleEditor.hpp"

namespace vigil {

/// What a row of actions asks of its view.
struct RuleRowCalls {
    std::function<void(std::int64_t row)> remove, moveUp, moveDown, test;
    std::function<void(RuleEditorCell cell, std::int64_t choice)> choose;
    std::function<void()> edited;
};

/// One row of actions: a pop-up or a control a column, and below them what came of its last test. Main
/// thread.
class RuleRow : public QFrame {
  public:
    RuleRow(RuleEditor& editor, std::int64_t row, const RuleRowCalls& calls, QWidget* parent);

    /// Whether it shows these very nodes and controls.
    bool shows(const RuleEditor& editor, std::int64_t row) const;
    void setRow(std::int64_t row, std::int64_t count);
    QWidget* firstField() const { return m_first; }
    /// What came of its last test; empty takes that away.
    void setResult(const QString& words, bool failed);

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void addColumn(RuleEditor& editor, std::size_t column, QHBoxLayout& line);
    void addButton(QHBoxLayout& line, const char* icon, const char* name, const char* object,
                   std::function<void(std::int64_t)> call);
    void fitResult();

    const RuleRowCalls& m_calls;
    std::int64_t m_row;
    RuleEditor::Criteria m_criteria;
    RuleEditor::DisplayValues m_values;
    QWidget* m_first = nullptr;
    QWidget* m_remove = nullptr;
    QLabel* m_result = nullptr;
    QString m_resultWords;
};

}  // namespace vigil
