#include "host/run/FireDesk.hpp"

#include <utility>

#include "host/services/Mailbox.hpp"
#include "host/site/SiteWriter.hpp"

namespace vigil {
namespace {

thread_local FireDesk::Announcement* t_announcement = nullptr;

}  // namespace

FireDesk::FireDesk(SiteWriter& writer, std::function<Date()> clock)
    : m_writer(writer), m_clock(std::move(clock)) {}

void FireDesk::enroll(const Object& plugIn, PlugInIdentity identity) {
    const std::lock_guard lock(m_mutex);
    m_identities[&plugIn] = std::move(identity);
}

void FireDesk::dismiss(const Object& plugIn) {
    const std::lock_guard lock(m_mutex);
    m_identities.erase(&plugIn);
}

std::optional<PlugInIdentity> FireDesk::identity(const Object& plugIn) const {
    const std::lock_guard lock(m_mutex);
    const auto found = m_identities.find(&plugIn);
    if (found == m_identities.end()) return std::nullopt;
    return found->second;
}

std::optional<Date> FireDesk::lastEnd(RecordId plugIn) const {
    const std::lock_guard lock(m_mutex);
    const auto found = m_lastEnds.find(plugIn);
    if (found == m_lastEnds.end()) return std::nullopt;
    return found->second;
}

FireDesk::Announcement::Announcement() : m_before(std::exchange(t_announcement, this)) {}

FireDesk::Announcement::~Announcement() {
    t_announcement = m_before;
}

void FireDesk::fire(const std::shared_ptr<const Object>& plugIn, PlugInIdentity identity,
                    const std::function<void()>& actions,
                    const std::function<void(const std::function<void()>&)>& handOver) {
    Fire fire{m_writer.newId(), std::move(identity), plugIn, {}, {}};
    handOver([&] {
        struct Leave {
            FireDesk& desk;
            Fire& fire;
            ~Leave() {
                desk.m_acting.pop_back();
                fire.ended = desk.m_clock();
                const std::lock_guard lock(desk.m_mutex);
                desk.m_lastEnds[fire.of.plugIn] = fire.ended;
            }
        };
        // Removing happens on this thread: from here on the plug-in stays what it is until it has acted.
        if (!this->identity(*plugIn)) throw HandOverRefused();
        fire.began = m_clock();
        // No answer is waited for: what the actions do is written behind it and released behind it.
        m_writer.putFire({.id = fire.id, .plugIn = fire.of.plugIn, .time = fire.began}, {});
        m_acting.push_back(&fire);
        const Leave leave{*this, fire};
        actions();
    });
    if (t_announcement) t_announcement->fires.push_back(std::move(fire));
}

}  // namespace vigil
