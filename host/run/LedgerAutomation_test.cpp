#include "host/run/LedgerAutomation.hpp"

#include <gmock/gmock.h>

#include "host/services/automation/testing/HandOverTexts.hpp"
#include "host/services/automation/testing/MailBench.hpp"
#include "host/site/SiteWriter.hpp"
#include "tests/support/RecordingLog.hpp"

namespace vigil {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

/// A site whose ledger is opened and closed like that of a service that is started and stopped.
class AutomationLedger : public testing::Test {
  protected:
    AutomationLedger() { EXPECT_TRUE(SiteFile::create(path())); }
    ~AutomationLedger() override { close(); }

    std::string path() const { return m_folder.path() + "/home.vigilsite"; }

    void open(AutomationOptions options) {
        m_site = std::move(SiteFile::open(path(), Access::Write)).value();
        const Interrupted found = m_site->openLedger(systemNow()).value();
        m_writer = std::make_unique<SiteWriter>(*m_site);
        m_desk = std::make_unique<FireDesk>(*m_writer, systemNow);
        m_ledger = std::make_unique<EffectLedger>(*m_desk, *m_writer, m_log, systemNow);
        options.clock = systemNow;
        options.helper = VIGIL_BINARY_DIR "/bin/vigil-helper";
        m_automation = std::make_unique<LedgerAutomation>(*m_ledger, std::move(options));
        m_automation->resume(found.deferred);
    }
    /// Gives what stands in the file then.
    std::vector<EffectRecord> close() {
        if (!m_site) return {};
        m_automation->stop();
        m_writer->stop();
        auto effects = m_site->effects().value();
        m_automation.reset();
        m_ledger.reset();
        m_desk.reset();
        m_writer.reset();
        m_site.reset();
        return effects;
    }
    bool isIdle(Courier::Lane lane) {
        return soon([&] { return m_automation->waiting(lane) == 0; });
    }
    /// A command for messages that ends with that status and counts its calls.
    AutomationOptions command(int status) {
        m_folder.write("send", "#!/bin/sh\necho >> " + m_folder.path() + "/calls\nexit " +
                                   std::to_string(status) + "\n");
        std::filesystem::permissions(m_folder.path() + "/send", std::filesystem::perms::owner_all);
        AutomationOptions options;
        options.sms.method = SmsOptions::Command;
        options.sms.command = {m_folder.path() + "/send"};
        options.retry = {.firstSeconds = 0.05, .longestSeconds = 0.1, .giveUpSeconds = 3600};
        return options;
    }
    std::size_t calls() const { return bytesOf(m_folder.path() + "/calls").size(); }

