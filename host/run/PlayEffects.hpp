#pragma once

#include <string>

#include "host/services/PlayEnd.hpp"

namespace vigil {

/// How a sound or a speech stands in the ledger once it has ended.
struct PlayEffect {
    std::string result{};
    std::string detail{};
    bool failed = false;
};

/// Any thread.
PlayEffect playEffect(const PlayEnd& end);

}  // namespace vigil
