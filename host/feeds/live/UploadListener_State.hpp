#pragma once

#include <atomic>
#include <optional>
#include <string>

#include <microhttpd.h>
#include <sys/socket.h>

#include "host/feeds/live/BackOff.hpp"
#include "host/feeds/live/UploadConnections.hpp"
#include "host/feeds/live/UploadListener.hpp"

namespace vigil {

// The insides of a listener. What has no mutex of its own belongs to the loop's thread, apart from what is
// said to be of the HTTP library's thread.
struct UploadListener::State {
    State(FeedLoop& theLoop, FeedTiming theTiming)
        : loop(theLoop),
          timing(theTiming),
          backOff(theTiming.retryFirst, theTiming.retryMost, theTiming.settled) {}

    FeedLoop& loop;
    const FeedTiming timing;
    std::string place;  // "127.0.0.1:8090", for people
    sockaddr_storage address{};
    socklen_t addressSize = 0;
    UploadStations stations;
    UploadConnections connections;
    UploadListener* owner = nullptr;

    BackOff backOff;
    FeedLoop::Time nextTry{};
    MHD_Daemon* daemon = nullptr;

    std::mutex stateMutex;  // of the state that a station which comes later is told
    FeedState::Kind kind = FeedState::Starting;
    std::string words;
    void tell(FeedState::Kind newKind, std::string newWords);

    /// Nothing, or why it cannot listen.
    std::optional<std::string> open();
    bool listen(int socket);

    // On the library's thread.
    bool named = false;
    MHD_Result answer(MHD_Connection* connection, unsigned status, std::string_view body) const;
    MHD_Result bring(MHD_Connection* connection, const char* method, struct UploadRequest& request);
    void tellTooLarge();
    MHD_Result handle(MHD_Connection* connection, const char* method, const char* bytes, std::size_t* count,
                      void** context);
    void hear(MHD_Connection* connection, MHD_ConnectionNotificationCode what);
};

}  // namespace vigil
