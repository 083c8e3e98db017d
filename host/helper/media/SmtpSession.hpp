#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include <curl/curl.h>

#include "host/services/automation/DeliveryWire.hpp"

namespace vigil {

/// One mail on its way to one server. One thread; `host` is looked at for its end meanwhile.
class SmtpSession {
  public:
    SmtpSession(const SmtpJob& job, int host);
    SmtpSession(const SmtpSession&) = delete;
    SmtpSession& operator=(const SmtpSession&) = delete;
    /// Takes leave of the server, which may wait for it: the host has its answer before.
    ~SmtpSession();

    /// Returns when the server has answered, a time is over or the host is gone.
    DeliveryResult run();

  private:
    struct FreeEasy {
        void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
    };
    struct FreeMulti {
        void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
    };
    struct FreeList {
        void operator()(curl_slist* list) const { curl_slist_free_all(list); }
    };

    static std::size_t read(char* to, std::size_t size, std::size_t count, void* session);
    static std::size_t reply(char* bytes, std::size_t size, std::size_t count, void* session);

    std::string url() const;
    CURLcode configure();
    DeliveryResult transfer(CURLM* multi);
    DeliveryResult result(CURLcode code) const;

    const SmtpJob& m_job;
    const int m_host;
    std::unique_ptr<curl_slist, FreeList> m_recipients;  // the handle uses them
    std::unique_ptr<CURLM, FreeMulti> m_multi;
    std::unique_ptr<CURL, FreeEasy> m_easy;
    std::size_t m_sent = 0;
    bool m_dataBegun = false;
    std::string m_reply;  // the server's last line
    char m_error[CURL_ERROR_SIZE] = {};
};

}  // namespace vigil
