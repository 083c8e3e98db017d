#include "host/settings/SettingsTable.hpp"

#include "host/settings/SettingsTable_Access.hpp"

namespace vigil {
namespace {

using Kind = SettingRow::Kind;
constexpr long kLastPort = 65535;

std::vector<SettingRow> soundAndSpeech() {
    return {
        rowFor<&Settings::sound, &SoundSettings::device>({
            .section = "sound",
            .key = "device",
            .says =
                "What sounds and speech are played on, by the name that the sound server shows to people.",
            .otherwise = "the server's default",
        }),
        rowFor<&Settings::speech, &SpeechSettings::program>({
            .section = "speech",
            .key = "program",
            .kind = Kind::Program,
            .says = "What makes speech of text: espeak-ng, or a program that takes the same options.",
        }),
        rowFor<&Settings::speech, &SpeechSettings::voice>({
            .section = "speech",
            .key = "voice",
            .says = "The voice, as `espeak-ng --voices` names it.",
            .otherwise = "the voice of the language",
        }),
        rowFor<&Settings::speech, &SpeechSettings::rate>({
            .section = "speech",
            .key = "rate",
            .kind = Kind::Number,
            .says = "Words a minute.",
            .least = 80,
            .most = 450,
        }),
        rowFor<&Settings::speech, &SpeechSettings::language>({
            .section = "speech",
            .key = "language",
            .says = "The language, as in `de` or `en-gb`; of no account beside a voice.",
            .otherwise = "the program's own",
        }),
    };
}

std::vector<SettingRow> mail() {
    return {
        rowFor<&Settings::mail, &MailSettings::method>({
            .section = "mail",
            .key = "method",
            .kind = Kind::Choice,
            .says = "How mail leaves: to a server, by this machine's `sendmail`, or not at all.",
        }),
        rowFor<&Settings::mail, &MailSettings::host>({
            .section = "mail",
            .key = "host",
            .kind = Kind::Host,
            .says = "The server, for `smtp`.",
            .otherwise = "none",
        }),
        rowFor<&Settings::mail, &MailSettings::port>({
            .section = "mail",
            .key = "port",
            .kind = Kind::Number,
            .says = "Its port.",
            .otherwise = "587 with `starttls`, 465 with `tls`, 25 with `none`",
            .least = 1,
            .most = kLastPort,
        }),
        rowFor<&Settings::mail, &MailSettings::security>({
            .section = "mail",
            .key = "security",
            .kind = Kind::Choice,
            .says = "How the connection is kept private; the server's certificate is always verified.",
        }),
        rowFor<&Settings::mail, &MailSettings::user>({
            .section = "mail",
            .key = "user",
            .says = "Whom to log in as.",
            .otherwise = "no login",
        }),
        rowFor<&Settings::mail, &MailSettings::secret>({
            .section = "mail",
            .key = "secret",
            .kind = Kind::Name,
            .says = "The name of the user's password in the file of secrets.",
            .otherwise = "none",
        }),
        rowFor<&Settings::mail, &MailSettings::from>({
            .section = "mail",
            .key = "from",
            .kind = Kind::Address,
            .says = "The address that mail is sent from.",
            .otherwise = "none",
        }),
        rowFor<&Settings::mail, &MailSettings::caFile>({
            .section = "mail",
            .key = "ca-file",
            .kind = Kind::Path,
            .says = "Certificates to trust in place of the system's.",
            .otherwise = "the system's",
        }),
        rowFor<&Settings::mail, &MailSettings::sendmail>({
            .section = "mail",
            .key = "sendmail",
            .kind = Kind::Program,
            .says = "The program of method `sendmail`.",
        }),
    };
}

std::vector<SettingRow> sms() {
    return {
        rowFor<&Settings::sms, &SmsSettings::method>({
            .section = "sms",
            .key = "method",
            .kind = Kind::Choice,
            .says =
                "How an SMS leaves: by the gammu daemon, ModemManager, a command of yours, or not at all.",
        }),
        rowFor<&Settings::sms, &SmsSettings::command>({
            .section = "sms",
            .key = "command",
            .kind = Kind::Words,
            .says =
                "The command of method `command`; the number and the text follow as its last two arguments.",
            .otherwise = "none",
        }),
        rowFor<&Settings::sms, &SmsSettings::program>({
            .section = "sms",
            .key = "program",
            .kind = Kind::Program,
            .says = "Another program in place of the method's own.",
            .otherwise = "`gammu-smsd-inject` or `mmcli`",
        }),
        rowFor<&Settings::sms, &SmsSettings::config>({
            .section = "sms",
            .key = "config",
            .kind = Kind::Path,
            .says = "The gammu daemon's configuration, for method `gammu`.",
            .otherwise = "the program's own",
        }),
    };
}

std::vector<SettingRow> runAndSite() {
    return {
        rowFor<&Settings::run, &RunSettings::threads>({
            .section = "run",
            .key = "threads",
            .kind = Kind::Number,
            .says = "Threads that the stations share.",
            .least = 1,
            .most = 64,
        }),
        rowFor<&Settings::run, &RunSettings::logLevel>({
            .section = "run",
            .key = "log-level",
            .kind = Kind::Number,
            .says = "0 nothing, 1 problems, 2 notices as well, 3 every judgement as well.",
            .least = 0,
            .most = 3,
        }),
        rowFor<&Settings::run, &RunSettings::logFormat>({
            .section = "run",
            .key = "log-format",
            .kind = Kind::Choice,
            .says =
                "How the log's lines look; `auto` is `journal` where the journal reads them, else `text`.",
        }),
        rowFor<&Settings::run, &RunSettings::metricsPort>({
            .section = "run",
            .key = "metrics-port",
            .kind = Kind::Number,
            .says = "Where 127.0.0.1 answers `/metrics`, `/health` and `/status`; 0 takes a free port.",
            .otherwise = "no port",
            .least = 0,
            .most = kLastPort,
        }),
        rowFor<&Settings::run, &RunSettings::history>({
            .section = "run",
            .key = "history",
            .kind = Kind::Flag,
            .says = "Whether readings are kept.",
        }),
        rowFor<&Settings::run, &RunSettings::historyDays>({
            .section = "run",
            .key = "history-days",
            .kind = Kind::Number,
            .says = "For how many days they are kept.",
            .least = 1,
            .most = 36500,
        }),
        rowFor<&Settings::run, &RunSettings::scripts>({
            .section = "run",
            .key = "scripts",
            .kind = Kind::Path,
            .says = "The folder of the scripts that monitors run.",
            .otherwise = "`scripts` in the settings' folder",
        }),
        rowFor<&Settings::site, &SiteSettings::file>({
            .section = "site",
            .key = "file",
            .kind = Kind::Path,
            .says = "The site of every command that is not given `--site`.",
            .otherwise = "`~/.local/share/vigil/home.vigilsite`",
        }),
    };
}

std::vector<SettingRow> allRows() {
    std::vector<SettingRow> rows;
    for (auto part : {soundAndSpeech(), mail(), sms(), runAndSite()})
        rows.insert(rows.end(), part.begin(), part.end());
    return rows;
}

}  // namespace

const std::vector<SettingRow>& settingsTable() {
    static const std::vector<SettingRow> rows = allRows();
    return rows;
}

}  // namespace vigil
