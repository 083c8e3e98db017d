#include "host/services/LinuxSound.hpp"

#include <utility>

namespace vigil {
namespace {

class InertPlayer : public AudioPlayer {
  public:
    explicit InertPlayer(std::string path) : m_path(std::move(path)) {}
    const std::string& path() const override { return m_path; }
    void stop() override {}

  private:
    const std::string m_path;
};

}  // namespace

std::shared_ptr<AudioPlayer> LinuxSound::makePlayer(const std::string& path) {
    if (m_files.refusal(path)) return nullptr;
    return std::make_shared<InertPlayer>(path);
}

}  // namespace vigil
