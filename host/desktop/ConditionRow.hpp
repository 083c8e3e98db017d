#pragma once

#include <QComboBox>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <functional>
#include <memory>

#include "conditions/editor/PredicateEditor.hpp"
#include "host/desktop/PopUpBox.hpp"
#include "host/desktop/RowVerdict.hpp"

namespace vigil {

/// What a row asks of its editor; each is told which row asks.
struct ConditionRowCalls {
    std::function<void(std::size_t row, std::size_t popUp, std::size_t choice)> choose;
    std::function<Result<Done>(std::size_t row, const std::string& text)> setText;
    std::function<void(std::size_t row)> addRow, addGroup, remove, moveUp, moveDown;
    std::function<std::vector<std::string>(const std::string& key)> valuesSeen;
};

/// A line of a condition: a comparison with its verdict, or a group. Where it is narrow, a comparison's
/// reading stands below it. Main thread.
class ConditionRow : public QFrame {
  public:
    ConditionRow(const PredicateEditor& editor, const ConditionRowCalls& calls, bool isGroup,
                 QWidget* parent);

    /// Shows the model's row at that place.
    void show(const PredicateEditorRow& row, std::size_t index);
    /// Of a comparison.
    void judge(const Readings& readings, Date now);

    bool isGroup() const { return m_isGroup; }
    std::size_t index() const { return m_index; }
    const PredicateEditorRow& row() const { return m_row; }
    /// The first widget that takes keys.
    QWidget* firstField() const { return m_popUps[0]; }

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

  private:
    void makeGroup(QHBoxLayout& line);
    void makeComparison(QHBoxLayout& line);
    void addButton(QHBoxLayout& line, const char* icon, const char* name, const char* object,
                   std::function<void(std::size_t)> call);
    void fill(std::size_t popUp);
    void showValue();
    void makeValue(std::size_t kind);
    void setBad(const QString& why);
    void fitReading();

    const PredicateEditor& m_editor;
    const ConditionRowCalls& m_calls;
    const bool m_isGroup;
    std::size_t m_index = 0;
    PredicateEditorRow m_row;
    PopUpBox* m_popUps[2] = {nullptr, nullptr};
    QWidget* m_value = nullptr;
    std::size_t m_kind = static_cast<std::size_t>(-1);
    QHBoxLayout* m_valuePlace = nullptr;
    QLabel* m_unit = nullptr;
    QLabel* m_mark = nullptr;
    QLabel* m_reading = nullptr;
    QString m_now, m_age;  // of the reading
    QHBoxLayout* m_line = nullptr;
    QHBoxLayout* m_below = nullptr;  // the reading's place where a line has no room for it
    RowVerdict::Kind m_shown = RowVerdict::NoValue;
    bool m_judged = false;
    QPoint m_pressed;
};

/// What a dragged row is known by.
inline constexpr const char* kConditionRowMime = "application/x-vigil-condition-row";

}  // namespace vigil
