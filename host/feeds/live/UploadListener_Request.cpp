#include <cstdlib>
#include <string_view>
#include <utility>

#include <pthread.h>

#include "host/feeds/live/UploadListener_State.hpp"
#include "host/feeds/wire/UploadFields.hpp"

// On the HTTP library's thread: what becomes of a request.

namespace vigil {

/// A request that is being received.
struct UploadRequest {
    std::string target;  // path and query, as they were sent
    std::string body;
    bool begun = false;
};

namespace {

using Steady = std::chrono::steady_clock;

int socketOf(MHD_Connection* connection) {
    const auto* info = ::MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CONNECTION_FD);
    return info ? static_cast<int>(info->connect_fd) : -1;
}

std::string_view header(MHD_Connection* connection, const char* name) {
    const char* text = ::MHD_lookup_connection_value(connection, MHD_HEADER_KIND, name);
    return text ? text : "";
}

}  // namespace

bool UploadListener::State::listen(int socket) {
    const MHD_AcceptPolicyCallback accept = [](void* self, const sockaddr*, socklen_t) {
        auto& state = *static_cast<State*>(self);
        if (!std::exchange(state.named, true)) ::pthread_setname_np(::pthread_self(), "feed-upload");
        return MHD_YES;
    };
    // The library undoes percent signs in what it gives to the handler; here is what was sent.
    void* (*const begins)(void*, const char*, MHD_Connection*) = [](void*, const char* target,
                                                                    MHD_Connection*) {
        auto request = std::make_unique<UploadRequest>();
        request->target = target;
        return static_cast<void*>(request.release());
    };
    const MHD_AccessHandlerCallback handler = [](void* self, MHD_Connection* connection, const char*,
                                                 const char* method, const char*, const char* bytes,
                                                 std::size_t* count, void** context) {
        return static_cast<State*>(self)->handle(connection, method, bytes, count, context);
    };
    const MHD_RequestCompletedCallback ends = [](void*, MHD_Connection*, void** context,
                                                 MHD_RequestTerminationCode) {
        const std::unique_ptr<UploadRequest> gone(
            static_cast<UploadRequest*>(std::exchange(*context, nullptr)));
    };
    const MHD_NotifyConnectionCallback hears = [](void* self, MHD_Connection* connection, void**,
                                                  MHD_ConnectionNotificationCode what) {
        static_cast<State*>(self)->hear(connection, what);
    };
    daemon = ::MHD_start_daemon(
        MHD_USE_EPOLL_INTERNAL_THREAD, 0, accept, this, handler, this, MHD_OPTION_LISTEN_SOCKET,
        static_cast<MHD_socket>(socket), MHD_OPTION_CONNECTION_TIMEOUT,
        static_cast<unsigned>(timing.idle.count()), MHD_OPTION_CONNECTION_LIMIT, kMostUploaders,
        MHD_OPTION_PER_IP_CONNECTION_LIMIT, kMostUploadersOfAddress, MHD_OPTION_CONNECTION_MEMORY_LIMIT,
        kUploaderMemory, MHD_OPTION_URI_LOG_CALLBACK, begins, nullptr, MHD_OPTION_NOTIFY_COMPLETED, ends,
        nullptr, MHD_OPTION_NOTIFY_CONNECTION, hears, this, MHD_OPTION_END);
    return daemon != nullptr;
}

void UploadListener::State::hear(MHD_Connection* connection, MHD_ConnectionNotificationCode what) {
    if (what == MHD_CONNECTION_NOTIFY_CLOSED)
        connections.closed(socketOf(connection));
    else if (connections.opened(socketOf(connection), Steady::now()))
        loop.wake(*owner);  // from now on it looks for those that take too long
}

