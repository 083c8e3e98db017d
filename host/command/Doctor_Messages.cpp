#include <cerrno>
#include <cstring>

#include <unistd.h>

#include "host/command/Doctor_Probes.hpp"
#include "host/run/Secrets.hpp"
#include "host/setup/ServiceOptions.hpp"

// Mail and short messages: whether what is set can be used. Nothing is sent and no server is asked.

namespace vigil {
namespace {

constexpr const char* kInstall = "install it, or set another in vigil.toml";

/// The program, where its method needs one.
Diagnosis programDiagnosis(const DoctorSurroundings& here, const std::string& name) {
    if (const auto path = programPath(here, name)) return Diagnosis::well(*path + " takes it");
    return Diagnosis::finding("there is no program " + name, kInstall);
}

bool isThere(const std::string& path) {
    return access(path.c_str(), F_OK) == 0;
}

/// A file that the settings name, where it cannot be read.
std::optional<Diagnosis> fileFinding(const DoctorSurroundings& here, const char* key,
                                     const std::string& file) {
    if (file.empty() || access((here.root + file).c_str(), R_OK) == 0) return std::nullopt;
    const std::string reason = std::strerror(errno);
    return Diagnosis::finding(std::string(key) + ": " + file + ": " + reason,
                              "see to it that this user may read it, or set another in " + here.settingsFile);
}

/// The password is looked for, not told.
std::optional<Diagnosis> passwordFinding(const DoctorSurroundings& here, const MailOptions& mail) {
    if (mail.user.empty()) return std::nullopt;
    const auto secret = Secrets(here.root + here.secretsFile).named(mail.secret);
    if (secret && secret.value()) return std::nullopt;
    if (!secret && isThere(here.root + here.secretsFile))
        return Diagnosis::finding(
            "the secret \"" + mail.secret + "\" of the login at " + mail.host + " cannot be had",
            secret.error().message.substr(here.root.size()));
    return Diagnosis::finding(
        "the login at " + mail.host + " has no secret called \"" + mail.secret + "\"",
        "write a line \"" + mail.secret + " = PASSWORD\" into " + here.secretsFile + ", and chmod 600 it");
}

}  // namespace

Diagnosis mailProbe(const DoctorSurroundings& here) {
    const MailOptions mail = automationOptions(here.settings, here.programFolder).mail;
    if (mail.method == MailOptions::None) return Diagnosis::well("none is set up, so none is sent");
    if (const auto why = whyNoMail(mail))
        return Diagnosis::finding(*why, "see [mail] in " + here.settingsFile);
    if (mail.method == MailOptions::Sendmail) return programDiagnosis(here, mail.sendmail);
    if (auto finding = fileFinding(here, "mail.ca-file", mail.caFile)) return *std::move(finding);
    if (auto finding = passwordFinding(here, mail)) return *std::move(finding);
    return Diagnosis::well("to " + mail.host + " port " + std::to_string(mail.port) +
                           ", which was not asked");
}

Diagnosis smsProbe(const DoctorSurroundings& here) {
    const SmsOptions sms = automationOptions(here.settings, here.programFolder).sms;
    if (sms.method == SmsOptions::None) return Diagnosis::well("none is set up, so none is sent");
    if (const auto why = whyNoSms(sms)) return Diagnosis::finding(*why, "see [sms] in " + here.settingsFile);
    if (sms.method == SmsOptions::Gammu)
        if (auto finding = fileFinding(here, "sms.config", sms.config)) return *std::move(finding);
    if (sms.method == SmsOptions::Command) return programDiagnosis(here, sms.command.front());
    if (!sms.program.empty()) return programDiagnosis(here, sms.program);
    return programDiagnosis(here, sms.method == SmsOptions::Gammu ? "gammu-smsd-inject" : "mmcli");
}

}  // namespace vigil
