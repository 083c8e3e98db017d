#pragma once

#include <memory>
#include <optional>

#include "host/services/ScriptRequest.hpp"
#include "platform/Object.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// Where a station's scripts go: to be run, or, in a replay, to be noted. Main thread.
class ScriptSink {
  public:
    virtual ~ScriptSink();
    /// Takes a script and returns at once. `plugIn` is the one on whose behalf it runs, where that is known.
    /// An error means that it will not run.
    virtual std::optional<Error> accept(ScriptRequest request,
                                        const std::shared_ptr<const Object>& plugIn) = 0;
    /// Hears of one that is not even handed over, since it is none. Nothing comes of it unless a sink says
    /// otherwise.
    virtual void refused(const ScriptRequest& request, const std::shared_ptr<const Object>& plugIn,
                         const std::string& reason);
};

}  // namespace vigil
