#pragma once

#include <optional>
#include <string>

#include <CLI/App.hpp>

#include "host/settings/Settings.hpp"

namespace vigil {

/// What the options of `vigil run` say; nothing where one is not given.
struct RunChoice {
    std::optional<int> threads{};
    std::optional<int> logLevel{};
    std::optional<std::string> logFormat{};
    std::optional<int> metricsPort{};
    std::optional<bool> history{};
    std::optional<int> historyDays{};
    std::optional<std::string> scripts{};
};

/// The options, each with the range of the setting that it prevails over. The choice outlives the command.
void addRunOptions(CLI::App& command, RunChoice& choice);

/// The settings, with what the options say in their place.
RunSettings chosen(const RunChoice& choice, RunSettings settings);

}  // namespace vigil
