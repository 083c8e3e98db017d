#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "platform/Controls.hpp"
#include "platform/Export.hpp"
#include "platform/Object.hpp"
#include "platform/Property.hpp"
#include "platform/RuleEditorDelegate.hpp"

namespace vigil {

inline constexpr std::size_t kRuleEditorRows =
    1000;  ///< against a delegate that adds one for each it hears of
inline constexpr std::size_t kRuleEditorColumns = 32;  ///< against a tree without an end
/// Nodes of one column that are offered, further ones are not; against a delegate that counts without an end.
inline constexpr std::int64_t kRuleEditorChoices = 10'000;

/// How rows hang together: at most one row, or one flat list of them.
enum class RuleEditorNestingMode { Single = 0, List = 1 };

/// A place in a row, counted from the top and from the left, from 0 on.
struct RuleEditorCell {
    std::int64_t row = 0;
    std::int64_t column = 0;
};

/// What a column of a row offers.
struct RuleEditorChoices {
    struct Choice {
        std::shared_ptr<Object> criterion;
        DisplayValue displayValue;
    };
    std::vector<Choice> choices;
    /// Which of them the row has chosen; nothing when it holds a node that is not offered (any more), or
    /// none.
    std::optional<std::size_t> chosen;
};

/// A list of rows, each a path through the delegate's tree from a root to a leaf, with one display value a
/// node. A model: the window shows it, a command drives it. Made as a shared object. Main thread.
///
/// A row keeps the nodes and the controls it was given; the editor never swaps one for another that only
/// looks alike. Every index outside the rows throws std::out_of_range and changes nothing. Each change is
/// whole before anybody hears of it: first the delegate, then the views. A change that is made inside a
/// delegate's answer stands; where the two touch the same row, the outer one is dropped.
class VIGIL_KIT RuleEditor : public Object, public std::enable_shared_from_this<RuleEditor> {
  public:
    using Criteria = std::vector<std::shared_ptr<Object>>;
    using DisplayValues = std::vector<DisplayValue>;

    std::string className() const override;

    /// Held weakly. Without one there is nothing to choose from, so no row can be added.
    void setDelegate(const std::shared_ptr<RuleEditorDelegate>& delegate) { m_delegate = delegate; }
    std::shared_ptr<RuleEditorDelegate> delegate() const { return m_delegate.lock(); }

    /// Single at first. A change leaves the rows that stand.
    void setNestingMode(RuleEditorNestingMode mode) { m_nestingMode = mode; }
    RuleEditorNestingMode nestingMode() const { return m_nestingMode; }
    /// True at first. With false the last row cannot be removed.
    void setCanRemoveAllRows(bool flag) { m_canRemoveAllRows = flag; }
    bool canRemoveAllRows() const { return m_canRemoveAllRows; }

    std::int64_t numberOfRows() const { return static_cast<std::int64_t>(m_rows.size()); }
    /// The row's nodes, its root first.
    Criteria criteriaForRow(std::int64_t row) const;
    /// The row's display values, the controls being the row's own.
    DisplayValues displayValuesForRow(std::int64_t row) const;

    /// Appends a row with default choices: in each column the first node that is no separator, down to a
    /// leaf. False where that leads nowhere, or no further row may stand; nothing is then changed. Who asks
    /// makes no difference. (Keyword form: addRow:)
    bool addRow(const Object* sender);
    /// The same at a place; `index` may be `numberOfRows()`.
    bool insertRowAtIndex(std::int64_t index);
    /// False for the last row where one has to remain.
    bool removeRowAtIndex(std::int64_t index);
    /// Replaces both parts of a row by these very objects, also where the delegate knows of none of them.
    /// More than `kRuleEditorColumns` of either are std::length_error.
    /// (Keyword form: setCriteria:andDisplayValues:forRowAtIndex:)
    void setCriteria(Criteria criteria, DisplayValues displayValues, std::int64_t row);

    /// What the cell offers, asked of the delegate anew. The node that the row has chosen, found by identity
    /// and else by `isEqual`, comes as the row's own node with the row's own control. The column behind the
    /// row's last one has choices where that is no leaf; one further on throws std::out_of_range.
    RuleEditorChoices choices(RuleEditorCell cell);
    /// Chooses the node at `index` of what the cell offers, and default choices behind it; the columns before
    /// keep their nodes and controls. False, with nothing changed, for the node that is chosen already, for a
    /// separator, and where the choice leads nowhere.
    bool choose(RuleEditorCell cell, std::int64_t index);
    /// Tells the editor that the delegate's tree has changed. Rows keep what they have; one that no longer
    /// ends at a leaf gets default choices behind. Views ask for the choices anew.
    void reloadCriteria();

    /// Calls back after every change while the token lives; what a view redraws by.
    [[nodiscard]] std::shared_ptr<const void> observe(std::function<void()> call) {
        return m_changes.observe(std::move(call));
    }

  private:
    /// Replaced whole by every change, so whoever still holds an earlier one can tell.
    struct Row {
        std::uint64_t id;  ///< stays the same from change to change
        Criteria criteria;
        DisplayValues displayValues;
    };
    using RowPointer = std::shared_ptr<const Row>;

    const RowPointer& rowAt(std::int64_t row) const;
    bool mayAdd() const;
    bool replace(const RowPointer& before, Row after);
    std::int64_t numberOfChildren(RuleEditorDelegate& delegate, const std::shared_ptr<Object>& criterion);
    Criteria children(RuleEditorDelegate& delegate, const std::shared_ptr<Object>& criterion);
    bool complete(RuleEditorDelegate& delegate, Row& row, std::int64_t index);
    void rowsDidChange();

    std::weak_ptr<RuleEditorDelegate> m_delegate;
    RuleEditorNestingMode m_nestingMode = RuleEditorNestingMode::Single;
    bool m_canRemoveAllRows = true;
    std::vector<RowPointer> m_rows;
    std::uint64_t m_nextId = 0;
    Property<bool> m_changes;  // its value means nothing
};

}  // namespace vigil
