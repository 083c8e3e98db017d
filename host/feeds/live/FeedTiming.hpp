#pragma once

#include <chrono>

namespace vigil {

/// How long things of a feed may take. Tests shorten them.
struct FeedTiming {
    using Milliseconds = std::chrono::milliseconds;

    Milliseconds retryFirst{1000};         ///< before what failed is tried again; doubles from time to time
    Milliseconds retryMost{10000};         ///< no pause before a broker or a port is longer
    Milliseconds programRetryMost{60000};  ///< nor one before a program or a recorded file
    Milliseconds settled{60000};           ///< what went well for so long is tried again after `retryFirst`
    Milliseconds seemsFine{2000};          ///< a program that has run for so long is live without a line, too
    Milliseconds termGrace{500};           ///< for a program, between TERM and KILL
    Milliseconds look{1000};             ///< between looks for a file that is missing, turned over or cut off
    Milliseconds pause{20};              ///< between questions whether a sink takes more again
    Milliseconds connect{10000};         ///< for the answer of a broker
    std::chrono::seconds keepAlive{30};  ///< a broker that is silent for twice as long is gone; at least 5
    std::chrono::seconds idle{5};        ///< an upload's connection on which nothing comes is closed
    Milliseconds request{20000};         ///< and one on which so long no request becomes whole
    Milliseconds tellAgain{60000};       ///< of problems of one kind one is told in so long, all are counted
};

}  // namespace vigil
