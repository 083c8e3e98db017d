#pragma once

#include <functional>
#include <utility>

#include "host/services/Mailbox.hpp"
#include "platform/MainQueue.hpp"

namespace vigil {

/// The nested loop of the main thread: serves at most one task of the mailbox, or waits until the date. Main
/// thread.
class MainRunLoop : public RunLoop {
  public:
    using Clock = std::function<Date()>;
    /// Serves at most one task of the mailbox (`Mailbox::serveOneNested`) and whatever else its thread has to
    /// do, or waits until the deadline.
    using Turn = std::function<void(Mailbox::Deadline)>;
    MainRunLoop(Mailbox& mailbox, Clock clock);
    void runUntil(Date date) override;
    /// For a main thread that also serves a window's events.
    void setTurn(Turn turn) { m_turn = std::move(turn); }

  private:
    Mailbox& m_mailbox;
    Clock m_clock;
    Turn m_turn;
};

/// The loop of any other thread, at which nothing arrives: it waits until the date. Any thread but the main
/// one.
class SleepingRunLoop : public RunLoop {
  public:
    explicit SleepingRunLoop(MainRunLoop::Clock clock);
    void runUntil(Date date) override;

  private:
    MainRunLoop::Clock m_clock;
};

/// The moment of the steady clock that is as far away as `date` is from `now`. A date in the past, or none
/// (not a number), is now; one further away than a day is a day away, which a loop may return early from.
Mailbox::Deadline deadlineFor(Date date, Date now);

}  // namespace vigil
