#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <string>

#include "host/kit/RecordedEffects.hpp"
#include "host/services/SystemCollation.hpp"
#include "host/services/SystemFiles.hpp"
#include "host_contract/HostWorld.hpp"

namespace vigil {

/// The world of recorded readings: its clock stands until it is turned, waiting turns it, and no time passes
/// by itself. One thread at a time, and that is its main thread; several replays run side by side, each with
/// a world of its own.
class ReplayWorld : public HostWorld {
  public:
    using Zone = std::function<LocalTime(Date)>;

    /// Log and interface files are the caller's and outlive the world. Local time is UTC unless a zone is
    /// given.
    ReplayWorld(QRVLog& log, InterfaceFiles& interfaceFiles, std::string scriptsFolder, Zone zone = {});

    /// Sets the clock, backwards too, and then runs what has been posted.
    void turnTo(Date date);

    /// The next hand-over to the main thread, which is where a monitor acts, begins and ends at these times:
    /// as it was when it was recorded. Until then the calling thread counts as another one.
    void setNextHandOver(Date begins, Date ends) { m_queue.setNext(HandOver{begins, ends}); }
    /// There may have been none.
    void forgetHandOver() { m_queue.setNext(std::nullopt); }

    /// What would have been spoken, played and automated.
    RecordedEffects& effects() { return m_effects; }

    Date now() override { return m_now; }
    LocalTime localTime(Date date) override { return m_zone(date); }
    MainQueue& mainQueue() override { return m_queue; }
    NotificationCenter& notificationCenter() override { return m_center; }
    Files& files() override { return m_files; }
    const Collation& collation() override { return m_collation; }
    RunLoop& currentRunLoop() override { return m_runLoop; }
    InterfaceFiles& interfaceFiles() override { return m_interfaceFiles; }
    SpeechOutput& speech() override { return m_effects; }
    SoundOutput& sound() override { return m_effects; }
    AutomationScripts& automationScripts() override { return m_effects; }
    QRVLog& log() override { return m_log; }
    std::string scriptsFolder() override { return m_scriptsFolder; }
    PlugInHost& plugInHost() override { return m_plugInHost; }

  private:
    struct HandOver {
        Date begins, ends;
    };

    /// Hand-overs run at once; posted tasks when the clock is turned.
    class Queue : public MainQueue {
      public:
        explicit Queue(ReplayWorld& world) : m_world(world) {}
        void setNext(std::optional<HandOver> next) { m_next = next; }

        bool isMainThread() const override { return !m_next; }
        void dispatchSync(const Task& task) override;
        bool dispatchAsync(Task task) override;
        bool runOne();

      private:
        ReplayWorld& m_world;
        std::optional<HandOver> m_next;
        std::deque<Task> m_posted;
    };

    /// Runs one posted task, or, where none waits, turns the clock to the date.
    class Loop : public RunLoop {
      public:
        explicit Loop(ReplayWorld& world) : m_world(world) {}
        void runUntil(Date date) override;

      private:
        ReplayWorld& m_world;
    };

    QRVLog& m_log;
    InterfaceFiles& m_interfaceFiles;
    const std::string m_scriptsFolder;
    const Zone m_zone;
    Date m_now = Date::distantPast();
    Queue m_queue{*this};
    NotificationCenter m_center{m_queue};
    SystemFiles m_files;
    SystemCollation m_collation;
    Loop m_runLoop{*this};
    RecordedEffects m_effects{*this};
    PlugInHost m_plugInHost;
};

}  // namespace vigil
