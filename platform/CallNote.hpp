#pragma once

#include <memory>

#include "platform/Export.hpp"
#include "platform/Object.hpp"

namespace vigil {

/// Who is being called on this thread: the observer that the notification centre delivers to. A synchronous
/// hand-over carries the note to the main thread, so that whatever happens there on the observer's behalf (a
/// script handed over, a sound begun) can be told to be its doing. Notes nest; the innermost one counts. Any
/// thread; each has its own.
class VIGIL_KIT CallNote {
  public:
    /// Nothing outside such a call.
    static std::shared_ptr<const Object> current();

    /// Sets the note for as long as the scope lives. An empty one hides the note outside it.
    class VIGIL_KIT Scope {
      public:
        explicit Scope(std::shared_ptr<const Object> observer);
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;
        ~Scope();

      private:
        friend class CallNote;
        std::shared_ptr<const Object> m_observer;
        const Scope* m_before;
    };
};

}  // namespace vigil
