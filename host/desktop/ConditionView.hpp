#pragma once

#include <QVBoxLayout>
#include <QWidget>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "conditions/editor/PredicateEditor.hpp"
#include "host/desktop/ConditionRow.hpp"
#include "host/desktop/ConditionText.hpp"

namespace vigil {

/// Steps back that an editor remembers.
inline constexpr std::size_t kUndoSteps = 200;

/// A condition's rows as people edit them, each with its reading and verdict, and the whole as text below.
/// A view on a `PredicateEditor`. Main thread.
class ConditionView : public QWidget {
  public:
    explicit ConditionView(QWidget* parent = nullptr);
    ~ConditionView() override;

    /// `replace` puts another condition in the place of the whole one (absent: none); `edited` hears of every
    /// change that the user makes.
    using Replace = std::function<void(std::shared_ptr<ConditionPredicate>)>;
    void attach(std::shared_ptr<PredicateEditor> editor, Replace replace, std::function<void()> edited);

    /// Marks the rows by these readings.
    void judge(const std::shared_ptr<const Readings>& readings, Date now);

    bool canUndo() const { return !m_undo.empty(); }
    bool canRedo() const { return !m_redo.empty(); }
    void undo() { step(m_undo, m_redo); }
    void redo() { step(m_redo, m_undo); }

    /// Gives a comparison, counted in the order of the rows, another number.
    void setNumber(std::size_t comparison, double value);
    ConditionRow* rowAt(std::size_t row) const;
    ConditionText& text() { return *m_text; }

  protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    ConditionRowCalls calls();
    void rebuild();
    void editedByModel();
    void replaceWith(std::shared_ptr<ConditionPredicate> condition);
    void note(const std::string& now, std::uint64_t typedInto);
    void step(std::vector<std::string>& from, std::vector<std::string>& to);
    void move(std::size_t row, bool up);
    void focusRow(std::size_t row);
    std::string printed() const;

    std::shared_ptr<PredicateEditor> m_editor;
    Replace m_replace;
    std::function<void()> m_edited;
    ConditionRowCalls m_calls;
    PredicateEditor::Token m_edits, m_changes;
    QVBoxLayout* m_lines;
    QWidget* m_empty;
    ConditionText* m_text;
    std::map<std::uint64_t, ConditionRow*> m_rows;
    std::vector<std::uint64_t> m_order;
    std::map<std::string, std::vector<std::string>> m_seen;  // values of text readings
    std::shared_ptr<const Readings> m_readings;
    Date m_now;
    std::vector<std::string> m_undo, m_redo;
    std::string m_last;
    std::uint64_t m_typedInto = 0;  // a row's id + 1, so that typing is one step
    std::uint64_t m_typing = 0;
    bool m_stepping = false;
};

}  // namespace vigil
