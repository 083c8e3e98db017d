#include <cstdlib>
#include <filesystem>

#include <gmock/gmock.h>

#include "host/services/automation/Delivery.hpp"
#include "host/services/automation/testing/MailBench.hpp"

// Which servers are believed to be who they say.

namespace vigil {
namespace {

DeliveryResult sent(const AutomationOptions& options) {
    const MailHandOver mail{"Vigil", "ann@mail.example.org", "Vigil for Roof", "???\n"};
    const StopSignal stop;
    return deliver(mail, MailStamp{Date(816466459), "vigil.1"}, options, stop);
}

class MailCertificate : public testing::Test {
  protected:
    void SetUp() override {
        if (!MailBench::isThere()) GTEST_SKIP() << "python3-aiosmtpd is not installed";
    }
};

TEST_F(MailCertificate, CertificatesOfOnesOwnAreTrustedInPlaceOfTheSystems) {
    // Where a test may, it gives the helper a system that trusts the server.
    if (!canRun({"unshare", "-rm", "mount", "--bind", "/tmp", "/etc/ssl/certs"}))
        GTEST_SKIP() << "no test may change what the system trusts here";
    const MailBench server({"--security", "tls"});
    TemporaryFolder folder;
    const std::string trusted = folder.path() + "/trusted";
    std::filesystem::create_directory(trusted);
    ASSERT_EQ(std::system(("cp " + server.folder() + "/cert.pem " + trusted +
                           "/ca-certificates.crt && openssl rehash " + trusted)
                              .c_str()),
              0);
    ASSERT_EQ(std::system(("openssl req -x509 -newkey rsa:2048 -nodes -subj /CN=other -days 2 -keyout " +
                           folder.path() + "/other.key -out " + folder.path() + "/other.pem 2> /dev/null")
                              .c_str()),
              0);
    AutomationOptions options = server.options();
    folder.write("helper", "#!/bin/sh\nexec unshare -rm sh -c 'mount --bind " + trusted +
                               " /etc/ssl/certs && exec " + options.helper + " \"$@\"' sh \"$@\"\n");
    std::filesystem::permissions(folder.path() + "/helper", std::filesystem::perms::owner_all);
    options.helper = folder.path() + "/helper";
    options.mail.security = MailOptions::Tls;
    EXPECT_EQ(sent(options).outcome, DeliveryResult::Accepted) << sent(options).words;
    options.mail.caFile = folder.path() + "/other.pem";
    const DeliveryResult other = sent(options);
    EXPECT_EQ(other.outcome, DeliveryResult::Refused) << other.words;
    EXPECT_EQ(other.code, 60);
}

TEST_F(MailCertificate, ACertificateThatNobodyVouchesForOrOfAnotherNameIsRefused) {
    for (const char* security : {"starttls", "tls"}) {
        const MailBench server({"--security", security, "--certificate-for", "DNS:other.example"});
        AutomationOptions options = server.options();
        options.mail.security = security[0] == 's' ? MailOptions::StartTls : MailOptions::Tls;
        const DeliveryResult unknown = sent(options);
        EXPECT_EQ(unknown.outcome, DeliveryResult::Refused) << unknown.words;
        EXPECT_EQ(unknown.code, 60) << unknown.words;
        options.mail.caFile = server.folder() + "/cert.pem";
        const DeliveryResult other = sent(options);
        EXPECT_EQ(other.outcome, DeliveryResult::Refused) << other.words;
        EXPECT_EQ(other.code, 60) << other.words;
        options.mail.caFile = "/no/such/file";
        EXPECT_EQ(sent(options).outcome, DeliveryResult::Refused);
        EXPECT_EQ(server.mails(), 0u);
    }
}

}  // namespace
}  // namespace vigil
