#pragma once

#include <array>
#include <cstddef>
#include <istream>
#include <memory>
#include <string>

#include "host/feeds/OpenRecorded.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// Bytes as a file or a pipe gives them. One thread at a time.
class Bytes {
  public:
    Bytes() = default;
    Bytes(const Bytes&) = delete;
    Bytes& operator=(const Bytes&) = delete;
    virtual ~Bytes();

    /// At least one byte and at most `most`, waiting only where there is none yet; 0 at the end. An error
    /// names the file.
    virtual Result<std::size_t> read(char* to, std::size_t most) = 0;
};

/// `path` is a file, or "-" for standard input. A folder is refused.
Result<std::unique_ptr<Bytes>, OpenError> openBytes(const std::string& path);

std::unique_ptr<Bytes> streamBytes(std::shared_ptr<std::istream> in, std::string name);

/// `front`, then what `rest` gives.
std::unique_ptr<Bytes> joinedBytes(std::string front, std::unique_ptr<Bytes> rest);

/// Gives bytes one at a time and counts lines, which end at LF, CR or CRLF.
class ByteReader {
  public:
    static constexpr int kEnd = -1;

    explicit ByteReader(std::unique_ptr<Bytes> from) : m_from(std::move(from)) {}

    /// The byte in front, or kEnd; stays.
    int peek() { return m_at < m_size || refill() ? static_cast<unsigned char>(m_buffer[m_at]) : kEnd; }
    /// Takes the byte in front, or gives kEnd.
    int next() {
        const int byte = peek();
        if (byte == kEnd) return kEnd;
        ++m_at;
        if (byte == '\r' || (byte == '\n' && !m_afterReturn)) ++m_line;
        m_afterReturn = byte == '\r';
        return byte;
    }
    /// The line that the next byte stands on, from 1. (Behind a CR the next line has begun.)
    std::size_t line() const { return m_line; }
    /// Absent unless the environment failed, which reads as an end.
    const std::optional<Error>& failure() const { return m_failure; }

  private:
    bool refill();

    std::unique_ptr<Bytes> m_from;
    std::array<char, 65536> m_buffer{};
    std::size_t m_at = 0;
    std::size_t m_size = 0;
    std::size_t m_line = 1;
    bool m_afterReturn = false;
    bool m_ended = false;
    std::optional<Error> m_failure;
};

}  // namespace vigil
