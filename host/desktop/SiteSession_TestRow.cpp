#include <algorithm>
#include <utility>

#include "conditions/ConditionPredicate.hpp"
#include "host/desktop/SiteSession.hpp"
#include "host/kit/ExceptionText.hpp"
#include "platform/ClassRegistry.hpp"
#include "platform/InterfaceOwner.hpp"
#include "platform/RuleEditor.hpp"

// Trying one row of actions by hand: another monitor is made that has this row alone, on a station of its
// own, and fires once. So the row is run by the very code that runs it in earnest, with the controls as they
// stand.

namespace vigil {
namespace {

/// Scripts end by themselves; how they ended is looked up so often, and so many times.
constexpr int kLookMilliseconds = 200;
constexpr int kLooks = 400;

/// True for readings that lack that key.
constexpr const char* kAlways = "vigilTest.stringValue != \"\"";

bool set(InterfaceOwner& owner, const char* name, const Value& value) {
    const auto* property = owner.propertyNamed(name);
    return property && property->set && property->set(owner, value);
}

std::shared_ptr<RuleEditor> editorOf(const std::vector<std::shared_ptr<Object>>& view) {
    for (const auto& object : view)
        if (auto editor = std::dynamic_pointer_cast<RuleEditor>(object)) return editor;
    return nullptr;
}

}  // namespace

void SiteSession::actRow(HostedPlugIn& of, RecordId id, const RuleEditor& editor, std::int64_t row) {
    const auto station = std::dynamic_pointer_cast<Station>(of.plugIn()->agent());
    const std::string className = of.plugIn()->className();
    const auto bundle = ClassRegistry::shared().bundleForClass(className);
    const auto plugIn = std::dynamic_pointer_cast<QRVPlugIn>(ClassRegistry::shared().make(className));
    if (!station || !bundle || !plugIn) return;
    const auto probe = std::make_shared<Station>(m_site->world(), station->name(), m_site->scripts());
    HostedPlugIn hosted(m_site->world(), plugIn);
    if (!hosted.call([&](QRVPlugIn& made) { return made.initWithAgent(probe, nullptr); })) return;
    InterfaceOwner* owner = plugIn->interfaceOwner();
    if (!owner) return;
    const auto view = hosted.call(
        [&](QRVPlugIn&) { return m_site->interfaceFiles().instantiate(*bundle, className, owner); });
    const auto rows = view ? editorOf(*view) : nullptr;
    const auto always = ConditionPredicate::predicateWithFormat(kAlways);
    if (!rows || !always) return;
    rows->setCriteria(editor.criteriaForRow(row), editor.displayValuesForRow(row), 0);
    set(*owner, "predicate", Value(std::static_pointer_cast<Object>(always.value())));
    set(*owner, "evaluating", Value(true));
    auto& fires = m_site->world().fires();
    fires.enroll(*plugIn, {id, station->name(), of.plugIn()->title()});
    if (!hosted.start())
        for (const DeliveryFailure& failure : probe->announce(station->properties()))
            trouble("\"" + of.plugIn()->title() + "\": " + exceptionText(failure.what));
    static_cast<void>(hosted.stop());
    fires.dismiss(*plugIn);
}

bool SiteSession::testRow(RecordId id, std::shared_ptr<RuleEditor> editor, std::int64_t row,
                          RowTested ended) {
    return m_site->mailbox().dispatchAsync(
        [this, id, editor = std::move(editor), row, ended = std::move(ended)] {
            const Date since = m_site->world().now();
            HostedPlugIn* hosted = m_site->plugIn(id);
            if (hosted && row < editor->numberOfRows()) {
                const Mailbox::Hold hold(m_site->mailbox(), hosted->plugIn());
                actRow(*hosted, id, *editor, row);
            }
            m_pace.ring();
            awaitEffect(id, since, kLooks, ended);
        });
}

// The ledger hears of every end; the newest one since then is this row's.
void SiteSession::awaitEffect(RecordId id, Date since, int left, RowTested ended) {
    const auto last = m_site->world().effects().last(id);
    if (last && last->when >= since) {
        const auto tell = [id, since, ended](const Result<std::vector<EffectRecord>>& effects) {
            std::optional<EffectRecord> found;
            if (effects)
                for (const EffectRecord& effect : effects.value())
                    if (effect.plugIn == id && effect.queued >= since) found = effect;
            ended(found);
        };
        return readLedger({.since = since}, tell);
    }
    if (left == 0) return ended(std::nullopt);
    QTimer::singleShot(kLookMilliseconds, &m_pace,
                       [this, id, since, left, ended] { awaitEffect(id, since, left - 1, ended); });
}

void SiteSession::watchEffects(RecordId id, Date since, std::function<void(std::vector<EffectRecord>)> told) {
    watchOn(id, since, kLooks, std::move(told));
}

void SiteSession::watchOn(RecordId id, Date since, int left,
                          std::function<void(std::vector<EffectRecord>)> told) {
    const auto look = [this, id, since, left, told](const Result<std::vector<EffectRecord>>& effects) {
        if (!effects) return trouble("what came of the test cannot be read: " + effects.error().message);
        std::vector<EffectRecord> tested;
        for (const EffectRecord& effect : effects.value())
            if (effect.plugIn == id && effect.fire == 0 && effect.queued >= since) tested.push_back(effect);
        const bool over = std::all_of(tested.begin(), tested.end(), [](const EffectRecord& effect) {
            return effect.state == EffectRecord::Ended;
        });
        told(std::move(tested));
        // What was asked for last may not be written down yet at the first look.
        if ((over && left < kLooks) || left == 0) return;
        QTimer::singleShot(kLookMilliseconds, &m_pace,
                           [this, id, since, left, told] { watchOn(id, since, left - 1, told); });
    };
    readLedger({.since = since}, look);
}

}  // namespace vigil
