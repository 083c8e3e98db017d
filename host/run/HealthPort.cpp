#include "host/run/HealthPort.hpp"

#include <cerrno>
#include <cstring>
#include <string_view>

#include <arpa/inet.h>
#include <microhttpd.h>
#include <netinet/in.h>

#include "host/run/Metrics.hpp"
#include "host/run/StatusJson.hpp"

namespace vigil {

struct HealthPortCalls {
    static MHD_Result answer(void* port, MHD_Connection* connection, const char* path, const char* method,
                             const char*, const char*, std::size_t* bodyBytes, void**) {
        *bodyBytes = 0;
        const std::string_view asked(method);
        const auto page = asked == MHD_HTTP_METHOD_GET || asked == MHD_HTTP_METHOD_HEAD
                              ? static_cast<HealthPort*>(port)->page(path)
                              : HealthPort::Page{MHD_HTTP_METHOD_NOT_ALLOWED, "text/plain", "only GET\n"};
        MHD_Response* response = MHD_create_response_from_buffer(
            page.text.size(), const_cast<char*>(page.text.data()), MHD_RESPMEM_MUST_COPY);
        if (!response) return MHD_NO;
        MHD_add_response_header(response, MHD_HTTP_HEADER_CONTENT_TYPE, page.type);
        const MHD_Result queued = MHD_queue_response(connection, page.code, response);
        MHD_destroy_response(response);
        return queued;
    }
};

HealthPort::Page HealthPort::page(const std::string& path) const {
    constexpr const char* kText = "text/plain; charset=utf-8";
    if (path != "/metrics" && path != "/health" && path != "/status")
        return {MHD_HTTP_NOT_FOUND, kText, "/metrics, /health and /status are here\n"};
    const auto status = m_status();
    if (!status) return {MHD_HTTP_SERVICE_UNAVAILABLE, kText, status.error().message + "\n"};
    if (path == "/metrics")
        return {MHD_HTTP_OK, "text/plain; version=0.0.4; charset=utf-8", metricsText(status.value())};
    if (path == "/status") return {MHD_HTTP_OK, "application/json", statusJson(status.value()) + "\n"};
    if (status.value().problems.empty()) return {MHD_HTTP_OK, kText, "well\n"};
    std::string text;
    for (const std::string& problem : status.value().problems)
        text += problem + "\n";
    return {MHD_HTTP_SERVICE_UNAVAILABLE, kText, std::move(text)};
}

Result<std::unique_ptr<HealthPort>> HealthPort::open(std::uint16_t port, Status status) {
    std::unique_ptr<HealthPort> made(new HealthPort(std::move(status)));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    errno = 0;
    made->m_daemon = MHD_start_daemon(MHD_USE_EPOLL_INTERNAL_THREAD, port, nullptr, nullptr,
                                      &HealthPortCalls::answer, made.get(), MHD_OPTION_SOCK_ADDR, &address,
                                      MHD_OPTION_CONNECTION_TIMEOUT, 5u, MHD_OPTION_CONNECTION_LIMIT, 16u,
                                      MHD_OPTION_CONNECTION_MEMORY_LIMIT, std::size_t{8192}, MHD_OPTION_END);
    if (!made->m_daemon)
        return Error{"127.0.0.1:" + std::to_string(port) +
                     " cannot be listened on: " + (errno ? std::strerror(errno) : "no reason is known")};
    const MHD_DaemonInfo* info = MHD_get_daemon_info(made->m_daemon, MHD_DAEMON_INFO_BIND_PORT);
    made->m_port = info ? info->port : port;
    return made;
}

HealthPort::~HealthPort() {
    if (m_daemon) MHD_stop_daemon(m_daemon);
}

}  // namespace vigil
