#include "host/services/SystemCollation.hpp"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <utility>

#include <unicode/ucol.h>

namespace vigil {
namespace {

char lowered(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

int plainOrder(std::string_view first, std::string_view second) {
    const auto [a, b] = std::mismatch(first.begin(), first.end(), second.begin(), second.end(),
                                      [](char x, char y) { return lowered(x) == lowered(y); });
    if (a == first.end() || b == second.end())
        return (a != first.end() ? 1 : 0) - (b != second.end() ? 1 : 0);
    return static_cast<unsigned char>(lowered(*a)) < static_cast<unsigned char>(lowered(*b)) ? -1 : 1;
}

}  // namespace

std::string collationLocale() {
    for (const char* name : {"LC_ALL", "LC_COLLATE", "LANG"}) {
        const char* said = std::getenv(name);
        if (!said || !*said) continue;
        std::string locale(said);
        locale.resize(std::min(locale.size(), locale.find_first_of(".@")));
        // The tables know these two as American English with all capitals first.
        return locale == "C" || locale == "POSIX" ? std::string() : locale;
    }
    return {};
}

SystemCollation::SystemCollation(std::string locale) : m_locale(std::move(locale)) {}
SystemCollation::~SystemCollation() = default;

void SystemCollation::Close::operator()(UCollator* collator) const {
    ucol_close(collator);
}

const UCollator* SystemCollation::collator() const {
    std::call_once(m_opened, [this] {
        UErrorCode status = U_ZERO_ERROR;
        m_collator.reset(ucol_open(m_locale.c_str(), &status));
        if (U_FAILURE(status)) m_collator.reset();
        if (m_collator) ucol_setStrength(m_collator.get(), UCOL_SECONDARY);
    });
    return m_collator.get();
}

int SystemCollation::compareIgnoringCase(std::string_view first, std::string_view second) const {
    constexpr std::size_t kLongest = std::numeric_limits<std::int32_t>::max();
    UErrorCode status = U_ZERO_ERROR;
    if (const UCollator* tables = collator();
        tables && first.size() <= kLongest && second.size() <= kLongest) {
        const int order = ucol_strcollUTF8(tables, first.data(), static_cast<std::int32_t>(first.size()),
                                           second.data(), static_cast<std::int32_t>(second.size()), &status);
        if (U_SUCCESS(status)) return order;
    }
    return plainOrder(first, second);
}

}  // namespace vigil