    TemporaryFolder m_folder;
    RecordingLog m_log;
    std::unique_ptr<SiteFile> m_site;
    std::unique_ptr<SiteWriter> m_writer;
    std::unique_ptr<FireDesk> m_desk;
    std::unique_ptr<EffectLedger> m_ledger;
    std::unique_ptr<LedgerAutomation> m_automation;
};

TEST_F(AutomationLedger, WhereNothingIsSetUpTheWholeTextStandsInTheLedgerAndNothingElseHappens) {
    open({});
    const auto mail = m_automation->run(mailText("Roof", "a@b.c"));
    ASSERT_FALSE(mail);
    EXPECT_EQ(mail.error().message, "no mail is set up");
    EXPECT_EQ(m_automation->run(smsText("Roof", "45")).error().message, "no short messages are set up");
    for (const RecordingLog::Line& line : m_log.lines())
        EXPECT_THAT(line.message, testing::Not(HasSubstr("tell application")));
    EXPECT_EQ(m_log.lines().size(), 2u);
    const auto effects = close();
    ASSERT_EQ(effects.size(), 2u);
    EXPECT_EQ(effects[0].kind, EffectRecord::Mail);
    EXPECT_EQ(effects[0].state, EffectRecord::Ended);
    EXPECT_EQ(effects[0].result, "not sent");
    EXPECT_EQ(effects[0].what, "to a@b.c: Vigil for Roof");
    EXPECT_EQ(effects[0].detail, "no mail is set up\n" + mailText("Roof", "a@b.c"));
    EXPECT_EQ(effects[1].kind, EffectRecord::Sms);
    EXPECT_EQ(effects[1].detail, "no short messages are set up\n" + smsText("Roof", "45"));
}

TEST_F(AutomationLedger, AMalformedTextFailsWithItsPlaceAndSendsNothing) {
    open(command(0));
    const auto run = m_automation->run(smsText("the \"Roof\"", "45"));
    ASSERT_FALSE(run);
    EXPECT_EQ(run.error().message, "byte 58: expected `to buddy \"+`");
    const auto effects = close();
    ASSERT_EQ(effects.size(), 1u);
    EXPECT_EQ(effects[0].kind, EffectRecord::Sms);
    EXPECT_EQ(effects[0].result, "failed");
    EXPECT_THAT(effects[0].detail, testing::EndsWith(smsText("the \"Roof\"", "45")));
    EXPECT_EQ(calls(), 0u);
}

TEST_F(AutomationLedger, TheViewersScriptHasNoEffectAndNoRecord) {
    open(command(0));
    EXPECT_TRUE(m_automation->run(viewerText()));
    EXPECT_THAT(close(), IsEmpty());
    EXPECT_THAT(m_log.lines(), IsEmpty());
}

TEST_F(AutomationLedger, AMailReachesItsServerAndTheLedgerSaysSo) {
    if (!MailBench::isThere()) GTEST_SKIP() << "python3-aiosmtpd is not installed";
    const MailBench server;
    open(server.options());
    ASSERT_TRUE(m_automation->run(mailText("Aarhus", "ann@example.org")));
    EXPECT_THAT(server.mail(1), HasSubstr("Subject: Vigil for Aarhus\r\n"));
    EXPECT_THAT(server.mail(1), testing::EndsWith("\r\n\r\n???\r\n"));
    EXPECT_TRUE(isIdle(Courier::Mail));
    const auto effects = close();
    ASSERT_EQ(effects.size(), 1u);
    EXPECT_EQ(effects[0].result, "succeeded");
    EXPECT_TRUE(effects[0].started);
    EXPECT_EQ(effects[0].detail, "250 taken as number 1");
    EXPECT_FALSE(effects[0].again);
}

TEST_F(AutomationLedger, EachAttemptIsARecordAndTheMailKeepsItsNameAndDate) {
    if (!MailBench::isThere()) GTEST_SKIP() << "python3-aiosmtpd is not installed";
    const MailBench server({"--recipient", "451 later", "--times", "2"});
    AutomationOptions options = server.options();
    options.retry = {.firstSeconds = 0.05, .longestSeconds = 0.1, .giveUpSeconds = 3600};
    open(options);
    ASSERT_TRUE(m_automation->run(mailText("Roof", "ann@example.org")));
    EXPECT_TRUE(isIdle(Courier::Mail));
    EXPECT_EQ(server.asked(), 3u);
    EXPECT_EQ(server.mails(), 1u);
    const auto effects = close();
    ASSERT_EQ(effects.size(), 3u);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(effects[i].attempt, static_cast<int>(i) + 1);
        EXPECT_EQ(effects[i].firstAttempt, i == 0 ? 0 : effects[0].id);
        EXPECT_EQ(effects[i].result, i < 2 ? "deferred" : "succeeded");
        EXPECT_EQ(effects[i].again.has_value(), i < 2);
        EXPECT_TRUE(effects[i].started) << "each has a beginning of its own";
    }
    EXPECT_THAT(effects[0].detail, HasSubstr("451 later"));
}

TEST_F(AutomationLedger, OneThatWasDeferredIsTriedAgainAfterARestartAndOnlyThen) {
    AutomationOptions later = command(75);
    later.retry.firstSeconds = later.retry.longestSeconds = 1;
    open(later);
    ASSERT_TRUE(m_automation->run(smsText("Roof", "45")));
    ASSERT_TRUE(soon([&] { return m_ledger->counts().count({"sms", "deferred"}) == 1; }));
    ASSERT_EQ(close().size(), 1u);
    ASSERT_EQ(calls(), 1u);
    open(command(0));
    EXPECT_TRUE(isIdle(Courier::Sms));
    const auto effects = close();
    ASSERT_EQ(effects.size(), 2u);
    EXPECT_EQ(effects[1].attempt, 2);
    EXPECT_EQ(effects[1].firstAttempt, effects[0].id);
    EXPECT_EQ(effects[1].result, "succeeded");
    EXPECT_EQ(calls(), 2u);
    open(command(0));
    EXPECT_EQ(close().size(), 2u) << "it is over";
    EXPECT_EQ(calls(), 2u);
}

