#pragma once

#include <vector>

#include "host/kit/ScriptSink.hpp"
#include "platform/World.hpp"

namespace vigil {

/// Notes what would have been run, with the world's time. Main thread.
class RecordedScripts : public ScriptSink {
  public:
    struct Entry {
        Date time;
        ScriptRequest request;
        std::shared_ptr<const Object> plugIn;
    };

    explicit RecordedScripts(World& world) : m_world(world) {}
    std::optional<Error> accept(ScriptRequest request, const std::shared_ptr<const Object>& plugIn) override;

    const std::vector<Entry>& entries() const { return m_entries; }
    /// The entries so far, which are then forgotten here: a long replay keeps none.
    std::vector<Entry> take();

  private:
    World& m_world;
    std::vector<Entry> m_entries;
};

}  // namespace vigil
