#include "host_contract/QRVPlugIn.hpp"

#include "host_contract/CycleObserver.hpp"
#include "platform/ClassRegistry.hpp"
#include "platform/KeyedCoder.hpp"

namespace vigil {
namespace {

HostWorld* worldOf(const std::shared_ptr<QRVAgentPlugIn>& agent) {
    return agent ? &agent->world() : HostWorld::current();
}

}  // namespace

QRVPlugIn::~QRVPlugIn() = default;
SiteWindowController::~SiteWindowController() = default;
CycleObserver::~CycleObserver() = default;
CycleReporting::~CycleReporting() = default;

const char* outcomeName(CycleOutcome outcome) {
    switch (outcome) {
        case CycleOutcome::Waiting:
            return "waiting";
        case CycleOutcome::Missed:
            return "missed";
        case CycleOutcome::Fired:
            return "fired";
    }
    return "";
}

bool QRVPlugIn::initWithAgent(std::shared_ptr<QRVAgentPlugIn> agent,
                              std::shared_ptr<SiteWindowController> siteWindowController) {
    HostWorld* world = worldOf(agent);
    if (world && !world->plugInHost().admits(className())) return false;
    m_agent = std::move(agent);
    m_siteWindowController = siteWindowController;
    return true;
}

bool QRVPlugIn::initWithCoder(KeyedDecoder& coder) {
    auto agent = coder.decodeObject<QRVAgentPlugIn>("agent");
    HostWorld* world = worldOf(agent);
    if (world && !world->plugInHost().admits(className())) return false;
    m_agent = std::move(agent);
    m_title = coder.decodeText("title").value_or("");
    return true;
}

void QRVPlugIn::encodeWithCoder(KeyedEncoder& coder) const {
    coder.encodeObject("agent", m_agent);
    coder.encodeText("title", m_title);
}

void QRVPlugIn::setSiteWindowController(const std::shared_ptr<SiteWindowController>& controller) {
    m_siteWindowController = controller;
}

std::shared_ptr<Object> QRVPlugIn::start() {
    HostWorld* world = worldOf(m_agent);
    return world ? world->plugInHost().startResult(*this) : nullptr;
}

std::shared_ptr<Object> QRVPlugIn::stop() {
    HostWorld* world = worldOf(m_agent);
    return world ? world->plugInHost().stopResult(*this) : nullptr;
}

void QRVPlugIn::didLoad() {}
void QRVPlugIn::willUnload() {}
void QRVPlugIn::viewWillAppear() {}
void QRVPlugIn::viewWillDisappear() {}

InterfaceOwner* QRVPlugIn::interfaceOwner() {
    return nullptr;
}
CycleReporting* QRVPlugIn::cycleReporting() {
    return nullptr;
}

}  // namespace vigil
