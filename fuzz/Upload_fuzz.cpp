// An upload: it makes no difference how the fields came, nor in which of many ways they were encoded.

#include <string>

#include "fuzz/Packets.hpp"
#include "host/feeds/wire/UploadFields.hpp"

namespace {

std::string encoded(const std::string& text) {
    constexpr const char* kDigits = "0123456789abcdef";
    std::string made;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        ((made += '%') += kDigits[byte >> 4]) += kDigits[byte & 15];
    }
    return made;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vigil;
    const std::string text(fuzz::textOf(data, size));
    const UploadFields posted = parseUpload("POST", "/", "", text);
    const UploadFields got = parseUpload("GET", "/", text, "");
    fuzz::require(posted.form == got.form && posted.identity == got.identity, "query or body is the same");
    fuzz::require(isValidUtf8(posted.identity), "an identity is UTF-8");
    if (posted.identity.size() >= 4)
        fuzz::require(maskedIdentity(posted.identity).size() < posted.identity.size() + 3,
                      "a mask hides something");

    const auto fields = uploadFields(text);
    fuzz::require(fields.size() <= kMostUploadFields, "fields are bounded");
    std::string again;
    for (const UploadField& field : fields) {
        fuzz::require(field.name.find('\0') + 1 == 0 && field.value.find('\0') + 1 == 0,
                      "no field has a NUL");
        fuzz::require(isValidUtf8(field.name) && isValidUtf8(field.value), "fields are UTF-8");
        again += (again.empty() ? "" : "&") + encoded(field.name) + "=" + encoded(field.value);
    }
    const auto same = uploadFields(again);
    fuzz::require(same.size() == fields.size(), "fields written again are as many");
    for (std::size_t i = 0; i < same.size(); ++i)
        fuzz::require(same[i].name == fields[i].name && same[i].value == fields[i].value,
                      "fields written again are the same");

    for (const char* url : {"upload://a:1/", "upload://a:1/?units=metric&sensor=1&inside=2"}) {
        const std::string packets = fuzz::packetsOf(url, {.payload = text, .arrived = Date(0)}, true);
        fuzz::require(!packets.empty() || posted.form != UploadFields::Form::None,
                      "what is no upload is told");
    }
    return 0;
}
