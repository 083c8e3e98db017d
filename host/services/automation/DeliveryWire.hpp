#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What the host asks `vigil-helper mail` and `vigil-helper program` to do, and what comes back, as messages
// of host/services/HelperWire.hpp. A job is the first and only message to the helper. Any thread.

namespace vigil {

/// Both sides are of one build; a helper that was replaced under a running host refuses its job.
inline constexpr std::uint32_t kDeliveryWireVersion = 1;

/// Message `M`: one mail to one recipient.
struct SmtpJob {
    enum Security { Plain, StartTls, Tls };

    std::string host{};
    std::uint32_t port = 0;
    Security security = StartTls;
    std::string caFile{};  ///< empty: the system's
    std::string user{};    ///< empty: no login
    std::string secret{};
    std::string from{};  ///< addresses, as `isMailAddress` takes them
    std::string recipient{};
    std::string message{};          ///< header and body, CRLF
    std::uint32_t connectTime = 0;  ///< milliseconds, the login included
    std::uint32_t wholeTime = 0;    ///< milliseconds
};

/// Message `P`: a program with a text on its standard input. It is answered as a script is
/// (host/services/ScriptWire.hpp), and what it leaves running is ended as a script's is.
struct ProgramJob {
    std::vector<std::string> words{};  ///< the program (looked up in PATH where it has no "/"), arguments
    std::vector<std::string> environment{};  ///< "NAME=value", all that it gets
    std::string input{};
    std::uint32_t timeout = 0;        ///< milliseconds
    std::uint32_t leftoverGrace = 0;  ///< milliseconds for what it leaves running
};

/// What became of a message at one attempt.
struct DeliveryResult {
    enum Outcome {
        Accepted,  ///< somebody else has taken it over
        Deferred,  ///< certainly not sent; another attempt may succeed
        Refused,   ///< certainly not sent, and another attempt would meet the same
        Unknown,   ///< it may have been sent
    };

    Outcome outcome = Unknown;
    std::int32_t code = 0;      ///< the library's code, or a program's exit status; 0 where there is none
    std::int32_t response = 0;  ///< the last three-digit reply of a mail server; 0 where there is none
    std::string words{};        ///< a clause for people, without a full stop

    friend bool operator==(const DeliveryResult&, const DeliveryResult&) = default;
};

std::string encodeSmtpJob(const SmtpJob& job);
std::string encodeProgramJob(const ProgramJob& job);
/// Message `D`, the answer to `M`.
std::string encodeDeliveryResult(const DeliveryResult& result);

// From a message without its length; nothing when it is of another kind, another version or damaged.
std::optional<SmtpJob> decodeSmtpJob(std::string_view message);
std::optional<ProgramJob> decodeProgramJob(std::string_view message);
std::optional<DeliveryResult> decodeDeliveryResult(std::string_view message);

}  // namespace vigil
