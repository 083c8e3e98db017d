#pragma once

#include <QVBoxLayout>
#include <QWidget>
#include <functional>
#include <memory>
#include <vector>

#include "host/desktop/RuleRow.hpp"
#include "platform/RuleEditor.hpp"

namespace vigil {

/// The rows of actions as people edit them. A view on a `RuleEditor`. Main thread.
class RuleView : public QWidget {
  public:
    explicit RuleView(QWidget* parent = nullptr);

    /// `edited` hears of every change that the user makes; `test` is asked to try one row.
    void attach(std::shared_ptr<RuleEditor> editor, std::function<void()> edited,
                std::function<void(std::int64_t)> test);
    /// While a test runs no other one begins.
    void setTesting(bool on);
    RuleRow* rowAt(std::int64_t row) const;
    const std::shared_ptr<RuleEditor>& editor() const { return m_editor; }

  private:
    void rebuild();
    void swap(std::int64_t row, std::int64_t other);

    std::shared_ptr<RuleEditor> m_editor;
    RuleRowCalls m_calls;
    std::shared_ptr<const void> m_changes;
    QVBoxLayout* m_lines;
    std::vector<RuleRow*> m_rows;
};

}  // namespace vigil
