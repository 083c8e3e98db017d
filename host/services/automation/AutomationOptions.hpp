#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/Date.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// How mail is sent.
struct MailOptions {
    enum Method { None, Smtp, Sendmail };
    enum Security { Plain, StartTls, Tls };

    Method method = None;
    std::string host{};
    int port = 0;
    Security security = StartTls;
    std::string user{};    ///< to log in as; empty: without a login. Never in the clear but to this machine
    std::string secret{};  ///< the name of the password, see `AutomationOptions::secret`
    std::string from{};    ///< the address that mail is sent from
    std::string caFile{};  ///< certificates to trust; empty: the system's
    std::string sendmail = "/usr/sbin/sendmail";
    std::chrono::milliseconds connectTime{15000};  ///< until the server has let us in
    std::chrono::milliseconds wholeTime{60000};    ///< for an attempt in all
};

/// How short messages are sent.
struct SmsOptions {
    enum Method { None, Gammu, Mmcli, Command };

    Method method = None;
    /// Of `Command`: a program and its arguments, never read by a shell. The number and the text follow as
    /// its last two arguments; the text stands on its standard input, too. Exit status 75 asks for another
    /// attempt.
    std::vector<std::string> command{};
    std::string program{};                  ///< instead of "gammu-smsd-inject" or "mmcli"
    std::string config{};                   ///< of `Gammu`: the daemon's configuration; empty: its own choice
    std::chrono::milliseconds time{60000};  ///< for an attempt in all
};

/// When a message that was refused for now is tried again: after `firstSeconds`, and twice as long from
/// attempt to attempt.
struct RetryOptions {
    double firstSeconds = 60;
    double longestSeconds = 3600;
    double giveUpSeconds = 86400;  ///< after it was asked for
};

struct AutomationOptions {
    MailOptions mail{};
    SmsOptions sms{};
    RetryOptions retry{};
    std::string helper{};  ///< path of `vigil-helper`
    /// The secret of that name, nothing where there is none, an error where it cannot be had. Any thread; it
    /// may read a file.
    std::function<Result<std::optional<std::string>>(const std::string& name)> secret{};
    std::function<Date()> clock{};  ///< any thread
    std::size_t waiting = 100;      ///< messages of a kind that may wait or be under way
};

/// Why no mail, or no short message, can be sent as things are set up; nothing where it can.
std::optional<std::string> whyNoMail(const MailOptions& options);
std::optional<std::string> whyNoSms(const SmsOptions& options);

}  // namespace vigil
