#include "host/feeds/wire/WireKeys.hpp"

#include <algorithm>

namespace vigil {
namespace {

constexpr std::size_t kMostDigits = 2;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

const WireKey* entryOf(std::span<const WireKey> table, std::string_view wire) {
    const auto found =
        std::find_if(table.begin(), table.end(), [wire](const WireKey& each) { return each.wire == wire; });
    return found == table.end() ? nullptr : &*found;
}

/// Where the last number in a name begins and ends; nothing (two equal places) where there is none.
std::pair<std::size_t, std::size_t> lastNumber(std::string_view name) {
    std::size_t end = name.size();
    while (end > 0 && !isDigit(name[end - 1]))
        --end;
    std::size_t begin = end;
    while (begin > 0 && isDigit(name[begin - 1]))
        --begin;
    return {begin, end};
}

std::string keyOf(const WireKey& entry, std::string_view name, std::string_view number) {
    std::string key(entry.key.empty() ? name : entry.key);
    if (const auto mark = key.find('#'); mark != std::string::npos) key.replace(mark, 1, number);
    return key;
}

}  // namespace

WireKeyFound findWireKey(std::span<const WireKey> table, std::string_view name) {
    if (const WireKey* entry = entryOf(table, name)) return {entry, keyOf(*entry, name, {})};
    const auto [begin, end] = lastNumber(name);
    if (begin == end || end - begin > kMostDigits) return {};
    std::string pattern(name);
    pattern.replace(begin, end - begin, "#");
    const WireKey* entry = entryOf(table, pattern);
    if (!entry) return {};
    return {entry, keyOf(*entry, name, name.substr(begin, end - begin))};
}

const UnitSuffix* findUnitSuffix(std::span<const UnitSuffix> table, std::string_view name) {
    const UnitSuffix* longest = nullptr;
    for (const UnitSuffix& each : table)
        if (name.size() > each.text.size() && name.ends_with(each.text) &&
            (!longest || each.text.size() > longest->text.size()))
            longest = &each;
    return longest;
}

}  // namespace vigil
