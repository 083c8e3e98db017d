#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/RuleEditor.hpp"
#include "platform/RuleEditorDelegate.hpp"

// A tree for rule editors that a test writes down, and a delegate that knows it. Main thread.

namespace vigil::test {

/// Equal to any other of its name; one without a name equals nothing.
struct RuleNode : Object {
    enum class Shows { Name, Field, Separator };

    std::string className() const override;
    bool isEqual(const Object* other) const override;

    std::string name;
    Shows shows = Shows::Name;
    std::vector<std::shared_ptr<RuleNode>> children;
};

using RuleNodes = std::vector<std::shared_ptr<RuleNode>>;

std::shared_ptr<RuleNode> ruleNode(std::string name, RuleNodes children = {});
std::shared_ptr<RuleNode> ruleField();
std::shared_ptr<RuleNode> ruleSeparator();

/// Answers from `roots` and counts what it hears.
class FakeRules : public RuleEditorDelegate {
  public:
    std::int64_t ruleEditorNumberOfChildrenForCriterion(RuleEditor& editor,
                                                        const std::shared_ptr<Object>& criterion,
                                                        RuleEditorRowType rowType) override;
    std::shared_ptr<Object> ruleEditorChildForCriterion(RuleEditor& editor, std::int64_t index,
                                                        const std::shared_ptr<Object>& criterion,
                                                        RuleEditorRowType rowType) override;
    DisplayValue ruleEditorDisplayValueForCriterion(RuleEditor& editor,
                                                    const std::shared_ptr<Object>& criterion,
                                                    std::int64_t row) override;
    void ruleEditorRowsDidChange(const Notification& notification) override;

    RuleNodes roots;
    std::function<void(RuleEditor&)> onAnswer;  ///< called once, inside the next answer
    std::function<void()> onChange;             ///< called inside every `ruleEditorRowsDidChange`
    int changes = 0;
    std::shared_ptr<const Object> changed;  ///< the object of the last notification
    std::string notification;               ///< and its name

  private:
    void answering(RuleEditor& editor);
};

/// "Speak > [hello] | Wait > Yes": the rows as the display values show them.
std::string shown(const RuleEditor& editor);

}  // namespace vigil::test
