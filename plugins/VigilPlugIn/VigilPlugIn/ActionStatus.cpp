#include "plugins/VigilPlugIn/VigilPlugIn/ActionStatus.hpp"

#include <mutex>

#include "platform/Object.hpp"

namespace vigil {

void appendNextTriggerText(std::string& to, const std::optional<Date>& date) {
    to += "Next trigger at ";
    if (date)
        date->appendDescription(to);
    else
        to += kAbsentText;
}

void ActionStatus::set(std::string_view text) {
    {
        const std::lock_guard lock(m_lock);
        m_sentence.assign(text);
        m_nextTriggers.clear();
    }
    m_changed.notify();
}

void ActionStatus::appendNextTrigger(const std::optional<Date>& date) {
    {
        const std::lock_guard lock(m_lock);
        m_nextTriggers.push_back(date);
    }
    m_changed.notify();
}

std::string ActionStatus::text() const {
    const std::lock_guard lock(m_lock);
    std::string text = m_sentence;
    for (const auto& date : m_nextTriggers)
        appendNextTriggerText(text, date);
    return text;
}

}  // namespace vigil
