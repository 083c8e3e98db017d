#include "host_contract/QRVKit.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilPlugIn.hpp"

// A monitor observes its station between start and stop, if it is active at both. A switch that changes in
// between leaves the observation as it was.

namespace vigil {

std::shared_ptr<Object> QRVVigilPlugIn::start() {
    auto result = QRVPlugIn::start();
    if (!result && evaluating()) startEvaluation();
    return result;
}

std::shared_ptr<Object> QRVVigilPlugIn::stop() {
    auto result = QRVPlugIn::stop();
    if (!result && evaluating()) stopEvaluation();
    return result;
}

void QRVVigilPlugIn::startEvaluation() {
    HostWorld* host = world();
    if (!host) return;
    host->notificationCenter().addObserver(std::static_pointer_cast<QRVVigilPlugIn>(shared_from_this()),
                                           &QRVVigilPlugIn::dataChanged, kAppRealTimeDataNotification,
                                           agent());
}

void QRVVigilPlugIn::stopEvaluation() {
    if (HostWorld* host = world())
        host->notificationCenter().removeObserver(*this, kAppRealTimeDataNotification, agent());
}

void QRVVigilPlugIn::didLoad(const std::shared_ptr<Object>&) {}

void QRVVigilPlugIn::willUnload() {}

void QRVVigilPlugIn::viewWillAppear() {
    QRVPlugIn::viewWillAppear();
}

void QRVVigilPlugIn::viewWillDisappear() {
    QRVPlugIn::viewWillDisappear();
}

void QRVVigilPlugIn::activateButtonClicked(Object*) {}

}  // namespace vigil
