#include "host/helper/media/SmtpVerdict.hpp"

namespace vigil {
namespace {

// What the next attempt would meet again, as long as nobody changes the settings.
bool lasts(CURLcode code) {
    switch (code) {
        case CURLE_UNSUPPORTED_PROTOCOL:
        case CURLE_FAILED_INIT:
        case CURLE_URL_MALFORMAT:
        case CURLE_NOT_BUILT_IN:
        case CURLE_BAD_FUNCTION_ARGUMENT:
        case CURLE_UNKNOWN_OPTION:
        case CURLE_PEER_FAILED_VERIFICATION:
        case CURLE_SSL_CACERT_BADFILE:
        case CURLE_SSL_CERTPROBLEM:
        case CURLE_SSL_CIPHER:
        case CURLE_SSL_ISSUER_ERROR:
        case CURLE_SSL_INVALIDCERTSTATUS:
        case CURLE_USE_SSL_FAILED:
        case CURLE_LOGIN_DENIED:
        case CURLE_AUTH_ERROR:
            return true;
        default:
            return false;
    }
}

}  // namespace

DeliveryResult::Outcome smtpOutcome(CURLcode code, long response, bool dataBegun) {
    if (code == CURLE_OK) return DeliveryResult::Accepted;
    const long kind = response / 100;
    // Behind the mail only a whole reply counts, and the library says so by this code.
    if (dataBegun && code != CURLE_WEIRD_SERVER_REPLY) return DeliveryResult::Unknown;
    if (kind == 4) return DeliveryResult::Deferred;
    if (kind == 5) return DeliveryResult::Refused;
    if (dataBegun) return DeliveryResult::Unknown;
    return lasts(code) ? DeliveryResult::Refused : DeliveryResult::Deferred;
}

}  // namespace vigil
