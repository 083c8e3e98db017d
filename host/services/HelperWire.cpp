#include "host/services/HelperWire.hpp"

namespace vigil {
namespace {

constexpr std::size_t kLengthSize = 4;

void put(std::string& to, std::uint64_t value, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i)
        to.push_back(static_cast<char>(value >> (8 * i) & 0xFF));
}

std::uint64_t get(std::string_view from, std::size_t size) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < size; ++i)
        value |= std::uint64_t{static_cast<unsigned char>(from[i])} << (8 * i);
    return value;
}

}  // namespace

WireWriter::WireWriter(char kind) : m_bytes(kLengthSize, '\0') {
    m_bytes.push_back(kind);
}

WireWriter& WireWriter::number(std::uint32_t value) {
    put(m_bytes, value, 4);
    return *this;
}

WireWriter& WireWriter::longNumber(std::uint64_t value) {
    put(m_bytes, value, 8);
    return *this;
}

WireWriter& WireWriter::text(std::string_view value) {
    put(m_bytes, value.size(), 4);
    m_bytes.append(value);
    return *this;
}

std::string WireWriter::take() {
    std::string length;
    put(length, m_bytes.size() - kLengthSize, kLengthSize);
    m_bytes.replace(0, kLengthSize, length);
    return std::move(m_bytes);
}

WireReader::WireReader(std::string_view message) : m_rest(message) {
    m_kind = static_cast<char>(littleEndian(1));
}

std::uint64_t WireReader::littleEndian(std::size_t size) {
    if (!m_ok || m_rest.size() < size) {
        m_ok = false;
        return 0;
    }
    const std::uint64_t value = get(m_rest, size);
    m_rest.remove_prefix(size);
    return value;
}

std::uint32_t WireReader::number() {
    return static_cast<std::uint32_t>(littleEndian(4));
}

std::uint64_t WireReader::longNumber() {
    return littleEndian(8);
}

std::string WireReader::text() {
    const std::size_t size = number();
    if (!m_ok || m_rest.size() < size) {
        m_ok = false;
        return {};
    }
    std::string value(m_rest.substr(0, size));
    m_rest.remove_prefix(size);
    return value;
}

std::optional<std::string> WireBuffer::next() {
    if (m_broken || m_bytes.size() < kLengthSize) return std::nullopt;
    const std::size_t length = get(m_bytes, kLengthSize);
    if (length == 0 || length > kHelperMessage) {
        m_broken = true;
        return std::nullopt;
    }
    if (m_bytes.size() - kLengthSize < length) return std::nullopt;
    std::string message = m_bytes.substr(kLengthSize, length);
    m_bytes.erase(0, kLengthSize + length);
    return message;
}

}  // namespace vigil
