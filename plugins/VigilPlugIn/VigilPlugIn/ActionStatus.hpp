#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Date.hpp"
#include "platform/Property.hpp"
#include "platform/SmallLock.hpp"

namespace vigil {

/// A monitor's status text. It grows by one "Next trigger at …" with every fire for as long as no miss
/// replaces it, so it is kept as a sentence and the dates behind it, and built when somebody reads it. Any
/// thread.
class ActionStatus {
  public:
    /// Replaces the whole text.
    void set(std::string_view text);
    /// Appends "Next trigger at %@" with the date, or with "(null)" for none.
    void appendNextTrigger(const std::optional<Date>& date);
    std::string text() const;

    /// Called after every change, on the changing thread.
    [[nodiscard]] std::shared_ptr<const void> observe(std::function<void()> observer) {
        return m_changed.observe(std::move(observer));
    }

  private:
    mutable SmallLock m_lock;
    std::string m_sentence;
    std::vector<std::optional<Date>> m_nextTriggers;
    Property<bool> m_changed;
};

/// "Next trigger at %@" with the date.
void appendNextTriggerText(std::string& to, const std::optional<Date>& date);

}  // namespace vigil
