#include "host/feeds/wire/UploadFields.hpp"

#include <algorithm>
#include <array>

#include "host/readings/KeyNames.hpp"

namespace vigil {
namespace {

using Form = UploadFields::Form;

int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

std::string decoded(std::string_view text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const int high = text[i] == '%' && i + 2 < text.size() ? hexDigit(text[i + 1]) : -1;
        const int low = high < 0 ? -1 : hexDigit(text[i + 2]);
        char byte = text[i] == '+' ? ' ' : text[i];
        if (low >= 0) {
            byte = static_cast<char>(high * 16 + low);
            i += 2;
        }
        if (byte == '\0')
            bytes += "\xEF\xBF\xBD";
        else
            bytes += byte;
    }
    const bool plain =
        std::all_of(bytes.begin(), bytes.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
    return plain ? bytes : repairedUtf8(bytes);
}

/// Calls `each(name, value)` with what stands between "&", undecoded, until it answers false.
template <class Each>
void forEachField(std::string_view text, const Each& each) {
    while (!text.empty()) {
        const auto end = std::min(text.find('&'), text.size());
        const std::string_view piece = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        const auto equals = piece.find('=');
        if (equals == std::string_view::npos || equals == 0) continue;
        if (!each(piece.substr(0, equals), piece.substr(equals + 1))) return;
    }
}

/// The fields that a console has stuck to the path: "/data/report/PASSKEY=…&…", "/data&PASSKEY=…" and
/// "/dataPASSKEY=…".
std::string_view fieldsInPath(std::string_view path) {
    const auto equals = path.find('=');
    if (equals == std::string_view::npos) return {};
    const auto slash = path.rfind('/', equals);
    std::string_view fields = slash == std::string_view::npos ? path : path.substr(slash + 1);
    for (const std::string_view first : {"PASSKEY=", "stationtype=", "MAC="}) {
        const auto at = fields.find(first);
        const auto equalsInFields = fields.find('=');
        if (at != std::string_view::npos && at + first.size() == equalsInFields + 1) return fields.substr(at);
    }
    return fields;
}

std::string_view withoutLineEnd(std::string_view text) {
    while (text.ends_with('\n') || text.ends_with('\r'))
        text.remove_suffix(1);
    return text;
}

/// What makes a request an upload, as far as it has been seen.
struct Marks {
    std::string_view passkey, mac, id, bridge, stationType;
    bool underground = false;  // of the protocol: action, softwaretype, PASSWORD
    bool dated = false;
};

Marks marksOf(std::string_view text) {
    Marks marks;
    forEachField(text, [&marks](std::string_view name, std::string_view value) {
        if (name == "PASSKEY")
            marks.passkey = value;
        else if (name == "MAC")
            marks.mac = value;
        else if (name == "ID")
            marks.id = value;
        else if (name == "id")
            marks.bridge = value;
        else if (name == "stationtype")
            marks.stationType = value;
        else if (name == "action" || name == "softwaretype" || name == "PASSWORD")
            marks.underground = true;
        else if (name == "dateutc")
            marks.dated = true;
        return true;
    });
    return marks;
}

Form formOf(const Marks& marks) {
    if (marks.stationType.starts_with("AMB") || (!marks.mac.empty() && marks.passkey.empty()))
        return Form::Ambient;
    if (!marks.passkey.empty() || !marks.stationType.empty()) return Form::Ecowitt;
    if (!marks.id.empty() || !marks.bridge.empty() || marks.underground) return Form::Underground;
    return marks.dated ? Form::Ecowitt : Form::None;
}

}  // namespace

std::string_view UploadFields::answer() const {
    switch (form) {
        case Form::None:
            return "no upload\n";
        case Form::Ecowitt:
        case Form::Ambient:
            return "OK\n";
        case Form::Underground:
            return "success\n";
    }
    return {};
}

UploadFields parseUpload(std::string_view method, std::string_view path, std::string_view query,
                         std::string_view body) {
    UploadFields upload;
    if (method != "GET" && method != "POST") return upload;
    if (query.size() + body.size() > kLongestUpload || path.size() > kLongestUpload) return upload;
    query = withoutLineEnd(query);
    body = withoutLineEnd(body);
    upload.text = query;
    if (!query.empty() && !body.empty()) upload.text += '&';
    upload.text += body;
    if (upload.text.find('=') == std::string::npos) upload.text = fieldsInPath(path);
    const Marks marks = marksOf(upload.text);
    upload.form = formOf(marks);
    for (const std::string_view identity : {marks.passkey, marks.id, marks.mac, marks.bridge})
        if (upload.identity.empty()) upload.identity = decoded(identity);
    if (upload.form == Form::None) return {};
    return upload;
}

std::vector<UploadField> uploadFields(std::string_view text) {
    std::vector<UploadField> fields;
    forEachField(withoutLineEnd(text), [&fields](std::string_view name, std::string_view value) {
        fields.push_back({decoded(name), decoded(value)});
        return fields.size() < kMostUploadFields;
    });
    return fields;
}

std::string maskedIdentity(std::string_view identity) {
    constexpr std::size_t kLongEnough = 12;
    constexpr std::size_t kShown = 4;
    constexpr std::size_t kLongEnoughForBoth = 20;
    std::string masked = "***";
    if (identity.size() >= kLongEnoughForBoth) masked = repairedUtf8(identity.substr(0, kShown)) + masked;
    if (identity.size() >= kLongEnough) masked += repairedUtf8(identity.substr(identity.size() - kShown));
    return masked;
}

}  // namespace vigil
