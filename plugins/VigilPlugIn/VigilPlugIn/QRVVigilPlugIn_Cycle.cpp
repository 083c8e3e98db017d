#include "host_contract/QRVKit.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/CycleScratch.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilPlugIn.hpp"

// The evaluation cycle, on the posting thread and without locks of its own: of the monitor it writes only
// retriggerDate, actionStatus and lastEvaluationDictionary.

namespace vigil {
namespace {

constexpr int kLogLevel = 3;
constexpr std::string_view kNotTriggered = "The conditions have NOT triggered an alert yet.";

std::shared_ptr<const Readings> readingsOf(const Notification& notification) {
    auto data = std::dynamic_pointer_cast<const Readings>(notification.userInfoForKey(kDataKey));
    return data ? data : EvaluationDictionary().readings();
}

}  // namespace

void QRVVigilPlugIn::dataChanged(const Notification& notification) {
    HostWorld* host = world();
    if (!host) return;
    CycleReport report;
    report.next = retriggerDate();
    if (report.next && report.next->secondsSince(host->now()) > 0) {
        if (m_cycleObserver) m_cycleObserver->cycleEnded(*this, report);
        return;
    }
    const auto batch = readingsOf(notification);
    auto scratch = takeScratch();
    report.readings = batch.get();
    if (judge(*host, *batch, *scratch, report.judged)) {
        report.outcome = CycleOutcome::Fired;
        fire(*host);
    } else {
        report.outcome = CycleOutcome::Missed;
        m_actionStatus.set(kNotTriggered);
    }
    report.next = retriggerDate();
    m_actionStatus.appendNextTrigger(report.next);
    // A batch never changes, so sharing it is a copy of every reading in it.
    setLastEvaluationDictionary(EvaluationDictionary(batch));
    if (m_cycleObserver) m_cycleObserver->cycleEnded(*this, report);
    giveBack(std::move(scratch));
}

bool QRVVigilPlugIn::judge(HostWorld& world, const Readings& batch, CycleScratch& scratch,
                           ReadingsView& judged) const {
    judged = triggerOnlyOnChange() ? scratch.changed.select(batch, lastEvaluationDictionary()) : batch.view();
    QRVLog& log = QRVLog::sharedLog(world);
    if (log.takesLevel(kLogLevel)) {
        scratch.line.assign("Vigil evaluation dictionary: ");
        batch.appendDescription(scratch.line, judged);
        (scratch.line += " #") += className();
        log.logLevel(kLogLevel, scratch.line);
    }
    const auto condition = predicate();
    return condition && condition->evaluateWithObject(judged);
}

void QRVVigilPlugIn::fire(HostWorld& world) {
    if (world.mainQueue().isMainThread()) {
        performActions();
    } else {
        const auto self = std::static_pointer_cast<QRVVigilPlugIn>(shared_from_this());
        world.mainQueue().dispatchSync([self] { self->performActions(); });
    }
    const double minutes = retriggerInterval().value_or(Number(0)).floatValue();
    setRetriggerDate(world.now().plus(minutes * 60.0));
}

// A cycle can begin inside another one of the same monitor (an action that lets the main loop turn), so the
// memory is taken while it is in use and a second cycle makes its own.
std::unique_ptr<CycleScratch> QRVVigilPlugIn::takeScratch() {
    const std::lock_guard lock(m_scratchMutex);
    return m_scratch ? std::move(m_scratch) : std::make_unique<CycleScratch>();
}

void QRVVigilPlugIn::giveBack(std::unique_ptr<CycleScratch> scratch) {
    const std::lock_guard lock(m_scratchMutex);
    m_scratch = std::move(scratch);
}

}  // namespace vigil
