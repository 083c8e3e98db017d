#pragma once

#include "platform/AutomationScripts.hpp"
#include "platform/Collation.hpp"
#include "platform/Date.hpp"
#include "platform/Export.hpp"
#include "platform/Files.hpp"
#include "platform/InterfaceFiles.hpp"
#include "platform/MainQueue.hpp"
#include "platform/NotificationCenter.hpp"
#include "platform/Sound.hpp"
#include "platform/Speech.hpp"

namespace vigil {

/// A time of day and date in the user's zone.
struct LocalTime {
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
};

/// Everything around a plug-in that is not its station: clock, queue, notifications, files. A live site, a
/// backtest and a test each make one of their own; several live in one process. Nobody reads a clock or a
/// file past it. The world outlives every plug-in and agent that was made in it.
class VIGIL_KIT World {
  public:
    World();
    World(const World&) = delete;
    World& operator=(const World&) = delete;
    virtual ~World();

    /// Any thread.
    virtual Date now() = 0;
    virtual LocalTime localTime(Date date) = 0;
    virtual MainQueue& mainQueue() = 0;
    virtual NotificationCenter& notificationCenter() = 0;
    virtual Files& files() = 0;
    virtual const Collation& collation() = 0;
    /// The loop of the calling thread.
    virtual RunLoop& currentRunLoop() = 0;
    /// Main thread.
    virtual InterfaceFiles& interfaceFiles() = 0;
    virtual SpeechOutput& speech() = 0;
    virtual SoundOutput& sound() = 0;
    virtual AutomationScripts& automationScripts() = 0;

    /// The world that the host has opened around the call into a plug-in that runs on this thread; nothing
    /// outside such a call. For code that has no agent to ask.
    static World* current();

    /// Opens a world on this thread for as long as the scope lives.
    class VIGIL_KIT Scope {
      public:
        explicit Scope(World& world);
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;
        ~Scope();

      private:
        World* m_before;
    };
};

}  // namespace vigil
