#include "tests/support/FakeSound.hpp"

#include <utility>

namespace vigil {

class FakeSound::Player : public AudioPlayer {
  public:
    Player(EffectJournal& journal, std::string path) : m_journal(journal), m_path(std::move(path)) {}
    const std::string& path() const override { return m_path; }
    void stop() override { m_journal.add("stop " + m_path); }

  private:
    EffectJournal& m_journal;
    const std::string m_path;
};

std::shared_ptr<AudioPlayer> FakeSound::makePlayer(const std::string& path) {
    m_journal.add("player " + path);
    if (unplayable.contains(path)) return nullptr;
    return std::make_shared<Player>(m_journal, path);
}

bool FakeSound::play(const std::string& path) {
    m_journal.add("play " + path);
    return !unplayable.contains(path);
}

}  // namespace vigil
