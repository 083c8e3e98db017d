#pragma once

#include <string>
#include <string_view>
#include <unordered_set>

namespace vigil {

/// A name made a key of the condition language, apart from the others of its station: each character that is
/// no ASCII letter, digit or `_` becomes `_` (a byte that is not UTF-8 counts as a character); a `k` goes
/// before a first character that is no letter and before AND, OR and CAST.
std::string keyFromName(std::string_view name);

/// Gives out keys of one station so that no two are the same: keys that meet get `_2`, `_3`, … in the order
/// in which they come.
class KeyNames {
  public:
    std::string keyFor(std::string_view name);

  private:
    std::unordered_set<std::string> m_taken;
};

/// The text with U+FFFD for every byte that is not UTF-8.
std::string repairedUtf8(std::string_view bytes);

}  // namespace vigil
