#include "host/settings/Settings.hpp"

namespace vigil {

int mailPort(const MailSettings& mail) {
    constexpr int kRelay = 25;
    constexpr int kSubmission = 587;
    constexpr int kSubmissionInTls = 465;
    if (mail.port) return *mail.port;
    switch (mail.security) {
        case MailSecurity::None:
            return kRelay;
        case MailSecurity::StartTls:
            return kSubmission;
        case MailSecurity::Tls:
            return kSubmissionInTls;
    }
    return kSubmission;
}

}  // namespace vigil
