#pragma once

#include <optional>
#include <string>
#include <vector>

// What a user has set in vigil.toml; what is not set has the default that stands here. The table of
// SettingsTable.hpp tells each key's type, range and meaning, docs/settings.md the same for people. Plain
// values: any thread that has its own. Paths are whole once they are read; a secret is only named.

namespace vigil {

enum class MailMethod { None, Smtp, Sendmail };
enum class MailSecurity { None, StartTls, Tls };
enum class SmsMethod { None, Gammu, Mmcli, Command };
enum class LogFormat { Auto, Text, Journal, Json };

struct SoundSettings {
    std::string device{};  ///< by the name that the sound server shows; empty: its default
};

struct SpeechSettings {
    std::string program = "espeak-ng";  ///< a path, or a name that is looked up in PATH
    std::string voice{};                ///< as the program names it; empty: the one of `language`
    int rate = 175;                     ///< words a minute
    std::string language{};             ///< as in "de" or "en-gb"; empty: the program's own
};

struct MailSettings {
    MailMethod method = MailMethod::None;
    std::string host{};
    std::optional<int> port{};  ///< nothing: the usual one of `security`
    MailSecurity security = MailSecurity::StartTls;
    std::string user{};    ///< to log in as; empty: without a login
    std::string secret{};  ///< the name under which the user's password is kept
    std::string from{};    ///< the address that mail is sent from
    std::string caFile{};  ///< of certificates to trust; empty: the system's
    std::string sendmail = "/usr/sbin/sendmail";
};

struct SmsSettings {
    SmsMethod method = SmsMethod::None;
    /// Of method `Command`: a program and its arguments, never read by a shell. The number and the text
    /// follow as the last two.
    std::vector<std::string> command{};
    /// Instead of "gammu-smsd-inject" or "mmcli": empty, a path, or a name that is looked up in PATH.
    std::string program{};
    /// Of method `Gammu`: the configuration of the daemon that sends; empty: the usual one.
    std::string config{};
};

/// What `vigil run` does unless its own options say otherwise.
struct RunSettings {
    int threads = 2;
    int logLevel = 2;  ///< 0 nothing, 1 problems, 2 notices as well, 3 every judgement as well
    LogFormat logFormat = LogFormat::Auto;
    std::optional<int> metricsPort{};  ///< of 127.0.0.1, 0 takes a free one; nothing: no port
    bool history = true;
    int historyDays = 400;
    std::string scripts{};  ///< empty: "scripts" beside the settings
};

struct SiteSettings {
    std::string file{};  ///< empty: the user's own site
};

struct Settings {
    SoundSettings sound{};
    SpeechSettings speech{};
    MailSettings mail{};
    SmsSettings sms{};
    RunSettings run{};
    SiteSettings site{};
};

/// The port of mail: as set, or the usual one of its security (25, 587 or 465).
int mailPort(const MailSettings& mail);

}  // namespace vigil
