#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vigil {

// How the host and `vigil-helper` talk. The helper's standard input is one end of a socket pair and serves
// both directions. A message is
//
//     length   4 bytes, little-endian: how many bytes follow, 1 to kHelperMessage
//     kind     1 byte
//     fields   integers of 4 or 8 bytes, little-endian; a text is its length (4 bytes) and its bytes
//
// The end of the stream from the host means: end what you run, and yourself. Any thread.

inline constexpr std::size_t kHelperMessage = 4 << 20;  ///< bytes; a longer one is no message

/// Puts the fields of one message together.
class WireWriter {
  public:
    explicit WireWriter(char kind);
    WireWriter& number(std::uint32_t value);
    WireWriter& longNumber(std::uint64_t value);
    WireWriter& text(std::string_view value);
    /// The message, its length in front.
    std::string take();

  private:
    std::string m_bytes;
};

/// Takes the fields of one message apart. What reaches past its end reads as 0 or empty, and `ok` is false
/// from then on.
class WireReader {
  public:
    /// `message` is without its length and must outlive the reader.
    explicit WireReader(std::string_view message);
    char kind() const { return m_kind; }
    std::uint32_t number();
    std::uint64_t longNumber();
    std::string text();
    bool ok() const { return m_ok; }
    /// Whether all fields were there and nothing is behind the last.
    bool complete() const { return m_ok && m_rest.empty(); }

  private:
    std::uint64_t littleEndian(std::size_t size);

    std::string_view m_rest;
    char m_kind = 0;
    bool m_ok = true;
};

/// What has arrived and not yet been taken as messages.
class WireBuffer {
  public:
    void append(std::string_view bytes) { m_bytes.append(bytes); }
    /// The next whole message without its length, or nothing as long as it is not all there.
    std::optional<std::string> next();
    /// A length was read that no message has. Nothing comes any more.
    bool broken() const { return m_broken; }

  private:
    std::string m_bytes;
    bool m_broken = false;
};

}  // namespace vigil
