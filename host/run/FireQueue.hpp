#pragma once

#include "host/run/FireDesk.hpp"
#include "host/services/Mailbox.hpp"

namespace vigil {

/// The main queue as plug-ins see it: a hand-over of a plug-in of the site is a fire, and the thread that
/// waits for it has left its place in the strands' pool.
class FireQueue : public MainQueue {
  public:
    /// Both are the caller's and outlive this.
    FireQueue(Mailbox& mailbox, FireDesk& desk) : m_mailbox(mailbox), m_desk(desk) {}

    bool isMainThread() const override { return m_mailbox.isMainThread(); }
    void dispatchSync(const Task& task) override;
    bool dispatchAsync(Task task) override { return m_mailbox.dispatchAsync(std::move(task)); }

  private:
    Mailbox& m_mailbox;
    FireDesk& m_desk;
};

}  // namespace vigil
