#include <utility>

#include "host/desktop/SiteSession.hpp"
#include "host/kit/ExceptionText.hpp"
#include "platform/CallNote.hpp"
#include "platform/InterfaceOwner.hpp"

// What people ask a plug-in to do, and what they look up.

namespace vigil {

void SiteSession::perform(RecordId id, const std::string& action) {
    HostedPlugIn* hosted = m_site->plugIn(id);
    if (!hosted) return;
    try {
        hosted->call([&](QRVPlugIn& plugIn) {
            InterfaceOwner* owner = plugIn.interfaceOwner();
            const InterfaceAction* found = owner ? owner->actionNamed(action) : nullptr;
            const CallNote::Scope note(hosted->plugIn());
            if (found) found->perform(*owner, nullptr);
        });
    } catch (...) {
        trouble("\"" + hosted->plugIn()->title() + "\": " + exceptionText(std::current_exception()));
    }
}

// By way of the mailbox, so that what waits for rest does not begin inside it.
bool SiteSession::test(RecordId id, std::function<void()> ended) {
    HostedPlugIn* hosted = m_site->plugIn(id);
    if (!hosted) return false;
    return m_site->mailbox().dispatchAsync([this, id, plugIn = hosted->plugIn(), ended = std::move(ended)] {
        {
            // Its own fire does not begin while it is tried by hand.
            const Mailbox::Hold hold(m_site->mailbox(), plugIn);
            perform(id, "testSound:");
        }
        if (ended) ended();
        m_pace.ring();
    });
}

void SiteSession::readLedger(const EffectQuery& query,
                             std::function<void(Result<std::vector<EffectRecord>>)> done) {
    const auto found = std::make_shared<std::vector<EffectRecord>>();
    m_editor->apply(
        [query, found](SiteFile& file) -> Result<RecordId> {
            auto effects = file.effects(query);
            if (!effects) return effects.error();
            *found = std::move(effects).value();
            return RecordId{0};
        },
        [found, done = std::move(done)](const Result<RecordId>& read,
                                        const std::optional<RunningSite::Rows>&) {
            done(read ? Result<std::vector<EffectRecord>>(std::move(*found))
                      : Result<std::vector<EffectRecord>>(read.error()));
        });
}

}  // namespace vigil
