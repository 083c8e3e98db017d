#pragma once

#include <cstdint>
#include <memory>

#include "platform/Controls.hpp"
#include "platform/Export.hpp"
#include "platform/NotificationCenter.hpp"
#include "platform/Object.hpp"

namespace vigil {

class RuleEditor;

/// The kind of row that a question is about; there are no others.
enum class RuleEditorRowType { Simple = 0 };

/// The name of what `ruleEditorRowsDidChange` is told; its object is the editor.
inline constexpr const char* kRuleEditorRowsDidChangeNotification = "RuleEditorRowsDidChangeNotification";

/// Whoever knows the tree that a rule editor's rows are paths through. The root of the tree is no node: the
/// questions about it come with an absent criterion. An answer may change the editor. Main thread.
class VIGIL_KIT RuleEditorDelegate {
  public:
    virtual ~RuleEditorDelegate();

    /// How many nodes a row may choose from behind `criterion`; 0 for a leaf.
    /// (Keyword form: ruleEditor:numberOfChildrenForCriterion:withRowType:)
    virtual std::int64_t ruleEditorNumberOfChildrenForCriterion(RuleEditor& editor,
                                                                const std::shared_ptr<Object>& criterion,
                                                                RuleEditorRowType rowType) = 0;
    /// The node at `index`, from 0 on. (Keyword form: ruleEditor:child:forCriterion:withRowType:)
    virtual std::shared_ptr<Object> ruleEditorChildForCriterion(RuleEditor& editor, std::int64_t index,
                                                                const std::shared_ptr<Object>& criterion,
                                                                RuleEditorRowType rowType) = 0;
    /// What the editor shows for the node in that row, 0 being the top one; controls are new ones on every
    /// call. (Keyword form: ruleEditor:displayValueForCriterion:inRow:)
    virtual DisplayValue ruleEditorDisplayValueForCriterion(RuleEditor& editor,
                                                            const std::shared_ptr<Object>& criterion,
                                                            std::int64_t row) = 0;
    /// A row was added, removed or replaced, or another node was chosen in one. Called before the changing
    /// call returns. (Keyword form: ruleEditorRowsDidChange:)
    virtual void ruleEditorRowsDidChange(const Notification& notification) = 0;
};

}  // namespace vigil
