#pragma once

namespace vigil {

/// What runs for one station. The thread that adds and removes makes it, asks it to end and destroys it.
class Feed {
  public:
    Feed() = default;
    Feed(const Feed&) = delete;
    Feed& operator=(const Feed&) = delete;
    /// Ends it, if it has not been asked to, and waits until it has ended: less than a second.
    virtual ~Feed();
    /// Begins to end; returns at once, so that many end side by side. Twice is as once.
    virtual void askToEnd() = 0;
};

}  // namespace vigil
