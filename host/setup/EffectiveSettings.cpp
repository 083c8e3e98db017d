#include "host/setup/EffectiveSettings.hpp"

#include "host/kit/LiveWorld.hpp"
#include "host/site/SiteFile.hpp"

namespace vigil {

Settings effective(Settings settings) {
    if (settings.site.file.empty()) settings.site.file = SiteFile::defaultFile();
    if (settings.run.scripts.empty()) settings.run.scripts = defaultScriptsFolder();
    settings.mail.port = mailPort(settings.mail);
    return settings;
}

}  // namespace vigil
