#include "host/run/SiteWorld.hpp"

namespace vigil {

SiteWorld::SiteWorld(QRVLog& log, InterfaceFiles& interfaceFiles, std::string scriptsFolder,
                     SiteWriter& writer, Clock clock)
    : LiveWorld(log, interfaceFiles, scriptsFolder, std::move(clock)),
      m_fires(writer, [this] { return now(); }),
      m_queue(mailbox(), m_fires),
      m_effects(m_fires, writer, log, [this] { return now(); }),
      m_files(LiveWorld::files(), std::move(scriptsFolder)),
      m_speech(LiveWorld::speech(), m_effects),
      m_sound(LiveWorld::sound(), m_effects),
      m_automation(LiveWorld::automationScripts(), m_effects) {}

}  // namespace vigil