TEST_F(AutomationLedger, OneThatHadBegunIsNeverTriedAgainAlsoNotAfterARestart) {
    open(command(0));
    EffectRecord begun = m_ledger->make(EffectRecord::Sms, "to 45", nullptr);
    begun.handOver = smsText("Roof", "45");
    m_ledger->started(begun, systemNow());
    close();
    open(command(0));
    EXPECT_EQ(m_automation->waiting(Courier::Sms), 0u);
    const auto effects = close();
    ASSERT_EQ(effects.size(), 1u);
    EXPECT_EQ(effects[0].result, "interrupted");
    EXPECT_THAT(effects[0].detail, HasSubstr("may have been sent"));
    EXPECT_EQ(calls(), 0u);
}

TEST_F(AutomationLedger, OneOfLastWeekIsGivenUpAtAStart) {
    open(command(0));
    const Date then = systemNow().plus(-7 * 86400.0);
    EffectRecord old = m_ledger->make(EffectRecord::Sms, "to 45", nullptr);
    old.handOver = smsText("Roof", "45");
    old.queued = then;
    old.again = then.plus(60);
    m_ledger->ended(old, then, "deferred", "later", /*failed=*/true);
    close();
    open(command(0));
    EXPECT_TRUE(isIdle(Courier::Sms));
    const auto effects = close();
    ASSERT_EQ(effects.size(), 2u);
    EXPECT_EQ(effects[1].result, "failed");
    EXPECT_THAT(effects[1].detail, testing::StartsWith("given up: it was asked for at "));
    EXPECT_EQ(calls(), 0u);
}

TEST_F(AutomationLedger, WhatIsGivenUpSaysAfterHowManyAttempts) {
    AutomationOptions options = command(75);
    options.retry = {.firstSeconds = 0.05, .longestSeconds = 0.05, .giveUpSeconds = 0};
    open(options);
    ASSERT_TRUE(m_automation->run(smsText("Roof", "45")));
    EXPECT_TRUE(isIdle(Courier::Sms));
    const auto effects = close();
    ASSERT_EQ(effects.size(), 1u);
    EXPECT_EQ(effects[0].result, "failed");
    EXPECT_THAT(effects[0].detail, testing::EndsWith("; given up after 1 attempt"));
    EXPECT_FALSE(effects[0].again);
}

TEST_F(AutomationLedger, AFullQueueRefusesTheNewestAndSaysSo) {
    AutomationOptions options = command(75);
    options.waiting = 1;
    options.retry = {.firstSeconds = 3600, .longestSeconds = 3600, .giveUpSeconds = 86400};
    open(options);
    ASSERT_TRUE(m_automation->run(smsText("Roof", "45")));
    const auto second = m_automation->run(smsText("Pond", "46"));
    ASSERT_FALSE(second);
    EXPECT_EQ(second.error().message, "1 messages wait already");
    const auto effects = close();
    ASSERT_EQ(effects.size(), 2u);
    EXPECT_EQ(effects[1].result, "refused");
    EXPECT_THAT(effects[1].detail, HasSubstr("Pond"));
}

TEST_F(AutomationLedger, WhatWaitsForAnAttemptEndsWhereTheSetUpIsGone) {
    AutomationOptions later = command(75);
    later.retry = {.firstSeconds = 3600, .longestSeconds = 3600, .giveUpSeconds = 86400};
    open(later);
    ASSERT_TRUE(m_automation->run(smsText("Roof", "45")));
    ASSERT_TRUE(soon([&] { return m_ledger->counts().count({"sms", "deferred"}) == 1; }));
    close();
    open({});
    const auto effects = close();
    ASSERT_EQ(effects.size(), 2u);
    EXPECT_EQ(effects[1].result, "failed");
    EXPECT_EQ(effects[1].detail, "no short messages are set up; it is not tried again");
}

}  // namespace
}  // namespace vigil
