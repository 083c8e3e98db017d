#include "plugins/VigilPlugIn/VigilPlugIn/IdentityTexts.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilPlugIn.hpp"

namespace vigil {

std::string QRVVigilPlugIn::name() const {
    return std::string(kVigilName);
}

std::string QRVVigilPlugIn::textDescription() const {
    return std::string(kVigilTextDescription);
}

std::string QRVVigilPlugIn::htmlDescription() const {
    std::string html = "<table>";
    html += htmlVersionRow(*this);
    html += "<tr><td colspan=2><i>" + textDescription() + "</i></td></tr>";
    html +=
        std::string("<tr><td>Enabled?</td><td align=right>") + (evaluating() ? "Yes" : "No") + "</td></tr>";
    html += "</table>";
    return html;
}

std::optional<std::string> QRVVigilPlugIn::xmlDescription() const {
    return "";
}

std::optional<std::string> QRVVigilPlugIn::jsonDescription() const {
    return "";
}

std::shared_ptr<Image> QRVVigilPlugIn::icon() const {
    return vigilImage(*this);
}

std::optional<std::string> QRVVigilPlugIn::group() const {
    return "VIGIL";
}

bool QRVVigilPlugIn::isUndockable() const {
    return true;
}

bool QRVVigilPlugIn::isRenamable() const {
    return true;
}

bool QRVVigilPlugIn::isDeletable() const {
    return true;
}

}  // namespace vigil
