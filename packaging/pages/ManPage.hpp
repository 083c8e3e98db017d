#pragma once

#include <string>

#include "packaging/pages/CommandTree.hpp"

namespace vigil {

/// What stands at the edges of every page.
struct PageEdges {
    std::string version;  ///< "0.1.0"
    std::string date;     ///< "2026-11-21"
};

/// The page of the program itself: "vigil.1".
std::string programPage(const CommandNote& program, const PageEdges& edges);

/// The page of one of its commands, the commands below it included: "vigil-monitor.1".
std::string commandPage(const CommandNote& command, const CommandNote& program, const PageEdges& edges);

/// "vigil-monitor", for "vigil monitor".
std::string pageName(const CommandNote& command);

}  // namespace vigil
