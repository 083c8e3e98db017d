#include "host/feeds/live/FeedOptions.hpp"

#include <charconv>

namespace vigil {
namespace {

std::string printed(double value) {
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, value);
    return {text, end.ptr};
}

Error expected(std::string_view name, const std::string& what) {
    return {"feed: the option \"" + std::string(name) + "\" wants " + what};
}

}  // namespace

std::optional<std::string> FeedOptions::text(std::string_view name) const {
    for (const auto& [key, value] : m_url.options)
        if (key == name) return value;
    return std::nullopt;
}

Result<double> FeedOptions::number(std::string_view name, double unlessSaid, double least,
                                   double most) const {
    const auto given = text(name);
    if (!given) return unlessSaid;
    double value = 0;
    const auto [end, failed] = std::from_chars(given->data(), given->data() + given->size(), value);
    const bool whole = failed == std::errc() && end == given->data() + given->size();
    if (!whole || !(value >= least && value <= most))
        return expected(name, "a number from " + printed(least) + " to " + printed(most));
    return value;
}

Result<std::string> FeedOptions::word(std::string_view name, std::initializer_list<const char*> words) const {
    const auto given = text(name);
    if (!given) return std::string(*words.begin());
    std::string offered;
    for (const char* word : words) {
        if (*given == word) return *given;
        offered += (offered.empty() ? "" : " or ") + std::string(word);
    }
    return expected(name, offered);
}

}  // namespace vigil
