#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "host/kit/LiveSound.hpp"
#include "host/kit/UnavailableServices.hpp"
#include "host/services/Mailbox.hpp"
#include "host/services/MainRunLoop.hpp"
#include "host/services/SystemCollation.hpp"
#include "host/services/SystemFiles.hpp"
#include "host_contract/HostWorld.hpp"

namespace vigil {

/// Where a user's scripts are unless said otherwise: "vigil/scripts" in the user's folder for settings
/// ($XDG_CONFIG_HOME, else ~/.config). Without a final "/".
std::string defaultScriptsFolder();

/// The world of a site that runs now: the machine's clock, zone and files. The thread that makes it is its
/// main thread and serves its mailbox.
class LiveWorld : public HostWorld {
  public:
    using Clock = std::function<Date()>;

    /// Log and interface files are the caller's and outlive the world. Without a clock of its own, which any
    /// thread may ask, it lives by the machine's.
    LiveWorld(QRVLog& log, InterfaceFiles& interfaceFiles, std::string scriptsFolder, Clock clock = {});

    Date now() override;
    LocalTime localTime(Date date) override;
    MainQueue& mainQueue() override { return m_mailbox; }
    /// What its main thread serves.
    Mailbox& mailbox() { return m_mailbox; }
    /// Lets the nested loop of the main thread turn what else turns there. Main thread.
    void setMainTurn(MainRunLoop::Turn turn) { m_mainLoop.setTurn(std::move(turn)); }
    NotificationCenter& notificationCenter() override { return m_center; }
    Files& files() override { return m_files; }
    const Collation& collation() override { return m_collation; }
    RunLoop& currentRunLoop() override;
    InterfaceFiles& interfaceFiles() override { return m_interfaceFiles; }
    SpeechOutput& speech() override;
    SoundOutput& sound() override;
    AutomationScripts& automationScripts() override { return m_automationScripts; }
    QRVLog& log() override { return m_log; }
    std::string scriptsFolder() override { return m_scriptsFolder; }
    PlugInHost& plugInHost() override { return m_plugInHost; }

    /// Offers sound and speech from now on; before, there is neither. Main thread, once.
    LiveSound& offerSound(Player::Options options);

  private:
    QRVLog& m_log;
    InterfaceFiles& m_interfaceFiles;
    const std::string m_scriptsFolder;
    const Clock m_clock;
    Mailbox m_mailbox;
    NotificationCenter m_center{m_mailbox};
    SystemFiles m_files;
    SystemCollation m_collation;
    MainRunLoop m_mainLoop;
    SleepingRunLoop m_sleepingLoop;
    UnavailableSpeech m_speech{m_log};
    UnavailableSound m_sound{m_log};
    UnavailableAutomationScripts m_automationScripts{m_log};
    PlugInHost m_plugInHost;
    std::unique_ptr<LiveSound> m_liveSound;
};

}  // namespace vigil
