#pragma once

#include <string>

#include "host/command/CommandContext.hpp"

namespace vigil {

/// `vigil eval --batch`: lines {"condition":…,"readings":{…}} in, one verdict a line out (BatchLines.hpp).
/// `path` may be "-".
void evalBatch(const std::string& path, CommandContext& context);

}  // namespace vigil
