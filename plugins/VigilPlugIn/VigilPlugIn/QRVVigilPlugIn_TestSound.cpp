#include "platform/RuleEditor.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilPlugIn.hpp"

namespace vigil {
namespace {

bool isText(const DisplayValue& value, const char* text) {
    const auto* held = std::get_if<std::string>(&value);
    return held && *held == text;
}

/// Judged by what the row shows, so that a test never runs a script or sends a message.
bool isHeard(const DisplayValue& first) {
    return isText(first, "Play Sound") || isText(first, "Speak Text") || isText(first, "Speak Conditions");
}

}  // namespace

void QRVVigilPlugIn::testSound(Object*) {
    // The rows are counted anew before each: while one speaks, the editor may be changed.
    for (std::int64_t row = 0;; ++row) {
        const auto editor = ruleEditor();
        if (!editor || row >= editor->numberOfRows()) return;
        const auto path = editor->criteriaForRow(row);
        const auto shown = editor->displayValuesForRow(row);
        const auto root = std::dynamic_pointer_cast<Criterion>(path.at(0));
        if (isHeard(shown.at(0)) && root) root->performActionWithDisplayValues(shown);
    }
}

}  // namespace vigil
