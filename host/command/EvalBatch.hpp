#pragma once

#include <memory>

#include "host/command/CommandContext.hpp"
#include "host/feeds/Bytes.hpp"

namespace vigil {

/// `vigil eval --batch`: lines {"condition":…,"readings":{…}} in, one answer a line out, in the same order.
/// A line that is none is told on the error stream with its number, answered {"ok":false,"line":N,"error":…},
/// and makes the status BadInput in the end.
void evalBatch(std::unique_ptr<Bytes> from, const std::string& name, CommandContext& context);

}  // namespace vigil
