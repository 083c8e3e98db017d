#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "host/services/automation/AutomationOptions.hpp"
#include "host/services/automation/DeliveryWire.hpp"
#include "host/services/automation/HandOver.hpp"
#include "host/services/automation/MailMessage.hpp"

namespace vigil {

/// A message that is to be delivered, with whoever keeps a record of it.
class Posting {
  public:
    virtual ~Posting();

    HandOver message{};  ///< a mail or a short message
    MailStamp stamp{};   ///< of a mail
    Date asked{};        ///< when it was handed over; retries end so long behind it
    Date due{};          ///< no attempt before
    int attempt = 1;     ///< the number of the next one, or of the one that is under way

    // On the courier's thread. Must not throw.

    /// The attempt begins as soon as `go` is called, which happens once, on any thread, when the beginning is
    /// written down (true) or cannot be (false). A first attempt is made all the same: an alarm is worth more
    /// than its record. A later one is put off, since what is written down is that it is due: a restart would
    /// send it a second time.
    virtual void begin(Date now, std::function<void(bool written)> go) = 0;
    /// What became of it. `again`: when it is tried again; nothing where it is not.
    virtual void ended(const DeliveryResult& result, Date now, std::optional<Date> again) = 0;
};

/// Delivers messages, mail and short messages each one after another, in the order handed over; one that was
/// refused for now waits and lets others go first. Any thread may call anything but `stop`; no call but
/// `stop` waits. Each kind that is set up has a thread.
class Courier {
  public:
    enum Lane { Mail, Sms };

    explicit Courier(AutomationOptions options);
    Courier(const Courier&) = delete;
    Courier& operator=(const Courier&) = delete;
    /// Stops.
    ~Courier();

    const AutomationOptions& options() const;

    /// Takes one of the places of that kind; false where none is left. It is free again when the message has
    /// ended for good.
    bool reserve(Lane lane);
    /// Takes a place whether or not one is left: of what waited before a restart.
    void reserveAnyway(Lane lane);
    /// Of a kind that is set up and has a place. After `stop` the posting ends at once, deferred, on the
    /// calling thread.
    void submit(Lane lane, std::shared_ptr<Posting> posting);

    /// Places that are taken.
    std::size_t taken(Lane lane) const;

    /// Gives up what is under way, within about a second, and waits for it. What has not begun at all ends,
    /// deferred; what waits for another attempt has ended before and stays as it is.
    void stop();

  private:
    struct State;
    std::shared_ptr<State> m_state;
};

/// When the next attempt is due after one that was refused for now; nothing where it is time to give up.
/// `attempt` is the number of the one that has ended.
std::optional<Date> nextAttempt(const RetryOptions& retry, Date asked, int attempt, Date now);

}  // namespace vigil
