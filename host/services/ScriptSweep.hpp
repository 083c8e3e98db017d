#pragma once

#include <string>

namespace vigil {

/// Clears up behind a helper that died: kills every process of this user that bears the run's mark in its
/// environment, and removes the run's folders. Waits for what it has killed, a fraction of a second at most.
/// Any thread.
void sweepScript(const std::string& mark);

}  // namespace vigil
