#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "conditions/ConditionPredicate.hpp"
#include "conditions/Limits.hpp"
#include "conditions/editor/PredicateEditorMenu.hpp"
#include "conditions/editor/PredicateEditorRowTemplate.hpp"
#include "conditions/editor/PredicateEditorRows.hpp"
#include "platform/Export.hpp"
#include "platform/Object.hpp"
#include "platform/Property.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// The most rows that an editor takes. Every condition that the language accepts has fewer; against a driver
/// that adds without end.
inline constexpr std::size_t kPredicateEditorRows = 100'000;
/// The deepest group that can be added, the outermost one being at 0: what still prints and reads back.
inline constexpr std::size_t kPredicateEditorDepth = kMaxParenthesisDepth;

/// One row as a view shows it.
struct PredicateEditorRow {
    /// A choice among several.
    struct PopUp {
        std::string shown;                  ///< the title of the choice, also of one that is not offered
        std::optional<std::size_t> chosen;  ///< among `choices`; nothing when it is not offered
    };

    std::uint64_t id = 0;  ///< the same for the same row, from change to change
    bool isGroup = false;
    std::size_t depth = 0;                   ///< 0 for the outermost group, which is row 0
    std::size_t group = 0;                   ///< the row of the group around it; row 0 names itself
    std::size_t position = 0;                ///< among the parts of that group
    std::vector<PopUp> popUps;               ///< of a group: its connective; else the reading, the operator
    std::optional<ComparisonLiteral> value;  ///< nothing in a group
    std::string valueText;                   ///< as people read and type it
    std::string condition;                   ///< the comparison as the language says it; empty in a group
};

/// A condition as rows that people edit. A model: the window shows it, a command drives it. Made as a shared
/// object. Main thread.
///
/// Any condition can be shown, also one that the templates do not offer: such a row keeps what it says until
/// somebody chooses something else in it. Rows are counted from 0 in the order of the list; an index outside
/// it throws std::out_of_range and changes nothing. An edit that would give no condition is refused with a
/// sentence and changes nothing. Each change is whole before anybody hears of it, and whoever hears of one
/// may make another: who hears of both then sees the later state twice.
class VIGIL_KIT PredicateEditor : public Object, public std::enable_shared_from_this<PredicateEditor> {
  public:
    using Templates = PredicateEditorMenu::Templates;
    using Call = std::function<void()>;
    using Token = std::shared_ptr<const void>;

    PredicateEditor();
    ~PredicateEditor() override;
    std::string className() const override;

    /// What rows can be made of, in menu order; the rows that stand keep what they say. What is changed in a
    /// template afterwards does not show. No edit. (Keyword form: setRowTemplates:)
    void setRowTemplates(Templates rowTemplates);
    const Templates& rowTemplates() const { return m_templates; }

    /// Shows a condition, or none. No edit. One that is equal to the present value leaves the rows as they
    /// are, groups without parts included. (Keyword form: setObjectValue:)
    void setObjectValue(std::shared_ptr<ConditionPredicate> condition);
    /// What the rows say; absent when they hold no comparison.
    const std::shared_ptr<ConditionPredicate>& objectValue() const { return m_value; }

    std::size_t numberOfRows() const { return m_rows.size(); }
    std::vector<PredicateEditorRow> rows() const;
    /// The titles that a pop-up of a row offers.
    std::vector<std::string> choices(std::size_t row, std::size_t popUp) const;

    /// Adds a comparison as the part at `position` of a group, with the first reading and operator offered.
    Result<Done> addRow(std::size_t group, std::size_t position);
    /// Adds a group without parts, which says nothing until it has some.
    Result<Done> addGroup(std::size_t group, std::size_t position);
    /// Removes a row with all that belongs to it. The outermost group stays.
    Result<Done> removeRow(std::size_t row);
    /// Chooses in a pop-up. Another reading of the same kind keeps operator and value; one of another kind
    /// keeps the operator where that is offered for it, and starts with a value of its kind.
    Result<Done> choose(std::size_t row, std::size_t popUp, std::size_t choice);
    Result<Done> setValue(std::size_t row, ComparisonLiteral value);
    /// The value as people type it; the text that is shown already changes nothing.
    Result<Done> setValueText(std::size_t row, std::string_view text);

    /// Calls back after every edit, that is, after every change that one of the six operations above made, as
    /// long as the token lives.
    [[nodiscard]] Token observeEdits(Call call) { return m_edits.observe(std::move(call)); }
    /// The same after every change of rows or templates, behind those who hear of edits; what a view redraws
    /// by.
    [[nodiscard]] Token observe(Call call) { return m_changes.observe(std::move(call)); }

  private:
    using Row = PredicateEditorRows::Row;

    Connective initialConnective() const;
    std::optional<std::size_t> chosen(const Row& row, std::size_t popUp) const;
    PredicateEditorRow described(const Row& row) const;
    Result<Done> insert(std::size_t group, std::size_t position, Row row);
    Result<Done> edit(PredicateEditorRows rows);
    const Row& rowAt(std::size_t row) const;

    Templates m_templates;
    PredicateEditorMenu m_menu;
    PredicateEditorRows m_rows;
    std::shared_ptr<ConditionPredicate> m_value;
    Property<bool> m_edits;  // the values of both mean nothing
    Property<bool> m_changes;
};

}  // namespace vigil
