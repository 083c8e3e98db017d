#include "host/kit/LiveSound.hpp"

#include <chrono>
#include <utility>

#include "host/kit/StandardLog.hpp"

namespace vigil {
namespace {

constexpr std::chrono::milliseconds kLook{50};

}  // namespace

LiveSound::LiveSound(Player::Options options, Mailbox& mailbox, QRVLog& log)
    : m_mailbox(mailbox),
      m_log(log),
      m_player(std::move(options)),
      m_toldSpeech(m_player, [this](const std::string& sentence) { tell(sentence); }),
      m_toldSound(m_player, [this](const std::string& sentence) { tell(sentence); }) {}

LiveSound::~LiveSound() {
    m_player.stop();  // while what it calls is there
}

void LiveSound::tell(const std::string& sentence) {
    ++m_failures;
    m_log.logLevel(kLogProblem, sentence);
}

void LiveSound::waitUntilQuiet() {
    while (m_player.active() != 0)
        m_mailbox.serveUntil(std::chrono::steady_clock::now() + kLook);
}

}  // namespace vigil
