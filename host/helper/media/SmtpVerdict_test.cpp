#include "host/helper/media/SmtpVerdict.hpp"

#include <gtest/gtest.h>

namespace vigil {
namespace {

TEST(SmtpVerdict, BeforeTheMailAReplyDecidesAndThenTheLibrarysReason) {
    EXPECT_EQ(smtpOutcome(CURLE_OK, 250, true), DeliveryResult::Accepted);
    EXPECT_EQ(smtpOutcome(CURLE_SEND_ERROR, 451, false), DeliveryResult::Deferred);
    EXPECT_EQ(smtpOutcome(CURLE_SEND_ERROR, 550, false), DeliveryResult::Refused);
    EXPECT_EQ(smtpOutcome(CURLE_COULDNT_CONNECT, 0, false), DeliveryResult::Deferred);
    EXPECT_EQ(smtpOutcome(CURLE_COULDNT_RESOLVE_HOST, 0, false), DeliveryResult::Deferred);
    EXPECT_EQ(smtpOutcome(CURLE_OPERATION_TIMEDOUT, 250, false), DeliveryResult::Deferred);
    EXPECT_EQ(smtpOutcome(CURLE_PEER_FAILED_VERIFICATION, 220, false), DeliveryResult::Refused);
    EXPECT_EQ(smtpOutcome(CURLE_USE_SSL_FAILED, 250, false), DeliveryResult::Refused);
    EXPECT_EQ(smtpOutcome(CURLE_USE_SSL_FAILED, 454, false), DeliveryResult::Deferred);
    EXPECT_EQ(smtpOutcome(CURLE_LOGIN_DENIED, 535, false), DeliveryResult::Refused);
    EXPECT_EQ(smtpOutcome(CURLE_LOGIN_DENIED, 454, false), DeliveryResult::Deferred);
}

TEST(SmtpVerdict, BehindTheMailOnlyAWholeReplyTakesTheDoubtAway) {
    EXPECT_EQ(smtpOutcome(CURLE_WEIRD_SERVER_REPLY, 452, true), DeliveryResult::Deferred);
    EXPECT_EQ(smtpOutcome(CURLE_WEIRD_SERVER_REPLY, 554, true), DeliveryResult::Refused);
    EXPECT_EQ(smtpOutcome(CURLE_WEIRD_SERVER_REPLY, 354, true), DeliveryResult::Unknown);
    for (const CURLcode code : {CURLE_RECV_ERROR, CURLE_SEND_ERROR, CURLE_OPERATION_TIMEDOUT,
                                CURLE_GOT_NOTHING, CURLE_LOGIN_DENIED, CURLE_USE_SSL_FAILED})
        for (const long response : {0L, 250L, 354L, 451L, 550L})
            EXPECT_EQ(smtpOutcome(code, response, true), DeliveryResult::Unknown) << code << " " << response;
}

}  // namespace
}  // namespace vigil
