#pragma once

#include <memory>

namespace vigil {

/// Work that goes on one piece at a time, on whichever thread of a pool is free. A station is one: its
/// notifications never overtake each other, and those of others never wait for it.
class Strand : public std::enable_shared_from_this<Strand> {
  public:
    virtual ~Strand();

  protected:
    enum class Step {
        More,  ///< there is more to do; others have their turn first
        Idle,  ///< nothing to do until it is woken
        Wait   ///< nothing may be done until it is resumed
    };
    /// Does one piece of work. Never two at a time; on threads of the pool. Must not throw.
    virtual Step step() = 0;

  private:
    friend class StrandPool;
    // Guarded by the pool's mutex.
    enum class Turn { Idle, Queued, Running, Waiting } m_turn = Turn::Idle;
    bool m_woken = false;    // while it ran
    bool m_resumed = false;  // before its step has said that it waits
};

}  // namespace vigil
