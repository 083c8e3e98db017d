#pragma once

#include <string>

#include "conditions/ConditionNode.hpp"
#include "tests/support/ConditionGenerator.hpp"

namespace vigil::test {

/// A tree in the notation of the vectors, which shares nothing with the canonical text.
std::string treeNotation(const ConditionNode& node);

/// "windChill = 5, rain = \"Rain\" => true"
struct Given {
    GeneratedReadings readings;
    bool holds = false;
};

/// Reads the form that tests/vectors/conditions/README.md describes; anything else is std::runtime_error.
Given readGiven(const std::string& text);

}  // namespace vigil::test
