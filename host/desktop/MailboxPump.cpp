#include "host/desktop/MailboxPump.hpp"

#include <QCoreApplication>
#include <QEvent>
#include <QTimer>
#include <chrono>

namespace vigil {
namespace {

/// Behind so much work in one go the window gets its turn.
constexpr auto kSlice = std::chrono::milliseconds(20);

}  // namespace

MailboxPump::MailboxPump(Mailbox& mailbox) : m_mailbox(&mailbox) {
    mailbox.setWaker([this] { wake(); });
    wake();
}

MailboxPump::~MailboxPump() {
    release();
}

void MailboxPump::release() {
    if (m_mailbox) m_mailbox->setWaker({});
    m_mailbox = nullptr;
}

void MailboxPump::wake() {
    if (!m_woken.exchange(true)) QCoreApplication::postEvent(this, new QEvent(QEvent::User));
}

bool MailboxPump::event(QEvent* event) {
    if (event->type() != QEvent::User) return QObject::event(event);
    m_woken = false;
    const auto end = std::chrono::steady_clock::now() + kSlice;
    bool served = false;
    while (m_mailbox && m_mailbox->serveOne({})) {
        served = true;
        // Whoever waits inside a task looks at what has come of it, before more is done on top of it.
        if (m_nested) break;
        if (std::chrono::steady_clock::now() < end) continue;
        break;
    }
    if (served) wake();  // a task that waits for rest may go on only now
    if (m_nested) m_nested->quit();
    return true;
}

void MailboxPump::turn(Mailbox::Deadline deadline) {
    if (!m_mailbox || m_mailbox->serveOneNested({})) return;
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    if (left.count() <= 0) return;
    QEventLoop loop;
    QEventLoop* const outer = std::exchange(m_nested, &loop);
    QTimer timer;
    timer.setSingleShot(true);
    timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
    timer.start(static_cast<int>(std::min<long long>(left.count(), 3'600'000)));
    loop.exec();
    m_nested = outer;
}

}  // namespace vigil
