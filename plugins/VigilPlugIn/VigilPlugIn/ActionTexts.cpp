#include "plugins/VigilPlugIn/VigilPlugIn/ActionTexts.hpp"

namespace vigil {

std::string filled(std::string_view format, std::initializer_list<std::string_view> values) {
    constexpr std::string_view kPlaceholder = "%@";
    std::string text;
    for (const std::string_view value : values) {
        const std::size_t at = format.find(kPlaceholder);
        if (at == std::string_view::npos) break;
        text.append(format.substr(0, at)).append(value);
        format.remove_prefix(at + kPlaceholder.size());
    }
    return text.append(format);
}

std::string siteNameText(const Criterion::Agent& agent) {
    const auto name = agent ? agent->siteName() : std::nullopt;
    return name && name->stringValue() ? *name->stringValue() : "(LOCATION DATA MISSING IN AGENT)";
}

}  // namespace vigil
