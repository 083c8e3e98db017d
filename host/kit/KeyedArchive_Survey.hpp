#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>

#include "host/kit/KeyedArchive_Text.hpp"

namespace vigil {

/// An object of an archive on its way into being.
struct ArchiveInstance {
    enum class State { Waiting, Underway, Complete };

    const ArchiveNode* node = nullptr;
    std::shared_ptr<Object> object;
    State state = State::Waiting;
    std::size_t height = 0;  ///< levels that open inside, those behind references included; once complete
};

/// What the first pass found: the root, and every object by its "$id".
struct ArchiveSurvey {
    const ArchiveNode* root = nullptr;
    std::unordered_map<std::int64_t, ArchiveInstance> instances;
};

/// Checks the form of every node and allocates the objects, uninitialised. Main thread.
Result<ArchiveSurvey> surveyArchive(const ArchiveNode& envelope, bool hasStation,
                                    const ArchiveLimits& limits);

}  // namespace vigil