MHD_Result UploadListener::State::answer(MHD_Connection* connection, unsigned status,
                                         std::string_view body) const {
    // the library only reads it, though its type does not say so
    MHD_Response* response =
        ::MHD_create_response_from_buffer(body.size(), const_cast<char*>(body.data()), MHD_RESPMEM_MUST_COPY);
    if (!response) return MHD_NO;
    ::MHD_add_response_header(response, MHD_HTTP_HEADER_CONTENT_TYPE, "text/plain");
    if (status == MHD_HTTP_METHOD_NOT_ALLOWED)
        ::MHD_add_response_header(response, MHD_HTTP_HEADER_ALLOW, "GET, POST");
    const MHD_Result queued = ::MHD_queue_response(connection, status, response);
    ::MHD_destroy_response(response);
    return queued;
}

void UploadListener::State::tellTooLarge() {
    for (const auto& outlet : stations.all())
        outlet->leftOut(FeedOutlet::LeftOut::TooLong, "an upload at " + place + " of more than " +
                                                          std::to_string(kLongestUpload) + " bytes; refused");
}

// Called once when the headers are there, then for pieces of the body, then once more.
MHD_Result UploadListener::State::handle(MHD_Connection* connection, const char* method, const char* bytes,
                                         std::size_t* count, void** context) {
    if (!*context) return MHD_NO;
    UploadRequest& request = *static_cast<UploadRequest*>(*context);
    const std::string_view verb = method;
    if (!std::exchange(request.begun, true)) {
        if (verb != "GET" && verb != "POST")
            return answer(connection, MHD_HTTP_METHOD_NOT_ALLOWED, "only GET and POST\n");
        const std::string length(header(connection, MHD_HTTP_HEADER_CONTENT_LENGTH));
        // what is no number the library has refused
        if (std::strtoull(length.c_str(), nullptr, 10) <= kLongestUpload) return MHD_YES;
        tellTooLarge();
        return answer(connection, MHD_HTTP_CONTENT_TOO_LARGE, "too large\n");
    }
    if (*count != 0) {
        // a body that did not say its size: no answer is possible before it ends, so none is given
        if (request.body.size() + *count > kLongestUpload) {
            tellTooLarge();
            return MHD_NO;
        }
        request.body.append(bytes, *count);
        *count = 0;
        return MHD_YES;
    }
    connections.progressed(socketOf(connection), Steady::now());
    return bring(connection, method, request);
}

MHD_Result UploadListener::State::bring(MHD_Connection* connection, const char* method,
                                        UploadRequest& request) {
    const std::string_view target = request.target;
    const std::size_t mark = target.find('?');
    const std::string_view path = target.substr(0, mark);
    const std::string_view query = mark == std::string_view::npos ? "" : target.substr(mark + 1);
    UploadFields upload = parseUpload(method, path, query, request.body);
    if (upload.form == UploadFields::Form::None) {
        const bool nothing = query.empty() && request.body.empty();
        if (nothing) return answer(connection, MHD_HTTP_NOT_FOUND, "this is where stations upload to\n");
        for (const auto& outlet : stations.all())
            outlet->leftOut(FeedOutlet::LeftOut::Unusable, "a request at " + place + " that is no upload");
        return answer(connection, MHD_HTTP_BAD_REQUEST, "no upload\n");
    }
    const std::string_view reply = upload.answer();
    if (const auto outlet = stations.claim(upload.identity)) {
        RawMessage message;
        // fields that stick to the path are no part of the way
        const std::size_t equals = path.find('=');
        message.route = equals == std::string_view::npos ? path : path.substr(0, path.rfind('/', equals) + 1);
        message.payload = std::move(upload.text);
        outlet->arrived(std::move(message));
    } else {
        const std::string who = upload.identity.empty()
                                    ? "an upload without an id"
                                    : "uploads of the id " + maskedIdentity(upload.identity);
        for (const auto& other : stations.all())
            other->leftOut(FeedOutlet::LeftOut::Unclaimed,
                           who + " at " + place + " that no station takes; one with ?id= would");
    }
    return answer(connection, MHD_HTTP_OK, reply);
}

}  // namespace vigil
