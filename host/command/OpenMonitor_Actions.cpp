#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "host/command/OpenMonitor.hpp"

namespace vigil {
namespace {

/// What a cell offers, by the text it shows; separators are left out.
std::vector<std::pair<std::string, std::int64_t>> offered(const RuleEditorChoices& choices) {
    std::vector<std::pair<std::string, std::int64_t>> found;
    for (std::size_t i = 0; i < choices.choices.size(); ++i)
        if (const auto* text = std::get_if<std::string>(&choices.choices[i].displayValue))
            found.emplace_back(*text, static_cast<std::int64_t>(i));
    return found;
}

std::vector<std::string> texts(const std::vector<std::pair<std::string, std::int64_t>>& found) {
    std::vector<std::string> all;
    for (const auto& [text, index] : found)
        all.push_back(text);
    return all;
}

/// Fills a row's control with what was typed.
Result<Done> fill(const DisplayValue& value, const std::string& name, const std::string& typed) {
    if (const auto* field = std::get_if<std::shared_ptr<TextField>>(&value)) {
        (*field)->setStringValue(typed);
        return Done{};
    }
    if (const auto* popUp = std::get_if<std::shared_ptr<PopUpButton>>(&value)) {
        (*popUp)->selectItemWithTitle(typed);
        if ((*popUp)->titleOfSelectedItem() == typed) return Done{};
        return Error{fmt::format("\"{}\" does not offer \"{}\"; there are: {}", name, typed,
                                 fmt::join((*popUp)->itemTitles(), ", "))};
    }
    return Error{"\"" + name + "\" takes no value"};
}

/// Chooses in a column of a row what shows the text. An error lists what is offered.
Result<Done> chooseText(RuleEditor& editor, RuleEditorCell cell, const std::string& text,
                        const std::string& refusal) {
    const auto found = offered(editor.choices(cell));
    for (const auto& [shown, index] : found) {
        if (shown != text) continue;
        editor.choose(cell, index);  // false where it is chosen already
        return Done{};
    }
    return Error{fmt::format("{} \"{}\"; there are: {}", refusal, text, fmt::join(texts(found), ", "))};
}

}  // namespace

Result<Done> OpenMonitor::setAction(std::int64_t index, const std::string& text) {
    const std::size_t equals = text.find('=');
    const std::string name = text.substr(0, equals);
    if (index == m_actions->numberOfRows() && !m_actions->insertRowAtIndex(index))
        return Error{"no further action may stand"};
    if (auto chosen = chooseText(*m_actions, {.row = index, .column = 0}, name, "no action is called");
        !chosen)
        return chosen;
    if (equals == std::string::npos) return Done{};
    const std::string typed = text.substr(equals + 1);
    const auto values = m_actions->displayValuesForRow(index);
    if (values.size() < 2) return Error{"\"" + name + "\" takes no value"};
    if (std::holds_alternative<std::string>(values[1]))
        return chooseText(*m_actions, {.row = index, .column = 1}, typed, "\"" + name + "\" does not offer");
    return fill(values[1], name, typed);
}

}  // namespace vigil
