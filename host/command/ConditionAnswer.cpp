#include "host/command/ConditionAnswer.hpp"

#include "host/command/Caret.hpp"
#include "host/command/ConditionHint.hpp"
#include "host/command/JsonText.hpp"

namespace vigil {

const Condition& LastCondition::of(std::string_view text) {
    if (!m_condition || m_text != text) {
        m_text = text;
        m_condition = ConditionPredicate::predicateWithFormat(text);
    }
    return *m_condition;
}

void appendAnswer(std::string& to, const Condition& condition, std::optional<bool> holds) {
    if (condition) {
        to += R"({"ok":true,"printed":)";
        appendJsonText(to, condition.value()->printed());
        if (holds) to += *holds ? R"(,"holds":true)" : R"(,"holds":false)";
    } else {
        const SyntaxError& error = condition.error();
        to += R"({"ok":false,"offset":)" + std::to_string(error.offset) + R"(,"error":)";
        appendJsonText(to, error.message());
    }
    to += "}\n";
}

std::shared_ptr<ConditionPredicate> conditionFromUser(std::string_view text, CommandContext& context) {
    const auto condition = ConditionPredicate::predicateWithFormat(text);
    if (condition) return condition.value();
    const SyntaxError& error = condition.error();
    context.output.error(error.message());
    context.output.errorText(caretText(text, error.offset, error.length));
    if (const std::string hint = conditionHint(text, error); !hint.empty()) context.output.error(hint);
    context.status = ExitStatus::BadInput;
    return nullptr;
}

}  // namespace vigil
