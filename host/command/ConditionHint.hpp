#pragma once

#include <string>
#include <string_view>

#include "conditions/SyntaxError.hpp"

namespace vigil {

/// What was probably meant where a condition breaks off, as a question or a rule for people; empty where
/// nobody can guess:
///
///     windGust > 60     did you mean windGust.unitValue?
///     a.unitValue => 5  did you mean >=?
std::string conditionHint(std::string_view text, const SyntaxError& error);

}  // namespace vigil
