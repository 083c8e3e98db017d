#include "host/run/LedgerAutomation.hpp"

#include <cstdio>
#include <cstring>
#include <utility>

#include "host/services/automation/PlainText.hpp"
#include "platform/CallNote.hpp"

namespace vigil {
namespace {

constexpr std::size_t kWhatSize = 200;  // bytes of a name for people

const char* resultOf(DeliveryResult::Outcome outcome, bool again) {
    switch (outcome) {
        case DeliveryResult::Accepted:
            return "succeeded";
        case DeliveryResult::Deferred:
            return again ? "deferred" : "failed";
        case DeliveryResult::Refused:
            return "failed";
        case DeliveryResult::Unknown:
            return "unknown";
    }
    return "";
}

std::string detailOf(const DeliveryResult& result, int attempt, const std::optional<Date>& again) {
    if (result.outcome == DeliveryResult::Unknown) return "may have been sent: " + result.words;
    if (result.outcome != DeliveryResult::Deferred) return result.words;
    if (again) return result.words + "; it is tried again at " + again->isoText();
    return result.words + "; given up after " + std::to_string(attempt) +
           (attempt == 1 ? " attempt" : " attempts");
}

/// The first record's number and the moment: no other mail of this site, nor of one that was copied, has
/// both.
std::string uniqueName(RecordId first, Date asked) {
    const double seconds = asked.secondsSinceReference();
    std::uint64_t bits = 0;
    std::memcpy(&bits, &seconds, sizeof bits);
    char text[64];
    std::snprintf(text, sizeof text, "vigil.%llx.%llx", static_cast<unsigned long long>(first),
                  static_cast<unsigned long long>(bits));
    return text;
}

/// "to ann@example.org: Vigil for Roof"
std::string whatOf(const HandOver& message) {
    std::string what;
    if (const auto* mail = std::get_if<MailHandOver>(&message))
        what = "to " + mail->recipient + ": " + plainLine(mail->subject);
    else if (const auto* sms = std::get_if<SmsHandOver>(&message))
        what = "to " + sms->number + ": " + plainLine(sms->text);
    if (what.size() > kWhatSize) what = mendedUtf8(what.substr(0, kWhatSize)) + "…";
    return what;
}

/// A message whose attempts stand in the ledger.
class LedgerPosting : public Posting {
  public:
    LedgerPosting(EffectLedger& ledger, EffectRecord record, HandOver handOver, Date first)
        : m_ledger(ledger), m_record(std::move(record)) {
        message = std::move(handOver);
        asked = due = first;
        const RecordId firstRecord = m_record.firstAttempt != 0 ? m_record.firstAttempt : m_record.id;
        stamp = {asked, uniqueName(firstRecord, asked)};
    }

    /// The next attempt is another record than that of the last, which has ended.
    void continues(Date again) {
        attempt = m_record.attempt + 1;
        due = again;
    }

    void begin(Date now, std::function<void(bool)> go) override {
        if (attempt > m_record.attempt) m_record = m_ledger.another(m_record);
        m_ledger.started(m_record, now, std::move(go));
    }

    void ended(const DeliveryResult& result, Date now, std::optional<Date> again) override {
        m_record.again = again;
        m_ledger.ended(m_record, now, resultOf(result.outcome, again.has_value()),
                       detailOf(result, m_record.attempt, again),
                       /*failed=*/result.outcome != DeliveryResult::Accepted);
    }

  private:
    EffectLedger& m_ledger;
    EffectRecord m_record;
};

}  // namespace

LedgerAutomation::LedgerAutomation(EffectLedger& ledger, AutomationOptions options)
    : m_ledger(ledger), m_courier(std::make_shared<Courier>(std::move(options))) {}

Error LedgerAutomation::refuse(EffectRecord record, const std::string& result, const std::string& why,
                               const std::string& source) {
    m_ledger.ended(std::move(record), m_ledger.now(), result, why + "\n" + source, /*failed=*/true);
    return {why};
}

Result<Done> LedgerAutomation::run(const std::string& source) {
    const auto read = readHandOver(source);
    const bool isSms = read ? std::holds_alternative<SmsHandOver>(read.value()) : addressesMessages(source);
    const auto kind = isSms ? EffectRecord::Sms : EffectRecord::Mail;
    if (!read) {
        auto record = m_ledger.make(kind, "a text that is no message", CallNote::current());
        return refuse(std::move(record), "failed", read.error().sentence(),
                      source.substr(0, kLongestHandOver));
    }
    if (std::holds_alternative<ViewerHandOver>(read.value())) return Done{};
    auto record = m_ledger.make(kind, whatOf(read.value()), CallNote::current());
    const auto& options = m_courier->options();
    if (const auto why = isSms ? whyNoSms(options.sms) : whyNoMail(options.mail))
        return refuse(std::move(record), "not sent", *why, source);
    const auto lane = isSms ? Courier::Sms : Courier::Mail;
    if (!m_courier->reserve(lane))
        return refuse(std::move(record), "refused",
                      std::to_string(m_courier->taken(lane)) + " messages wait already", source);
    record.handOver = source;
    const auto posting = std::make_shared<LedgerPosting>(m_ledger, record, read.value(), record.queued);
    m_ledger.queued(record, [courier = m_courier, lane, posting] { courier->submit(lane, posting); });
    return Done{};
}

void LedgerAutomation::resume(const std::vector<DeferredEffect>& deferred) {
    for (const DeferredEffect& effect : deferred) {
        const bool isSms = effect.last.kind == EffectRecord::Sms;
        const auto& options = m_courier->options();
        const auto read = readHandOver(effect.last.handOver);
        const auto why = isSms ? whyNoSms(options.sms) : whyNoMail(options.mail);
        if (!read || why) {
            m_ledger.ended(m_ledger.another(effect.last), m_ledger.now(), "failed",
                           (why ? *why : read.error().sentence()) + "; it is not tried again",
                           /*failed=*/true);
            continue;
        }
        const Date now = m_ledger.now();
        if (now.secondsSince(effect.first) > options.retry.giveUpSeconds) {
            m_ledger.ended(m_ledger.another(effect.last), now, "failed",
                           "given up: it was asked for at " + effect.first.isoText() +
                               ", and the time for another attempt is over",
                           /*failed=*/true);
            continue;
        }
        const auto lane = isSms ? Courier::Sms : Courier::Mail;
        const auto posting =
            std::make_shared<LedgerPosting>(m_ledger, effect.last, read.value(), effect.first);
        posting->continues(effect.last.again.value_or(now));
        m_courier->reserveAnyway(lane);
        m_courier->submit(lane, posting);
    }
}

}  // namespace vigil
