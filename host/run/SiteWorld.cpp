#include "host/run/SiteWorld.hpp"

#include "platform/CallNote.hpp"

namespace vigil {

SiteWorld::SiteWorld(QRVLog& log, InterfaceFiles& interfaceFiles, std::string scriptsFolder,
                     SiteWriter& writer, Clock clock)
    : LiveWorld(log, interfaceFiles, scriptsFolder, std::move(clock)),
      m_fires(writer, [this] { return now(); }),
      m_queue(mailbox(), m_fires),
      m_effects(m_fires, writer, log, [this] { return now(); }),
      m_files(LiveWorld::files(), std::move(scriptsFolder),
              [this](const std::string& name, const std::string& reason) { scriptMissed(name, reason); }),
      m_speech(LiveWorld::speech(), m_effects),
      m_sound(LiveWorld::sound(), m_effects),
      m_automation(LiveWorld::automationScripts(), m_effects) {}

// A row passes over a script that it cannot read; people want to know.
void SiteWorld::scriptMissed(const std::string& name, const std::string& reason) {
    if (!mailbox().isMainThread()) return;
    auto record = m_effects.make(EffectRecord::Script, name.empty() ? "script" : name, CallNote::current());
    m_effects.ended(std::move(record), now(), "not started", reason, /*failed=*/true);
}

}  // namespace vigil
