#include <typeinfo>
#include <utility>

#include "host_contract/QRVKit.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/CycleScratch.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilPlugIn.hpp"

// The evaluation cycle, on the posting thread and without locks of its own: of the monitor it writes only
// retriggerDate, actionStatus and lastEvaluationDictionary.

namespace vigil {
namespace {

constexpr int kLogLevel = 3;
constexpr std::string_view kNotTriggered = "The conditions have NOT triggered an alert yet.";

// The notification's batch; an empty one where it has none. Compared by type and not cast dynamically, since
// nothing derives from a batch.
std::shared_ptr<const Readings> readingsOf(const Notification& notification) {
    for (const auto& [key, object] : notification.userInfo) {
        if (key != kDataKey) continue;
        const Object* const held = object.get();
        if (held && typeid(*held) == typeid(Readings))
            return std::static_pointer_cast<const Readings>(object);
        break;
    }
    return EvaluationDictionary().readings();
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
    auto batch = readingsOf(notification);
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
    QRVLog& log = QRVLog::sharedLog(world);
    const bool logged = log.takesLevel(kLogLevel);
    const bool onlyOnChange = triggerOnlyOnChange();
    const BoundCondition* bound = nullptr;
    if (!onlyOnChange) {
        judged = batch.view();
    } else if (logged || m_cycleObserver) {
        judged = scratch.changed.select(batch, lastEvaluationDictionary());
    } else {
        // Nobody sees the others.
        bound = condition(batch, scratch);
        if (!bound) return false;
        judged = scratch.changed.select(batch, lastEvaluationDictionary(), bound->slots());
    }
    if (logged) {
        scratch.line.assign("Vigil evaluation dictionary: ");
        batch.appendDescription(scratch.line, judged);
        (scratch.line += " #") += className();
        log.logLevel(kLogLevel, scratch.line);
    }
    if (!bound) bound = condition(batch, scratch);
    return bound && bound->holds(judged);
}

// Valid until the next call; nothing where the monitor has no condition.
const BoundCondition* QRVVigilPlugIn::condition(const Readings& batch, CycleScratch& scratch) const {
    const KeyTable& table = *batch.table();
    const auto& predicate = scratch.predicate.of(m_predicate);
    if (predicate != scratch.bound || !scratch.binding || scratch.binding->tableId() != table.id()) {
        scratch.bound = predicate;
        scratch.binding = predicate ? predicate->binding(table) : nullptr;
    }
    return scratch.binding.get();
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
    std::unique_ptr<CycleScratch> scratch(m_scratch.exchange(nullptr));
    return scratch ? std::move(scratch) : std::make_unique<CycleScratch>();
}

void QRVVigilPlugIn::giveBack(std::unique_ptr<CycleScratch> scratch) {
    delete m_scratch.exchange(scratch.release());
}

}  // namespace vigil
