#pragma once

#include <string>

#include "packaging/pages/CommandTree.hpp"

// What the shells need to complete a command line. Each is a whole file, to be put where its shell looks:
// bash-completion/completions/vigil, zsh/site-functions/_vigil, fish/vendor_completions.d/vigil.fish.

namespace vigil {

std::string bashCompletion(const CommandNote& program);
std::string zshCompletion(const CommandNote& program);
std::string fishCompletion(const CommandNote& program);

}  // namespace vigil
