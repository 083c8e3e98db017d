#pragma once

#include <curl/curl.h>

#include "host/services/automation/DeliveryWire.hpp"

namespace vigil {

/// What the end of a transfer means for the mail. `response` is the server's last reply, 0 where there was
/// none; `dataBegun` whether the server has asked for the mail itself. From then on a connection that ends
/// without a reply leaves it open whether the mail was taken; before that it certainly was not. Pure, any
/// thread.
DeliveryResult::Outcome smtpOutcome(CURLcode code, long response, bool dataBegun);

}  // namespace vigil
