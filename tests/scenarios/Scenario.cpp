#include "tests/scenarios/Scenario.hpp"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace vigil {
namespace {

std::pair<std::string, std::string> cut(const std::string& text, char at) {
    const auto place = text.find(at);
    if (place == std::string::npos) return {text, ""};
    return {text.substr(0, place), text.substr(place + 1)};
}

void readPairs(const std::string& text, std::vector<std::pair<std::string, std::string>>& into) {
    std::istringstream words(text);
    for (std::string word; words >> word;)
        into.push_back(cut(word, '='));
}

bool readExpectation(const std::string& text, ScenarioStep& step) {
    const auto [word, rest] = cut(text, ' ');
    if (word == "fired" || word == "missed" || word == "waiting") {
        step.outcome = word;
    } else if (word == "inputs") {
        step.inputs = rest;
    } else if (word == "next") {
        step.next = rest;
    } else if (word == "status") {
        step.status = rest;
    } else if (word == "age") {
        const auto [key, seconds] = cut(rest, '=');
        step.ages.emplace_back(key, std::stod(seconds));
    } else {
        return false;
    }
    return true;
}

bool readLine(const std::string& text, Scenario& scenario, bool& archive, std::size_t number) {
    const auto [word, rest] = cut(text, ' ');
    if (word == "condition") {
        scenario.condition = rest;
    } else if (word == "retrigger") {
        scenario.retrigger = rest;
    } else if (word == "onchange") {
        scenario.onlyOnChange = true;
    } else if (word == "archive") {
        archive = true;
    } else if (word == "at") {
        ScenarioStep step;
        step.line = number;
        step.archivedBefore = archive;
        archive = false;
        const auto [time, readings] = cut(rest, ' ');
        step.time = time;
        readPairs(readings, step.readings);
        scenario.steps.push_back(std::move(step));
    } else {
        return false;
    }
    return true;
}

}  // namespace

Scenario readScenario(const std::string& path) {
    Scenario scenario;
    scenario.name = std::filesystem::path(path).filename().string();
    std::ifstream in(path);
    bool archive = false;
    std::size_t number = 0;
    for (std::string text; std::getline(in, text);) {
        ++number;
        const bool belongs = text.starts_with("  ");
        if (text.empty() || text.starts_with('#')) continue;
        const bool understood =
            belongs ? !scenario.steps.empty() && readExpectation(text.substr(2), scenario.steps.back())
                    : readLine(text, scenario, archive, number);
        if (!understood)
            scenario.problem = "line " + std::to_string(number) + ": \"" + text + "\" is not understood";
    }
    if (scenario.steps.empty()) scenario.problem = "no notification";
    for (const ScenarioStep& step : scenario.steps)
        if (step.outcome.empty()) scenario.problem = "line " + std::to_string(step.line) + ": no outcome";
    return scenario;
}

std::vector<Scenario> allScenarios(const std::string& folder) {
    std::vector<std::string> paths;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        if (entry.path().extension() == ".scenario") paths.push_back(entry.path().string());
    std::sort(paths.begin(), paths.end());
    std::vector<Scenario> scenarios;
    for (const std::string& path : paths)
        scenarios.push_back(readScenario(path));
    return scenarios;
}

}  // namespace vigil
