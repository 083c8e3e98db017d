#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilPlugIn.hpp"

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
    const auto station = agent();
    setCriteria(std::make_shared<CriterionList>());
    const auto roots = criteria();
    roots->push_back(RunScriptCriterion::criterionWithAgent(station));
    roots->push_back(PlaySoundCriterion::criterionWithAgent(station));
    roots->push_back(SeparatorCriterion::criterionWithAgent(station));
    roots->push_back(SpeakTextCriterion::criterionWithAgent(station));
    roots->push_back(SayCurrentConditionsCriterion::criterionWithAgent(station));
    roots->push_back(SeparatorCriterion::criterionWithAgent(station));
    HostWorld* host = world();
    setStartTime(host ? std::optional(host->now()) : std::nullopt);
    setActionStatus(kIdleStatus);
    setCurrentPropertyStringValue("");
}

HostWorld* QRVVigilPlugIn::world() const {
    return agent() ? &agent()->world() : HostWorld::current();
}

}  // namespace vigil
