#include <gmock/gmock.h>

#include "host/services/automation/Delivery.hpp"
#include "host/services/automation/testing/MailBench.hpp"

namespace vigil {
namespace {

using testing::HasSubstr;

const MailHandOver kMail{"Vigil", "ann@mail.example.org", "Vigil for \xC3\x85rhus", "???\n"};
const MailStamp kStamp{Date(816466459), "vigil.1"};

DeliveryResult sent(const AutomationOptions& options, const MailHandOver& mail = kMail) {
    const StopSignal stop;
    return deliver(mail, kStamp, options, stop);
}

class MailDelivery : public testing::Test {
  protected:
    void SetUp() override {
        if (!MailBench::isThere()) GTEST_SKIP() << "python3-aiosmtpd is not installed";
    }
};

TEST_F(MailDelivery, AServerTakesTheMailByteForByte) {
    const MailBench server;
    const DeliveryResult result = sent(server.options());
    EXPECT_EQ(result.outcome, DeliveryResult::Accepted) << result.words;
    EXPECT_EQ(result.response, 250);
    EXPECT_EQ(result.words, "250 taken as number 1");
    EXPECT_EQ(server.mail(1), composeMail(kMail, kStamp, "weather@example.org"));
    EXPECT_EQ(server.envelope(1),
              R"({"from": "weather@example.org", "to": ["ann@mail.example.org"], "tls": false, "user": ""})");
}

TEST_F(MailDelivery, NastyNamesAddNoHeaderNoRecipientAndNoEndOfTheMail) {
    const MailBench server;
    const MailHandOver nasty{"Vigil\r\nBcc: evil@x.y", "ann@mail.example.org",
                             "a\r\n.\r\nRCPT TO:<evil@x.y>\r\n", ".\n..\nline\r.\r\n.\nend"};
    EXPECT_EQ(sent(server.options(), nasty).outcome, DeliveryResult::Accepted);
    EXPECT_EQ(server.mail(1), composeMail(nasty, kStamp, "weather@example.org"));
    EXPECT_THAT(server.mail(1), HasSubstr("\r\n\r\n.\r\n..\r\nline\r\n.\r\n.\r\nend\r\n"));
    EXPECT_THAT(server.envelope(1), HasSubstr(R"("to": ["ann@mail.example.org"])"));
    EXPECT_EQ(server.mails(), 1u);
}

TEST_F(MailDelivery, WithStartTlsAndALogin) {
    const MailBench server({"--security", "starttls", "--login", "ann", "pass word"});
    AutomationOptions options = server.options();
    options.mail.security = MailOptions::StartTls;
    options.mail.user = "ann";
    options.mail.secret = "mail";
    options.mail.caFile = server.folder() + "/cert.pem";
    EXPECT_EQ(sent(options).outcome, DeliveryResult::Accepted) << sent(options).words;
    EXPECT_THAT(server.envelope(1), HasSubstr(R"("tls": true, "user": "ann")"));
    options.secret = [](const std::string&) {
        return Result<std::optional<std::string>>(std::string("wrong"));
    };
    const DeliveryResult wrong = sent(options);
    EXPECT_EQ(wrong.outcome, DeliveryResult::Refused);
    EXPECT_EQ(wrong.response, 535) << wrong.words;
    EXPECT_THAT(wrong.words, testing::Not(HasSubstr("wrong")));
    options.secret = [](const std::string&) { return Result<std::optional<std::string>>(std::nullopt); };
    EXPECT_EQ(sent(options).words, "there is no secret called \"mail\"");
}

TEST_F(MailDelivery, WithTlsFromTheBeginning) {
    const MailBench server({"--security", "tls"});
    AutomationOptions options = server.options();
    options.mail.security = MailOptions::Tls;
    options.mail.caFile = server.folder() + "/cert.pem";
    EXPECT_EQ(sent(options).outcome, DeliveryResult::Accepted) << sent(options).words;
    EXPECT_THAT(server.mail(1), HasSubstr("\r\n???\r\n"));
}

TEST_F(MailDelivery, AServerWithoutStartTlsGetsNothingWhereItIsAskedFor) {
    const MailBench server;
    AutomationOptions options = server.options();
    options.mail.security = MailOptions::StartTls;
    EXPECT_EQ(sent(options).outcome, DeliveryResult::Refused);
    EXPECT_EQ(server.asked(), 0u);
}

TEST_F(MailDelivery, WhatAServerRefusesForNowIsDeferredAndWhatItRefusesForGoodIsRefused) {
    struct Case {
        std::vector<std::string> server;
        DeliveryResult::Outcome outcome;
        int response;
    };
    for (const Case& each :
         {Case{{"--recipient", "451 4.7.1 come back later"}, DeliveryResult::Deferred, 451},
          Case{{"--recipient", "550 nobody of that name"}, DeliveryResult::Refused, 550},
          Case{{"--data", "452 no room"}, DeliveryResult::Deferred, 452},
          Case{{"--data", "554 looks like spam"}, DeliveryResult::Refused, 554},
          Case{{"--greet", "421 too busy"}, DeliveryResult::Deferred, 421},
          Case{{"--greet", "554 go away"}, DeliveryResult::Refused, 554}}) {
        const MailBench server(each.server);
        const DeliveryResult result = sent(server.options());
        EXPECT_EQ(result.outcome, each.outcome) << each.server[1] << ": " << result.words;
        EXPECT_EQ(result.response, each.response);
        EXPECT_THAT(result.words, HasSubstr(each.server[1]));
        EXPECT_EQ(server.mails(), 0u);
    }
}

TEST_F(MailDelivery, AConnectionThatIsLostBeforeTheMailIsDeferredAndBehindItNobodyKnows) {
    for (const auto& [drop, outcome] :
         {std::pair{"before-data", DeliveryResult::Deferred}, std::pair{"at-data", DeliveryResult::Unknown},
          std::pair{"after-data", DeliveryResult::Unknown}}) {
        const MailBench server({"--drop", drop});
        const DeliveryResult result = sent(server.options());
        EXPECT_EQ(result.outcome, outcome) << drop << ": " << result.words;
    }
}

TEST_F(MailDelivery, AServerThatSaysNothingIsGivenUpInTime) {
    const MailBench server({"--silent"});
    AutomationOptions options = server.options();
    options.mail.connectTime = std::chrono::milliseconds(400);
    const auto begin = std::chrono::steady_clock::now();
    const DeliveryResult result = sent(options);
    EXPECT_EQ(result.outcome, DeliveryResult::Deferred) << result.words;
    EXPECT_EQ(result.code, 28);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
}

TEST_F(MailDelivery, AServerThatNeverAnswersTheMailLeavesItOpen) {
    const MailBench server({"--hang"});
    AutomationOptions options = server.options();
    options.mail.wholeTime = std::chrono::milliseconds(5000);
    EXPECT_EQ(sent(options).outcome, DeliveryResult::Unknown);
}

TEST_F(MailDelivery, AStopBeforeTheMailDefersItAndOneBehindItLeavesItOpen) {
    for (const auto& [how, outcome] :
         {std::pair{"--silent", DeliveryResult::Deferred}, std::pair{"--hang", DeliveryResult::Unknown}}) {
        const MailBench server({how});
        StopSignal stop;
        const bool takesTheMail = outcome == DeliveryResult::Unknown;
        std::thread later([&, takesTheMail] {
            if (takesTheMail) soon([&] { return server.hangs(); });
            stop.raise();
        });
        const auto begin = std::chrono::steady_clock::now();
        const DeliveryResult result = deliver(kMail, kStamp, server.options(), stop);
        EXPECT_EQ(result.outcome, outcome) << how << ": " << result.words;
        EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(20));
        later.join();
    }
}

TEST_F(MailDelivery, WhereNobodyListensTheMailIsDeferred) {
    MailBench server;
    server.end();
    const DeliveryResult result = sent(server.options());
    EXPECT_EQ(result.outcome, DeliveryResult::Deferred) << result.words;
    EXPECT_EQ(result.code, 7);
}

TEST(MailSetUp, ALoginInTheClearIsForThisMachineAlone) {
    MailOptions options;
    EXPECT_EQ(whyNoMail(options), "no mail is set up");
    options.method = MailOptions::Smtp;
    options.from = "weather";
    EXPECT_EQ(whyNoMail(options), "mail is set up without a valid address to send from");
    options.from = "weather@example.org";
    EXPECT_EQ(whyNoMail(options), "no mail server is set");
    options.host = "mail.example.org";
    options.port = 25;
    options.security = MailOptions::Plain;
    EXPECT_EQ(whyNoMail(options), std::nullopt);
    options.user = "ann";
    EXPECT_EQ(whyNoMail(options), "the login at the mail server has no secret");
    options.secret = "mail";
    EXPECT_EQ(whyNoMail(options), "a login at the mail server needs STARTTLS or TLS");
    options.host = "127.0.0.1";
    EXPECT_EQ(whyNoMail(options), std::nullopt);
    options.host = "mail.example.org";
    options.security = MailOptions::StartTls;
    EXPECT_EQ(whyNoMail(options), std::nullopt);
}

TEST(Sendmail, TheProgramGetsTheMailOnItsInputAndTheAddressBehindTheOptions) {
    const TemporaryFolder folder;
    folder.write("sendmail", "#!/bin/sh\nfor word; do echo \"[$word]\"; done > " + folder.path() +
                                 "/words\ncat > " + folder.path() + "/mail\nexit $(cat " + folder.path() +
                                 "/status)\n");
    std::filesystem::permissions(folder.path() + "/sendmail", std::filesystem::perms::owner_all);
    AutomationOptions options;
    options.helper = VIGIL_BINARY_DIR "/bin/vigil-helper";
    options.clock = systemNow;
    options.mail.method = MailOptions::Sendmail;
    options.mail.from = "weather@example.org";
    options.mail.sendmail = folder.path() + "/sendmail";
    folder.write("status", "0");
    EXPECT_EQ(sent(options).outcome, DeliveryResult::Accepted) << sent(options).words;
    EXPECT_EQ(bytesOf(folder.path() + "/words"),
              "[-i]\n[-f]\n[weather@example.org]\n[--]\n[ann@mail.example.org]\n");
    std::string expected = composeMail(kMail, kStamp, "weather@example.org");
    std::erase(expected, '\r');
    EXPECT_EQ(bytesOf(folder.path() + "/mail"), expected);
    folder.write("status", "75");
    EXPECT_EQ(sent(options).outcome, DeliveryResult::Deferred);
    folder.write("status", "67");
    EXPECT_EQ(sent(options).outcome, DeliveryResult::Refused);
    EXPECT_EQ(sent(options).words, folder.path() + "/sendmail ended with exit status 67");
    options.mail.sendmail = "/no/such/program";
    EXPECT_EQ(sent(options).outcome, DeliveryResult::Refused);
    EXPECT_EQ(sent(options).words, "there is no program /no/such/program");
    options.helper = "/no/such/helper";
    EXPECT_EQ(sent(options).outcome, DeliveryResult::Deferred) << "nothing has been tried";
}

}  // namespace
}  // namespace vigil
