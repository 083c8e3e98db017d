#include "host/helper/media/SmtpSession.hpp"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include <poll.h>

#include "host/helper/media/SmtpVerdict.hpp"
#include "host/services/automation/PlainText.hpp"

namespace vigil {
namespace {

constexpr std::size_t kReplyShown = 300;  // bytes of a server's line that people see
constexpr int kLookMilliseconds = 1000;

bool isGone(int host) {
    // the host sends nothing more, so that anything from it means its end
    pollfd fd{host, POLLIN | POLLRDHUP, 0};
    return ::poll(&fd, 1, 0) > 0;
}

}  // namespace

SmtpSession::SmtpSession(const SmtpJob& job, int host) : m_job(job), m_host(host) {}

std::size_t SmtpSession::read(char* to, std::size_t size, std::size_t count, void* session) {
    auto& self = *static_cast<SmtpSession*>(session);
    self.m_dataBegun = true;
    const std::size_t length = std::min(size * count, self.m_job.message.size() - self.m_sent);
    std::memcpy(to, self.m_job.message.data() + self.m_sent, length);
    self.m_sent += length;
    return length;
}

std::size_t SmtpSession::reply(char* bytes, std::size_t size, std::size_t count, void* session) {
    const std::string_view line(bytes, size * count);
    // the farewell hides what was said before
    if (!line.starts_with("221")) static_cast<SmtpSession*>(session)->m_reply = plainLine(line, kReplyShown);
    return size * count;
}

std::string SmtpSession::url() const {
    const std::string host = m_job.host.find(':') != std::string::npos && m_job.host[0] != '['
                                 ? "[" + m_job.host + "]"
                                 : m_job.host;
    CURLU* parts = curl_url();
    const std::string port = std::to_string(m_job.port);
    char* whole = nullptr;
    // the host alone: nothing in it becomes a user, a path or another scheme
    const bool fine = parts &&
                      curl_url_set(parts, CURLUPART_SCHEME, m_job.security == SmtpJob::Tls ? "smtps" : "smtp",
                                   0) == CURLUE_OK &&
                      curl_url_set(parts, CURLUPART_HOST, host.c_str(), 0) == CURLUE_OK &&
                      curl_url_set(parts, CURLUPART_PORT, port.c_str(), 0) == CURLUE_OK &&
                      curl_url_get(parts, CURLUPART_URL, &whole, 0) == CURLUE_OK;
    std::string text = fine ? whole : "";
    curl_free(whole);
    curl_url_cleanup(parts);
    return text;
}

CURLcode SmtpSession::configure() {
    const std::string address = url();
    if (address.empty()) {
        std::snprintf(m_error, sizeof m_error, "the mail server's name is none");
        return CURLE_URL_MALFORMAT;
    }
    const std::string from = "<" + m_job.from + ">";
    const std::string recipient = "<" + m_job.recipient + ">";
    m_recipients.reset(curl_slist_append(nullptr, recipient.c_str()));
    CURL* easy = m_easy.get();
    CURLcode failed = CURLE_OK;
    const auto set = [&](auto option, auto value) {
        if (failed == CURLE_OK) failed = curl_easy_setopt(easy, option, value);
    };
    set(CURLOPT_ERRORBUFFER, m_error);
    set(CURLOPT_URL, address.c_str());
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_PROXY, "");  // whatever the environment says
    set(CURLOPT_USE_SSL,
        static_cast<long>(m_job.security == SmtpJob::StartTls ? CURLUSESSL_ALL : CURLUSESSL_NONE));
    set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
    set(CURLOPT_SSL_VERIFYPEER, 1L);
    set(CURLOPT_SSL_VERIFYHOST, 2L);
    if (!m_job.caFile.empty()) {
        set(CURLOPT_CAINFO, m_job.caFile.c_str());
        set(CURLOPT_CAPATH, static_cast<const char*>(nullptr));  // in place of the system's, not beside them
    }
    if (!m_job.user.empty()) {
        set(CURLOPT_USERNAME, m_job.user.c_str());
        set(CURLOPT_PASSWORD, m_job.secret.c_str());
    }
    set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(m_job.connectTime));
    set(CURLOPT_TIMEOUT_MS, static_cast<long>(m_job.wholeTime));
    set(CURLOPT_MAIL_FROM, from.c_str());
    set(CURLOPT_MAIL_RCPT, m_recipients.get());
    set(CURLOPT_UPLOAD, 1L);
    set(CURLOPT_INFILESIZE_LARGE, static_cast<curl_off_t>(m_job.message.size()));
    set(CURLOPT_READFUNCTION, &SmtpSession::read);
    set(CURLOPT_READDATA, this);
    set(CURLOPT_HEADERFUNCTION, &SmtpSession::reply);
    set(CURLOPT_HEADERDATA, this);
    return failed;
}

DeliveryResult SmtpSession::result(CURLcode code) const {
    long response = 0;
    curl_easy_getinfo(m_easy.get(), CURLINFO_RESPONSE_CODE, &response);
    std::string words = m_error[0] ? m_error : curl_easy_strerror(code);
    if (code == CURLE_OK)
        words = m_reply;
    else if (response >= 400 && !m_reply.empty())
        words += " (" + m_reply + ")";
    return {smtpOutcome(code, response, m_dataBegun), static_cast<std::int32_t>(code),
            static_cast<std::int32_t>(response), std::move(words)};
}

DeliveryResult SmtpSession::transfer(CURLM* multi) {
    int running = 1;
    while (running > 0) {
        if (const CURLMcode failed = curl_multi_perform(multi, &running); failed != CURLM_OK)
            return {m_dataBegun ? DeliveryResult::Unknown : DeliveryResult::Deferred, 0, 0,
                    curl_multi_strerror(failed)};
        if (running == 0) break;
        if (isGone(m_host))
            return {m_dataBegun ? DeliveryResult::Unknown : DeliveryResult::Deferred, 0, 0,
                    "the host stopped while it was being sent"};
        curl_waitfd host{m_host, CURL_WAIT_POLLIN, 0};
        curl_multi_poll(multi, &host, 1, kLookMilliseconds, nullptr);
    }
    int left = 0;
    const CURLMsg* message = curl_multi_info_read(multi, &left);
    return result(message && message->msg == CURLMSG_DONE ? message->data.result : CURLE_FAILED_INIT);
}

DeliveryResult SmtpSession::run() {
    const DeliveryResult unable{DeliveryResult::Deferred, 0, 0, "the mail library does not start"};
    if (curl_global_init(CURL_GLOBAL_DEFAULT) != CURLE_OK) return unable;
    m_multi.reset(curl_multi_init());
    m_easy.reset(curl_easy_init());
    if (!m_multi || !m_easy) return unable;
    if (const CURLcode failed = configure(); failed != CURLE_OK) return result(failed);
    if (curl_multi_add_handle(m_multi.get(), m_easy.get()) != CURLM_OK) return unable;
    return transfer(m_multi.get());
}

SmtpSession::~SmtpSession() {
    if (m_multi && m_easy) curl_multi_remove_handle(m_multi.get(), m_easy.get());
}

}  // namespace vigil
