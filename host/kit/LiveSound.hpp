#pragma once

#include <atomic>
#include <string>

#include "host/services/LinuxSound.hpp"
#include "host/services/LinuxSpeech.hpp"
#include "host/services/Player.hpp"
#include "host/services/SoundFiles.hpp"
#include "host/services/ToldSinks.hpp"
#include "host_contract/QRVLog.hpp"

namespace vigil {

/// Sound and speech for a world that writes nothing down: what goes wrong is a line in its log. Main thread.
class LiveSound {
  public:
    /// Mailbox and log are the caller's and outlive this.
    LiveSound(Player::Options options, Mailbox& mailbox, QRVLog& log);
    LiveSound(const LiveSound&) = delete;
    LiveSound& operator=(const LiveSound&) = delete;
    ~LiveSound();

    SpeechOutput& speech() { return m_speech; }
    SoundOutput& sound() { return m_sound; }
    /// Serves the mailbox until everything has been heard to its end; each sound has a bound of its own.
    void waitUntilQuiet();
    /// Lines that were told.
    std::size_t failures() const { return m_failures; }

  private:
    void tell(const std::string& sentence);

    Mailbox& m_mailbox;
    QRVLog& m_log;
    std::atomic<std::size_t> m_failures{0};
    Player m_player;
    SoundFiles m_files{m_player};
    ToldSpeech m_toldSpeech;
    ToldSound m_toldSound;
    LinuxSpeech m_speech{m_toldSpeech, m_mailbox};
    LinuxSound m_sound{m_files, m_toldSound};
};

}  // namespace vigil
