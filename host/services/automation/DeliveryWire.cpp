#include "host/services/automation/DeliveryWire.hpp"

#include "host/services/HelperWire.hpp"

namespace vigil {
namespace {

constexpr std::uint32_t kListLength = 1000;  // of a job's words and environment; more is a damaged one

void putList(WireWriter& to, const std::vector<std::string>& list) {
    to.number(static_cast<std::uint32_t>(list.size()));
    for (const std::string& text : list)
        to.text(text);
}

// A count that the bytes do not bear out ends the loop with `ok` false.
std::vector<std::string> takeList(WireReader& from) {
    const std::uint32_t count = from.number();
    std::vector<std::string> list;
    for (std::uint32_t i = 0; i < count && i < kListLength && from.ok(); ++i)
        list.push_back(from.text());
    return list;
}

}  // namespace

std::string encodeSmtpJob(const SmtpJob& job) {
    return WireWriter('M')
        .number(kDeliveryWireVersion)
        .text(job.host)
        .number(job.port)
        .number(static_cast<std::uint32_t>(job.security))
        .text(job.caFile)
        .text(job.user)
        .text(job.secret)
        .text(job.from)
        .text(job.recipient)
        .text(job.message)
        .number(job.connectTime)
        .number(job.wholeTime)
        .take();
}

std::optional<SmtpJob> decodeSmtpJob(std::string_view message) {
    WireReader from(message);
    if (from.kind() != 'M' || from.number() != kDeliveryWireVersion) return std::nullopt;
    SmtpJob job;
    job.host = from.text();
    job.port = from.number();
    const std::uint32_t security = from.number();
    if (security > SmtpJob::Tls) return std::nullopt;
    job.security = static_cast<SmtpJob::Security>(security);
    job.caFile = from.text();
    job.user = from.text();
    job.secret = from.text();
    job.from = from.text();
    job.recipient = from.text();
    job.message = from.text();
    job.connectTime = from.number();
    job.wholeTime = from.number();
    if (!from.complete()) return std::nullopt;
    return job;
}

std::string encodeProgramJob(const ProgramJob& job) {
    WireWriter to('P');
    to.number(kDeliveryWireVersion);
    putList(to, job.words);
    putList(to, job.environment);
    to.text(job.input).number(job.timeout).number(job.leftoverGrace);
    return to.take();
}

std::optional<ProgramJob> decodeProgramJob(std::string_view message) {
    WireReader from(message);
    if (from.kind() != 'P' || from.number() != kDeliveryWireVersion) return std::nullopt;
    ProgramJob job;
    job.words = takeList(from);
    job.environment = takeList(from);
    job.input = from.text();
    job.timeout = from.number();
    job.leftoverGrace = from.number();
    if (!from.complete() || job.words.empty()) return std::nullopt;
    return job;
}

std::string encodeDeliveryResult(const DeliveryResult& result) {
    return WireWriter('D')
        .number(static_cast<std::uint32_t>(result.outcome))
        .number(static_cast<std::uint32_t>(result.code))
        .number(static_cast<std::uint32_t>(result.response))
        .text(result.words)
        .take();
}

std::optional<DeliveryResult> decodeDeliveryResult(std::string_view message) {
    WireReader from(message);
    const std::uint32_t outcome = from.number();
    if (from.kind() != 'D' || outcome > DeliveryResult::Unknown) return std::nullopt;
    DeliveryResult result;
    result.outcome = static_cast<DeliveryResult::Outcome>(outcome);
    result.code = static_cast<std::int32_t>(from.number());
    result.response = static_cast<std::int32_t>(from.number());
    result.words = from.text();
    if (!from.complete()) return std::nullopt;
    return result;
}

}  // namespace vigil
