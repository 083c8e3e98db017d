#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vigil {

// What consoles send over HTTP, before anybody asks what it means. Pure functions, any thread.

/// A query and body together have at most so many bytes; more is no upload. Stops a sender that has no end.
inline constexpr std::size_t kLongestUpload = std::size_t{1} << 16;
/// So many fields of an upload are read; a console sends about a hundred.
inline constexpr std::size_t kMostUploadFields = 1000;

/// A request that may be an upload.
struct UploadFields {
    enum class Form {
        None,         ///< it is no upload: nothing of what makes one is there
        Ecowitt,      ///< a form body with PASSKEY
        Ambient,      ///< the same keys in a query, or stuck to the path
        Underground,  ///< ID and PASSWORD, or a bridge that sends one sensor at a time
    };
    Form form = Form::None;
    std::string
        identity{};      ///< which console it is (PASSKEY, ID, MAC, id), decoded; empty where it says none
    std::string text{};  ///< the fields as they came, joined by "&": the payload for the decoder

    /// The body of the answer that such a console waits for.
    std::string_view answer() const;
};

/// `method` is GET or POST (in capitals), `path` what stands before "?" and may carry the fields itself,
/// `query` what stands behind it, undecoded. Takes about a microsecond.
UploadFields parseUpload(std::string_view method, std::string_view path, std::string_view query,
                         std::string_view body);

/// One field, decoded: "+" is a blank, "%41" an A; a "%" that no two hexadecimal digits follow stands for
/// itself; NUL and bytes that are not UTF-8 become U+FFFD.
struct UploadField {
    std::string name;
    std::string value;
};

/// At most kMostUploadFields of them, in their order; pieces without "=" are passed over.
std::vector<UploadField> uploadFields(std::string_view text);

/// An identity as logs and listings show it: "***" and its last four characters where it has at least twelve,
/// the first four as well where it has at least twenty, else "***" alone.
std::string maskedIdentity(std::string_view identity);

}  // namespace vigil
