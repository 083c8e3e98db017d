#include "host/services/automation/DeliveryWire.hpp"

#include <gtest/gtest.h>

namespace vigil {
namespace {

std::string withoutLength(const std::string& message) {
    return message.substr(4);
}

SmtpJob smtpJob() {
    return {.host = "mail.example.org",
            .port = 587,
            .security = SmtpJob::Tls,
            .caFile = "/ca",
            .user = "ann",
            .secret = std::string("a\0b", 3),
            .from = "a@b.c",
            .recipient = "d@e.f",
            .message = "x\r\n",
            .connectTime = 1,
            .wholeTime = 2};
}

TEST(DeliveryWire, AMailArrivesWhole) {
    const auto read = decodeSmtpJob(withoutLength(encodeSmtpJob(smtpJob())));
    ASSERT_TRUE(read);
    EXPECT_EQ(encodeSmtpJob(*read), encodeSmtpJob(smtpJob()));
    EXPECT_EQ(read->secret, smtpJob().secret);
    EXPECT_EQ(read->security, SmtpJob::Tls);
    EXPECT_EQ(read->wholeTime, 2u);
}

TEST(DeliveryWire, AProgramAndAnAnswerArriveWhole) {
    const ProgramJob job{
        .words = {"a", ""}, .environment = {"X=1"}, .input = "in", .timeout = 3, .leftoverGrace = 4};
    const auto read = decodeProgramJob(withoutLength(encodeProgramJob(job)));
    ASSERT_TRUE(read);
    EXPECT_EQ(encodeProgramJob(*read), encodeProgramJob(job));
    const DeliveryResult result{DeliveryResult::Deferred, -1, 451, "later"};
    EXPECT_EQ(decodeDeliveryResult(withoutLength(encodeDeliveryResult(result))), result);
}

TEST(DeliveryWire, WhatIsCutOrOfAnotherKindIsNothing) {
    const std::string mail = withoutLength(encodeSmtpJob(smtpJob()));
    for (std::size_t size = 0; size < mail.size(); ++size)
        EXPECT_FALSE(decodeSmtpJob(mail.substr(0, size)));
    EXPECT_FALSE(decodeSmtpJob(mail + "x"));
    EXPECT_FALSE(decodeProgramJob(mail));
    EXPECT_FALSE(decodeDeliveryResult(mail));
    EXPECT_FALSE(decodeProgramJob(withoutLength(encodeProgramJob({}))));
    std::string other = mail;
    other[1] = 9;
    EXPECT_FALSE(decodeSmtpJob(other)) << "another version";
}

}  // namespace
}  // namespace vigil
