#pragma once

#include <CLI/CLI.hpp>

namespace vigil {

/// Minutes a person may wait for: a plain number from 0 to `kMostWaitMinutes`; anything else is refused with
/// that sentence.
CLI::Validator minutesCheck();

inline constexpr double kMostWaitMinutes = 1e9;

}  // namespace vigil
