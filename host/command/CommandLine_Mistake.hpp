#pragma once

#include <string>

#include <CLI/App.hpp>

namespace vigil {

/// A sentence for people about a command line that cannot be understood, with the nearest command or option
/// where one is near, and the help that applies.
std::string mistakeText(const CLI::App& app, const CLI::ParseError& mistake);

}  // namespace vigil
