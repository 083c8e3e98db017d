#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

namespace vigil {

/// The texts that readings send again and again ("N", "NNE", "Rain"), numbered once for the whole file. A
/// text is taken in when it comes a second time; so one that never repeats does not fill the places. The
/// writer's thread.
class HistoryTexts {
  public:
    /// At most so many, and each of so many bytes: what is beyond stands in its rows.
    static constexpr std::size_t kMost = 2048;
    static constexpr std::size_t kLongest = 64;

    explicit HistoryTexts(SQLite::Database& database);

    /// Its number, above 0; 0 where it is to stand in the row.
    std::uint64_t numberOf(std::string_view text);

  private:
    std::unordered_map<std::string, std::uint64_t> m_numbers;
    std::array<std::size_t, 256> m_seen{};  // hashes of texts that came lately
    SQLite::Statement m_insert;
};

}  // namespace vigil
