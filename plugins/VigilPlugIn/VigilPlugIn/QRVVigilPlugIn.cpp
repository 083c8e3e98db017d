#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilPlugIn.hpp"

#include <mutex>
#include <utility>

#include "plugins/VigilPlugIn/VigilPlugIn/Criterion_Actions.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/Criterion_Display.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/CycleScratch.hpp"

namespace vigil {
namespace {

constexpr std::string_view kDefaultCondition = "(windChill.unitValue < 10 OR windSpeed.unitValue > 25)";
constexpr std::string_view kIdleStatus = "Check Activate to start.";

}  // namespace

QRVVigilPlugIn::QRVVigilPlugIn() = default;

// The notification centre holds observers weakly, so nothing is removed there.
QRVVigilPlugIn::~QRVVigilPlugIn() {
    delete m_scratch.load();
}

std::string QRVVigilPlugIn::className() const {
    return "QRVVigilPlugIn";
}

std::shared_ptr<ConditionPredicate> QRVVigilPlugIn::defaultPredicate() {
    return ConditionPredicate::predicateWithFormat(kDefaultCondition).value();
}

bool QRVVigilPlugIn::initWithAgent(std::shared_ptr<QRVAgentPlugIn> agent,
                                   std::shared_ptr<SiteWindowController> siteWindowController) {
    if (!QRVPlugIn::initWithAgent(std::move(agent), std::move(siteWindowController))) return false;
    setPredicate(defaultPredicate());
    setEvaluating(false);
    setRetriggerInterval(Number(1));
    setRetriggerDate(Date::distantPast());
    initCommon();
    return true;
}

void QRVVigilPlugIn::initCommon() {
    setCriteria(nullptr);
    m_criteriaLock.lock();
    m_criteriaOwed = true;
    m_criteriaLock.unlock();
    HostWorld* host = world();
    setStartTime(host ? std::optional(host->now()) : std::nullopt);
    setActionStatus(kIdleStatus);
    setCurrentPropertyStringValue("");
}

std::shared_ptr<CriterionList> QRVVigilPlugIn::makeCriteria() const {
    const auto station = agent();
    return std::make_shared<CriterionList>(CriterionList{
        RunScriptCriterion::criterionWithAgent(station),
        PlaySoundCriterion::criterionWithAgent(station),
        SeparatorCriterion::criterionWithAgent(station),
        SpeakTextCriterion::criterionWithAgent(station),
        SayCurrentConditionsCriterion::criterionWithAgent(station),
        SeparatorCriterion::criterionWithAgent(station),
    });
}

std::shared_ptr<CriterionList> QRVVigilPlugIn::criteria() const {
    const std::lock_guard lock(m_criteriaLock);
    if (std::exchange(m_criteriaOwed, false)) m_criteria = makeCriteria();
    return m_criteria;
}

void QRVVigilPlugIn::setCriteria(std::shared_ptr<CriterionList> roots) {
    // The list before ends behind the lock: its nodes may be the last to know others.
    const std::lock_guard lock(m_criteriaLock);
    m_criteriaOwed = false;
    m_criteria.swap(roots);
}

HostWorld* QRVVigilPlugIn::world() const {
    return agent() ? &agent()->world() : HostWorld::current();
}

}  // namespace vigil
