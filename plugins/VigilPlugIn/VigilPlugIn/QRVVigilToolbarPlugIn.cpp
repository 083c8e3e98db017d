#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilToolbarPlugIn.hpp"

#include "platform/KeyedCoder.hpp"
#include "platform/ToolbarItem.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/IdentityTexts.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilPlugIn.hpp"

namespace vigil {
namespace {

constexpr const char* kLastUsedTitle = "lastUsedTitle";
constexpr const char* kToolbarItemAction = "toolbarItemAction:";

QRVVigilToolbarPlugIn& toolbar(InterfaceOwner& owner) {
    return static_cast<QRVVigilToolbarPlugIn&>(owner);
}

}  // namespace

QRVVigilToolbarPlugIn::~QRVVigilToolbarPlugIn() = default;

std::string QRVVigilToolbarPlugIn::className() const {
    return "QRVVigilToolbarPlugIn";
}

bool QRVVigilToolbarPlugIn::initWithAgent(std::shared_ptr<QRVAgentPlugIn> agent,
                                          std::shared_ptr<SiteWindowController> siteWindowController) {
    if (!QRVPlugIn::initWithAgent(std::move(agent), std::move(siteWindowController))) return false;
    setLastUsedTitle(std::string(kVigilName));
    initCommon();
    return true;
}

bool QRVVigilToolbarPlugIn::initWithCoder(KeyedDecoder& coder) {
    if (!QRVPlugIn::initWithCoder(coder)) return false;
    setLastUsedTitle(coder.decodeText(kLastUsedTitle));
    initCommon();
    return true;
}

void QRVVigilToolbarPlugIn::encodeWithCoder(KeyedEncoder& coder) const {
    QRVPlugIn::encodeWithCoder(coder);
    coder.encodeText(kLastUsedTitle, lastUsedTitle());
}

void QRVVigilToolbarPlugIn::initCommon() {}

void QRVVigilToolbarPlugIn::didLoad() {
    QRVPlugIn::didLoad();
}

void QRVVigilToolbarPlugIn::willUnload() {
    QRVPlugIn::willUnload();
}

std::shared_ptr<ToolbarItem> QRVVigilToolbarPlugIn::toolbarItem() {
    auto item = std::make_shared<ToolbarItem>(bundleIdentifier());
    item->setLabel(name());
    item->setImage(icon());
    item->setTarget(std::static_pointer_cast<QRVVigilToolbarPlugIn>(shared_from_this()));
    item->setAction(kToolbarItemAction);
    return item;
}

void QRVVigilToolbarPlugIn::toolbarItemAction(Object*) {
    createNewVigil();
}

void QRVVigilToolbarPlugIn::createNewVigil() {
    const auto controller = siteWindowController();
    const auto monitor = makePlugIn<QRVVigilPlugIn>(agent(), controller);
    if (!monitor) return;
    monitor->setTitle(std::string(kVigilName));
    if (controller) controller->addPlugIn(monitor, /*nameUniquely=*/true, /*select=*/true);
}

std::string QRVVigilToolbarPlugIn::name() const {
    return std::string(kVigilName);
}

std::string QRVVigilToolbarPlugIn::textDescription() const {
    return std::string(kVigilTextDescription);
}

std::string QRVVigilToolbarPlugIn::htmlDescription() const {
    return "<table>" + htmlVersionRow(*this) + "</table>";
}

std::shared_ptr<Image> QRVVigilToolbarPlugIn::icon() const {
    return vigilImage(*this);
}

const InterfaceTable& QRVVigilToolbarPlugIn::interfaceTable() const {
    static const InterfaceTable table = {
        {},
        {{kToolbarItemAction,
          [](InterfaceOwner& o, Object* sender) { toolbar(o).toolbarItemAction(sender); }}},
        {}};
    return table;
}

}  // namespace vigil
