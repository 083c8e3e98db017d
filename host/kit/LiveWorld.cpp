#include "host/kit/LiveWorld.hpp"

#include <cstdlib>
#include <utility>

#include <pwd.h>
#include <unistd.h>

#include "host/kit/ExceptionText.hpp"
#include "host/kit/StandardLog.hpp"
#include "host/services/SystemClock.hpp"

namespace vigil {
namespace {

std::string homeFolder() {
    if (const char* home = std::getenv("HOME"); home && *home) return home;
    const passwd* user = getpwuid(getuid());
    return user && user->pw_dir ? user->pw_dir : "";
}

}  // namespace

std::string defaultScriptsFolder() {
    const char* settings = std::getenv("XDG_CONFIG_HOME");
    // The rule for these folders: a path that is not absolute counts as none.
    if (settings && *settings == '/') return std::string(settings) + "/vigil/scripts";
    return homeFolder() + "/.config/vigil/scripts";
}

LiveWorld::LiveWorld(QRVLog& log, InterfaceFiles& interfaceFiles, std::string scriptsFolder, Clock clock)
    : m_log(log),
      m_interfaceFiles(interfaceFiles),
      m_scriptsFolder(std::move(scriptsFolder)),
      m_clock(clock ? std::move(clock) : systemNow),
      m_mailbox([this](const std::exception_ptr& what) {
          m_log.logLevel(kLogProblem, "a task of the main queue failed: " + exceptionText(what));
      }),
      m_mainLoop(m_mailbox, m_clock),
      m_sleepingLoop(m_clock) {}

Date LiveWorld::now() {
    return m_clock();
}

LocalTime LiveWorld::localTime(Date date) {
    return systemLocalTime(date);
}

SpeechOutput& LiveWorld::speech() {
    if (m_liveSound) return m_liveSound->speech();
    return m_speech;
}

SoundOutput& LiveWorld::sound() {
    if (m_liveSound) return m_liveSound->sound();
    return m_sound;
}

LiveSound& LiveWorld::offerSound(Player::Options options) {
    m_liveSound = std::make_unique<LiveSound>(std::move(options), m_mailbox, m_log);
    return *m_liveSound;
}

RunLoop& LiveWorld::currentRunLoop() {
    if (m_mailbox.isMainThread()) return m_mainLoop;
    return m_sleepingLoop;
}

}  // namespace vigil
