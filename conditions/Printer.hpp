#pragma once

#include <string>

#include "conditions/ConditionNode.hpp"

namespace vigil {

/// The canonical text: one blank round operators and connectives, parentheses round every compound inside a
/// compound and nowhere else. Parsing it gives an equal tree. Any thread.
VIGIL_KIT std::string printedCondition(const ConditionNode& tree);

/// A text as a literal: in double quotes, with \\ \" \n \r \t escaped and every other byte as it is.
VIGIL_KIT std::string quotedText(std::string_view text);

}  // namespace vigil
