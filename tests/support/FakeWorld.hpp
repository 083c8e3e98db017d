#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "host_contract/HostWorld.hpp"
#include "tests/support/FakeAutomationScripts.hpp"
#include "tests/support/FakeMainQueue.hpp"
#include "tests/support/FakeSound.hpp"
#include "tests/support/FakeSpeech.hpp"
#include "tests/support/MemoryFiles.hpp"
#include "tests/support/PlainCollation.hpp"
#include "tests/support/RecordingLog.hpp"

namespace vigil {

/// A host whose word on its plug-ins a test sets. Main thread.
class FakePlugInHost : public PlugInHost {
  public:
    bool admits(const std::string& className) override;
    std::shared_ptr<Object> startResult(const Object& plugIn) override;
    std::shared_ptr<Object> stopResult(const Object& plugIn) override;

    bool admitsAll = true;
    std::shared_ptr<Object> onStart;  ///< what every start answers; nothing at first
    std::shared_ptr<Object> onStop;

    std::vector<std::string> asked;  ///< "admits X", "start X", "stop X" in the order of the calls
};

/// Something that stands in the way of a start or stop.
class FakeObstacle : public Object {
  public:
    std::string className() const override { return "FakeObstacle"; }
};

/// Interface files that a test describes. "TextField" gives one `TextField`, "PopUpButton" one `PopUpButton`
/// without items; any other name gives nothing, until it is set. Main thread.
class FakeInterfaceFiles : public InterfaceFiles {
  public:
    using Maker = std::function<std::optional<std::vector<std::shared_ptr<Object>>>(InterfaceOwner*)>;

    FakeInterfaceFiles();
    void set(const std::string& name, Maker maker);
    void remove(const std::string& name);
    /// The names asked for, in that order.
    const std::vector<std::string>& asked() const { return m_asked; }

    std::optional<std::vector<std::shared_ptr<Object>>> instantiate(const Bundle& bundle,
                                                                    const std::string& name,
                                                                    InterfaceOwner* owner) override;

  private:
    std::map<std::string, Maker> m_makers;
    std::vector<std::string> m_asked;
};

/// A run loop that does not wait: it sets the clock to the date, once it has nothing posted to run, and lets
/// speech end that is due by then. Any thread.
class FakeWorld;
class FakeRunLoop : public RunLoop {
  public:
    explicit FakeRunLoop(FakeWorld& world) : m_world(world) {}
    void runUntil(Date date) override;

    /// Called first in every `runUntil`, where a test lets something arrive.
    std::function<void(Date)> onRun;
    std::vector<Date> runs;  ///< the dates of the calls

  private:
    FakeWorld& m_world;
};

/// A world for unit tests: a clock that the test turns, a log that records, a real notification centre,
/// files in memory. It starts at 2026-11-21 10:34:18 UTC, and local time is UTC unless an offset is set.
class FakeWorld : public HostWorld {
  public:
    explicit FakeWorld(FakeMainQueue::Form queue = FakeMainQueue::Form::Inline);

    Date now() override;
    LocalTime localTime(Date date) override;
    FakeMainQueue& mainQueue() override { return m_queue; }
    NotificationCenter& notificationCenter() override { return m_center; }
    MemoryFiles& files() override { return m_files; }
    const PlainCollation& collation() override { return m_collation; }
    FakeRunLoop& currentRunLoop() override { return m_runLoop; }
    FakeInterfaceFiles& interfaceFiles() override { return m_interfaceFiles; }
    FakeSpeech& speech() override { return m_speech; }
    FakeSound& sound() override { return m_sound; }
    FakeAutomationScripts& automationScripts() override { return m_automationScripts; }
    RecordingLog& log() override { return m_log; }
    std::string scriptsFolder() override { return m_scriptsFolder; }
    FakePlugInHost& plugInHost() override { return m_plugInHost; }

    void setNow(Date date);
    void advance(double seconds);
    /// Seconds east of UTC.
    void setZone(int seconds) { m_zone = seconds; }
    void setScriptsFolder(std::string folder) { m_scriptsFolder = std::move(folder); }

    /// What was spoken, played and automated, in the order in which it happened: "speak hello".
    std::vector<std::string> effects() const { return m_journal.entries(); }

    /// How often the clock was read.
    int clockReads() const;

  private:
    mutable std::mutex m_mutex;
    Date m_now{817641258.0};
    int m_clockReads = 0;
    int m_zone = 0;
    std::string m_scriptsFolder = "/scripts";
    FakeMainQueue m_queue;
    NotificationCenter m_center{m_queue};
    MemoryFiles m_files;
    PlainCollation m_collation;
    FakeRunLoop m_runLoop{*this};
    FakeInterfaceFiles m_interfaceFiles;
    EffectJournal m_journal;
    FakeSpeech m_speech{*this, m_journal};
    FakeSound m_sound{m_journal};
    FakeAutomationScripts m_automationScripts{m_journal};
    RecordingLog m_log;
    FakePlugInHost m_plugInHost;
};

}  // namespace vigil
