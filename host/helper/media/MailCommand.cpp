#include "host/helper/media/MailCommand.hpp"

#include <signal.h>
#include <unistd.h>

#include "host/helper/HostSocket.hpp"
#include "host/helper/media/SmtpSession.hpp"

namespace vigil {
namespace {

// The library says farewell to the server as it clears up, and would wait for two minutes for one that says
// nothing. Everything that matters has been said by then, so the process may just end.
void endWithinASecond() {
    sigset_t alarm;
    sigemptyset(&alarm);
    sigaddset(&alarm, SIGALRM);
    ::signal(SIGALRM, SIG_DFL);
    ::sigprocmask(SIG_UNBLOCK, &alarm, nullptr);
    ::alarm(1);
}

}  // namespace

int runMailCommand(int socket) {
    guardProcess();
    const auto message = receiveMessage(socket);
    if (!message) return 3;
    const auto job = decodeSmtpJob(*message);
    if (!job) {
        const DeliveryResult result{DeliveryResult::Deferred, 0, 0,
                                    "the helper does not understand the host; both must be of one version"};
        return sendAll(socket, encodeDeliveryResult(result)) ? 2 : 3;
    }
    SmtpSession session(*job, socket);
    const bool told = sendAll(socket, encodeDeliveryResult(session.run()));
    endWithinASecond();
    return told ? 0 : 3;
}

}  // namespace vigil
