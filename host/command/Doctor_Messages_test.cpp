#include "host/command/testing/DoctorBench.hpp"

namespace vigil {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using State = Diagnosis::State;
using DoctorMessages = DoctorBench;

TEST_F(DoctorMessages, MailNeedsItsProgramOrItsServersPassword) {
    EXPECT_EQ(mailProbe(m_here).state, State::Well);
    MailSettings& mail = m_here.settings.mail;
    mail = {.method = MailMethod::Sendmail, .from = "a@example.org", .sendmail = "/usr/sbin/sendmail"};
    EXPECT_THAT(mailProbe(m_here).says, HasSubstr("no program /usr/sbin/sendmail"));
    program("/usr/sbin/sendmail");
    EXPECT_EQ(mailProbe(m_here).state, State::Well);
    mail = {.method = MailMethod::Smtp, .host = "mail.example.org", .from = "a@example.org"};
    EXPECT_EQ(mailProbe(m_here).says, "to mail.example.org port 587, which was not asked");
    mail.user = "ann";
    mail.secret = "post";
    EXPECT_THAT(mailProbe(m_here).says, HasSubstr("no secret called \"post\"")) << "no file";
    folder("/settings/vigil");
    const auto secrets = [&](const char* text) {
        m_folder.write("settings/vigil/secrets", text);
        fs::permissions(m_here.root + "/settings/vigil/secrets",
                        fs::perms::owner_read | fs::perms::owner_write);
    };
    secrets("other = hush\n");
    EXPECT_THAT(mailProbe(m_here).says, HasSubstr("no secret called \"post\"")) << "no such name";
    EXPECT_EQ(mailProbe(m_here).state, State::Finding);
    secrets("post = hush\n");
    EXPECT_EQ(mailProbe(m_here).state, State::Well);
    fs::permissions(m_here.root + "/settings/vigil/secrets", fs::perms::others_read, fs::perm_options::add);
    EXPECT_THAT(mailProbe(m_here).says, HasSubstr("\"post\" of the login at mail.example.org cannot be had"));
    EXPECT_THAT(mailProbe(m_here).remedy, HasSubstr("others may read it"));
    fs::permissions(m_here.root + "/settings/vigil/secrets", fs::perms::others_read,
                    fs::perm_options::remove);
    mail.caFile = "/ca.pem";
    EXPECT_EQ(mailProbe(m_here).says, "mail.ca-file: /ca.pem: No such file or directory");
    m_folder.write("ca.pem", "");
    EXPECT_EQ(mailProbe(m_here).state, State::Well);
    mail.security = MailSecurity::None;
    EXPECT_THAT(mailProbe(m_here).says, HasSubstr("needs STARTTLS or TLS"));
}

TEST_F(DoctorMessages, AShortMessageNeedsTheProgramThatTakesIt) {
    m_variables["PATH"] = "/bin";
    EXPECT_EQ(smsProbe(m_here).state, State::Well);
    SmsSettings& sms = m_here.settings.sms;
    sms.method = SmsMethod::Gammu;
    EXPECT_THAT(smsProbe(m_here).says, HasSubstr("no program gammu-smsd-inject"));
    program("/bin/gammu-smsd-inject");
    EXPECT_EQ(smsProbe(m_here).says, "/bin/gammu-smsd-inject takes it");
    sms.config = "/etc/smsd";
    EXPECT_EQ(smsProbe(m_here).says, "sms.config: /etc/smsd: No such file or directory");
    sms.config.clear();
    sms.program = "inject";
    EXPECT_THAT(smsProbe(m_here).says, HasSubstr("no program inject"));
    sms = {.method = SmsMethod::Mmcli};
    EXPECT_THAT(smsProbe(m_here).says, HasSubstr("no program mmcli"));
    sms = {.method = SmsMethod::Command, .command = {"/opt/send", "--now"}};
    EXPECT_THAT(smsProbe(m_here).says, HasSubstr("no program /opt/send"));
    program("/opt/send");
    EXPECT_EQ(smsProbe(m_here).state, State::Well);
}

}  // namespace
}  // namespace vigil
