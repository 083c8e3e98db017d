#include "host/command/Doctor_Probes.hpp"

#include <filesystem>

#include <gmock/gmock.h>
#include <unistd.h>

#include "host/command/MonitorDraft.hpp"
#include "host/command/OpenMonitor.hpp"
#include "host/command/testing/DoctorBench.hpp"
#include "host/kit/MonitorModule.hpp"
#include "host/site/SiteFile.hpp"

namespace vigil {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using State = Diagnosis::State;
using DoctorProbes = DoctorBench;

TEST_F(DoctorProbes, ADisplayIsThereWhenItsServersSocketIs) {
    expect(displayProbe(m_here), State::Finding, "neither WAYLAND_DISPLAY nor DISPLAY");
    m_variables["WAYLAND_DISPLAY"] = "wayland-0";
    expect(displayProbe(m_here), State::Finding, "no Wayland server at /run/wayland-0");
    m_variables["DISPLAY"] = ":7.0";
    expect(displayProbe(m_here), State::Finding, "no X server is at /tmp/.X11-unix/X7");
    socketAt("/tmp/.X11-unix/X7");
    expect(displayProbe(m_here), State::Well, "X at :7.0");
    socketAt("/run/wayland-0");
    expect(displayProbe(m_here), State::Well, "Wayland at /run/wayland-0");
    m_variables = {{"DISPLAY", "far.example:0"}};
    expect(displayProbe(m_here), State::Well, "another machine");
}

TEST_F(DoctorProbes, SoundIsAServerOrElseACard) {
    expect(soundProbe(m_here), State::Finding, "no sound server at /run/pulse/native");
    file("/dev/snd/controlC0");
    file("/dev/snd/pcmC0D0c", fs::perms::owner_all);
    expect(soundProbe(m_here), State::Finding, "no sound card");
    file("/dev/snd/pcmC0D0p", fs::perms::owner_all);
    expect(soundProbe(m_here), State::Well, "a sound card");
    socketAt("/run/pipewire-0");
    expect(soundProbe(m_here), State::Well, "a sound server at /run/pipewire-0");
    m_variables["PULSE_SERVER"] = "unix:/else/native";
    expect(soundProbe(m_here), State::Well, "a sound card");
    socketAt("/else/native");
    expect(soundProbe(m_here), State::Well, "a sound server at /else/native");
    m_listening.clear();
    expect(soundProbe(m_here), State::Well, "a sound card");  // the socket is there, and nobody behind it
    m_variables["PULSE_SERVER"] = "tcp:far.example";
    expect(soundProbe(m_here), State::Well, "was not asked");
}

TEST_F(DoctorProbes, SpeechNeedsItsProgramInThePath) {
    m_variables["PATH"] = "/first::/second";
    folder("/first/espeak-ng");
    expect(speechProbe(m_here), State::Finding, "espeak-ng is not in PATH");
    program("/second/espeak-ng");
    expect(speechProbe(m_here), State::Well, "/second/espeak-ng");
    m_here.settings.speech.program = "speaker";
    expect(speechProbe(m_here), State::Finding, "speaker is not in PATH");
    m_here.settings.speech.program = "/third/speaker";
    expect(speechProbe(m_here), State::Finding, "/third/speaker is no program");
    file("/third/speaker", fs::perms::owner_read);
    expect(speechProbe(m_here), State::Finding, "/third/speaker may not be executed");
    EXPECT_EQ(speechProbe(m_here).remedy, "chmod +x /third/speaker");
    program("/third/speaker");
    expect(speechProbe(m_here), State::Well, "/third/speaker");
}

TEST_F(DoctorProbes, SettingsAreRightClosedToOthersOrNotThere) {
    expect(settingsProbe(m_here), State::Well, "there is no /settings/vigil/vigil.toml");
    file(m_here.settingsFile, fs::perms::owner_read);
    const std::string path = m_here.root + m_here.settingsFile;
    const auto write = [&](const char* text) {
        fs::permissions(path, fs::perms::owner_all);
        m_folder.write(m_here.settingsFile.substr(1), text);
        fs::permissions(path, fs::perms::owner_read);
    };
    write("[speech]\nrate = 1\nvoise = 2\n");
    expect(settingsProbe(m_here), State::Finding, "/settings/vigil/vigil.toml:2:8: speech.rate: expected");
    EXPECT_THAT(settingsProbe(m_here).says, HasSubstr("(and 1 more)"));
    write("[speech]\nrate = 100\n");
    expect(settingsProbe(m_here), State::Well, "/settings/vigil/vigil.toml");
    fs::permissions(path, fs::perms::owner_read | fs::perms::group_write);
    expect(settingsProbe(m_here), State::Finding, "others may write to /settings/vigil/vigil.toml");
    EXPECT_EQ(settingsProbe(m_here).remedy, "chmod go-w /settings/vigil/vigil.toml");
    fs::permissions(path, fs::perms::owner_read);
    fs::permissions(m_here.root + "/settings/vigil", fs::perms::owner_all | fs::perms::group_write);
    expect(settingsProbe(m_here), State::Finding, "others may write to /settings/vigil");
    EXPECT_EQ(settingsProbe(m_here).remedy, "chmod go-w /settings/vigil");
    fs::permissions(m_here.root + "/settings/vigil", fs::perms::owner_all);
    if (::geteuid() == 0) {
        ASSERT_EQ(::chown(path.c_str(), 65534, 65534), 0);
        expect(settingsProbe(m_here), State::Finding, "vigil.toml belongs to another user");
    }
    m_here.settingsFile = "/settings";
    expect(settingsProbe(m_here), State::Finding, "/settings is no file");
}

TEST_F(DoctorProbes, SecretsAreForTheirUserAlone) {
    expect(secretsProbe(m_here), State::Well, "there is no /settings/vigil/secrets");
    file(m_here.secretsFile, fs::perms::owner_read | fs::perms::owner_write);
    expect(secretsProbe(m_here), State::Well, "/settings/vigil/secrets");
    for (const fs::perms more : {fs::perms::group_read, fs::perms::others_read, fs::perms::others_write}) {
        fs::permissions(m_here.root + m_here.secretsFile, fs::perms::owner_read | more);
        expect(secretsProbe(m_here), State::Finding, "others may read /settings/vigil/secrets");
        EXPECT_EQ(secretsProbe(m_here).remedy, "chmod 600 /settings/vigil/secrets");
    }
}

TEST_F(DoctorProbes, TheSiteFolderIsThereOrCanBeMadeAndIsClosedToOthers) {
    folder("/data");
    expect(siteFolderProbe(m_here), State::Well, "will be made");
    folder("/data/vigil");
    expect(siteFolderProbe(m_here), State::Well, "/data/vigil");
    fs::permissions(m_here.root + "/data/vigil", fs::perms::owner_all | fs::perms::group_write);
    const Diagnosis open = siteFolderProbe(m_here);
    expect(open, State::Finding, "others may write to /data/vigil");
    EXPECT_EQ(open.remedy, "chmod go-w /data/vigil");
    m_here.siteFolder = "/data/file/vigil";
    file("/data/file");
    expect(siteFolderProbe(m_here), State::Finding, "/data/file is no folder");
    m_here.siteFolder.clear();
    expect(siteFolderProbe(m_here), State::Unknown, "HOME");
}

TEST_F(DoctorProbes, AFolderThatMayNotBeWrittenIsAFinding) {
    folder("/data");
    fs::permissions(m_here.root, fs::perms::owner_all | fs::perms::others_read | fs::perms::others_exec);
    fs::permissions(m_here.root + "/data", fs::perms::owner_read | fs::perms::owner_exec |
                                               fs::perms::others_read | fs::perms::others_exec);
    // The superuser may write everywhere, so nobody looks, in a process of its own.
    const auto look = [this] {
        constexpr uid_t kNobody = 65534;
        if (geteuid() == 0 && setuid(kNobody) != 0) return 2;
        const Diagnosis found = siteFolderProbe(m_here);
        return found.state == State::Finding && found.says == "/data/vigil cannot be written" ? 0 : 1;
    };
    EXPECT_EXIT(_exit(look()), testing::ExitedWithCode(0), "");
}

TEST_F(DoctorProbes, TheScriptsFolderIsThereAndNobodyElseCanPutScriptsIntoIt) {
    const Diagnosis missing = scriptsFolderProbe(m_here);
    expect(missing, State::Finding, "there is no folder /settings/vigil/scripts");
    EXPECT_EQ(missing.remedy, "mkdir -p /settings/vigil/scripts");
    folder("/settings/vigil/scripts");
    expect(scriptsFolderProbe(m_here), State::Well, "/settings/vigil/scripts");
    fs::permissions(m_here.root + "/settings/vigil/scripts", fs::perms::all);
    expect(scriptsFolderProbe(m_here), State::Finding, "others may put scripts");
    m_here.scriptsFolder = "/settings/file";
    file("/settings/file");
    expect(scriptsFolderProbe(m_here), State::Finding, "is no folder");
}

TEST_F(DoctorProbes, TheTimeZoneIsTheMachinesOrOneThatIsDescribed) {
    expect(timeZoneProbe(m_here), State::Finding, "/etc/localtime is missing");
    file("/usr/share/zoneinfo/Europe/Paris");
    folder("/etc");
    fs::create_symlink(m_here.root + "/usr/share/zoneinfo/Europe/Paris", m_here.root + "/etc/localtime");
    EXPECT_EQ(timeZoneProbe(m_here).says, "Europe/Paris");
    for (const char* const zone : {"Europe/Paris", ":Europe/Paris", "/usr/share/zoneinfo/Europe/Paris", "UTC",
                                   "CET-1CEST", "<+03>-3", "EST5EDT,M3.2.0,M11.1.0"}) {
        m_variables["TZ"] = zone;
        expect(timeZoneProbe(m_here), State::Well, "as TZ says");
    }
    for (const char* const zone : {"Europe/Pariss", ":", "Europe", "X1", "<+03", "Paris"}) {
        m_variables["TZ"] = zone;
        expect(timeZoneProbe(m_here), State::Finding, "which no file");
    }
}

TEST_F(DoctorProbes, TheInstallationHasItsModuleItsHelperAndAShell) {
    expect(moduleProbe(m_here), State::Unknown, "where this program is");
    expect(helperProbe(m_here), State::Unknown, "where this program is");
    m_here.programFolder = m_folder.path() + "/bin";
    expect(moduleProbe(m_here), State::Finding, "/lib/vigil/VigilPlugIn");
    expect(helperProbe(m_here), State::Finding, "no script can run");
    file("/bin/vigil-helper");
    expect(helperProbe(m_here), State::Finding, "no script can run");
    program("/bin/vigil-helper");
    expect(helperProbe(m_here), State::Finding, "no program");
    EXPECT_THAT(helperProbe(m_here).says, HasSubstr("vigil-helper-media, so nothing can be heard"));
    program("/bin/vigil-helper-media");
    expect(helperProbe(m_here), State::Well, "/bin/vigil-helper");
    expect(shellProbe(m_here), State::Finding, "/bin/sh is missing");
    program("/bin/sh");
    expect(shellProbe(m_here), State::Well, "/bin/sh");
    m_here.programFolder = VIGIL_BINARY_DIR "/bin";
    expect(moduleProbe(m_here), State::Well, "loads");
}

TEST_F(DoctorProbes, TheScriptsOfTheSitesRowsAreThere) {
    expect(scriptRowsProbe(m_here), State::Well, "no site yet");
    m_here.programFolder = VIGIL_BINARY_DIR "/bin";
    m_here.siteFile = "/home.vigilsite";
    expect(scriptRowsProbe(m_here), State::Well, "no site yet");
    ASSERT_TRUE(SiteFile::create(m_here.root + m_here.siteFile));
    ASSERT_TRUE(loadMonitorModule(m_here.programFolder));
    {
        const auto site = SiteFile::open(m_here.root + m_here.siteFile, Access::Edit);
        const RecordId station = site.value()->addStation({.name = "Home"}).value();
        const std::string archive =
            archiveText({.condition = "t.unitValue < 0", .scripts = {"gust.sh roof", "mail.sh"}});
        ASSERT_TRUE(site.value()->addPlugIn(
            {.station = station, .className = kMonitorClass, .title = "Gust", .archive = archive}));
    }
    folder("/settings/vigil/scripts");
    file("/settings/vigil/scripts/mail.sh");
    const Diagnosis missing = scriptRowsProbe(m_here);
    expect(missing, State::Finding, "missing: gust.sh (\"Gust\")");
    EXPECT_EQ(missing.says.find("mail.sh"), std::string::npos);
    EXPECT_EQ(missing.remedy, "put them into /settings/vigil/scripts, or edit those monitors");
    file("/settings/vigil/scripts/gust.sh");
    expect(scriptRowsProbe(m_here), State::Well, "2 script rows, and every script is there");
}

}  // namespace
}  // namespace vigil
