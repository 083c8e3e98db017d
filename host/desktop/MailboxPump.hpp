#pragma once

#include <QEventLoop>
#include <QObject>
#include <atomic>

#include "host/services/Mailbox.hpp"

namespace vigil {

/// Lets Qt's event loop serve a mailbox: what arrives there wakes the loop by an event, and nothing else of
/// Qt touches it. Main thread, but for the waking.
class MailboxPump : public QObject {
  public:
    /// The mailbox outlives this, or `release` is called before it goes.
    explicit MailboxPump(Mailbox& mailbox);
    ~MailboxPump() override;
    void release();

    /// The nested loop of a task that waits: serves one task, and the window meanwhile, or returns at the
    /// deadline.
    void turn(Mailbox::Deadline deadline);

  protected:
    bool event(QEvent* event) override;

  private:
    void wake();

    Mailbox* m_mailbox;
    std::atomic<bool> m_woken{false};  // an event is under way
    QEventLoop* m_nested = nullptr;    // the innermost one
};

}  // namespace vigil
