#include "plugins/VigilPlugIn/VigilPlugIn/IdentityTexts.hpp"

#include "platform/ClassRegistry.hpp"
#include "platform/Image.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/ActionTexts.hpp"

namespace vigil {

const std::string_view kVigilTextDescription =
    "Vigil monitors one or more conditions that connect to a set actions. "
    "Actions execute when the conditions are met.";

std::string htmlVersionRow(const QRVPlugIn& plugIn) {
    const auto bundle = ClassRegistry::shared().bundleForClass(plugIn.className());
    return filled("<tr><th colspan=2 align=center>Vigil Plug-In - Version %@ (%@)</th></tr>",
                  {bundle ? bundle->marketingVersion : kAbsentText, std::to_string(plugIn.bundleVersion())});
}

std::shared_ptr<Image> vigilImage(const QRVPlugIn& plugIn) {
    const auto bundle = ClassRegistry::shared().bundleForClass(plugIn.className());
    HostWorld* host = plugIn.agent() ? &plugIn.agent()->world() : HostWorld::current();
    return bundle && host ? Image::imageForResource(host->files(), *bundle, "vigil") : nullptr;
}

}  // namespace vigil
