#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vigil {

/// One notification of a scenario, with what has to come of it. README.md beside this file tells the form.
struct ScenarioStep {
    std::size_t line = 0;
    bool archivedBefore = false;  ///< the monitor is archived and restored before this notification
    std::string time;
    std::vector<std::pair<std::string, std::string>>
        readings;  ///< key and text; a text reading keeps its quotes
    std::vector<std::pair<std::string, double>> ages;
    std::string outcome;
    std::optional<std::string> inputs{};
    std::optional<std::string> next{};
    std::optional<std::string> status{};
};

struct Scenario {
    std::string name;
    std::optional<std::string> condition{};
    std::optional<std::string> retrigger{};
    bool onlyOnChange = false;
    std::vector<ScenarioStep> steps;
    std::string problem;  ///< why the file cannot be read, with its line; empty otherwise
};

Scenario readScenario(const std::string& path);

/// Every scenario of the folder, sorted by name.
std::vector<Scenario> allScenarios(const std::string& folder);

}  // namespace vigil
