#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "conditions/ConditionPredicate.hpp"
#include "host/command/CommandContext.hpp"

namespace vigil {

using Condition = Result<std::shared_ptr<ConditionPredicate>, SyntaxError>;

/// Batches often ask about one condition many times over, so the last one read is kept.
class LastCondition {
  public:
    /// Valid until the next call.
    const Condition& of(std::string_view text);

  private:
    std::string m_text;
    std::optional<Condition> m_condition;
};

/// `{"ok":true,"printed":…}` with `"holds"` where there is a verdict, or
/// `{"ok":false,"offset":N,"error":…}`, and a line's end. The offset counts bytes of the condition in UTF-8.
void appendAnswer(std::string& to, const Condition& condition, std::optional<bool> holds);

/// Reads a condition that was typed. A mistake is told with a caret under the text, the status becomes
/// BadInput, and nothing comes back.
std::shared_ptr<ConditionPredicate> conditionFromUser(std::string_view text, CommandContext& context);

}  // namespace vigil
