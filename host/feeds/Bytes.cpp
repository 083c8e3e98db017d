#include "host/feeds/Bytes.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vigil {
namespace {

std::string reason(int error) {
    return std::generic_category().message(error);
}

class FileBytes final : public Bytes {
  public:
    FileBytes(int file, bool owned, std::string name)
        : m_file(file), m_owned(owned), m_name(std::move(name)) {}
    ~FileBytes() override {
        if (m_owned) ::close(m_file);
    }

    Result<std::size_t> read(char* to, std::size_t most) override {
        for (;;) {
            const ssize_t got = ::read(m_file, to, most);
            if (got >= 0) return static_cast<std::size_t>(got);
            if (errno != EINTR) return Error{m_name + ": cannot be read: " + reason(errno)};
        }
    }

  private:
    int m_file;
    bool m_owned;
    std::string m_name;
};

class StreamBytes final : public Bytes {
  public:
    StreamBytes(std::shared_ptr<std::istream> in, std::string name)
        : m_in(std::move(in)), m_name(std::move(name)) {}

    Result<std::size_t> read(char* to, std::size_t most) override {
        // The first byte may wait; behind it only what the stream holds already is taken.
        if (!m_in->get(*to)) {
            if (m_in->bad()) return Error{m_name + ": cannot be read"};
            return std::size_t{0};
        }
        const auto more = m_in->readsome(to + 1, static_cast<std::streamsize>(most - 1));
        return 1 + static_cast<std::size_t>(std::max<std::streamsize>(more, 0));
    }

  private:
    std::shared_ptr<std::istream> m_in;
    std::string m_name;
};

class JoinedBytes final : public Bytes {
  public:
    JoinedBytes(std::string front, std::unique_ptr<Bytes> rest)
        : m_front(std::move(front)), m_rest(std::move(rest)) {}

    Result<std::size_t> read(char* to, std::size_t most) override {
        if (m_at == m_front.size()) return m_rest->read(to, most);
        const std::size_t count = std::min(most, m_front.size() - m_at);
        std::memcpy(to, m_front.data() + m_at, count);
        m_at += count;
        return count;
    }

  private:
    std::string m_front;
    std::size_t m_at = 0;
    std::unique_ptr<Bytes> m_rest;
};

}  // namespace

Bytes::~Bytes() = default;

Result<std::unique_ptr<Bytes>, OpenError> openBytes(const std::string& path) {
    using Kind = OpenError::Kind;
    if (path == "-")
        return std::unique_ptr<Bytes>(
            std::make_unique<FileBytes>(STDIN_FILENO, /*owned=*/false, "standard input"));
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) return OpenError{Kind::CannotRead, path + ": cannot be opened: " + reason(errno)};
    std::unique_ptr<Bytes> bytes = std::make_unique<FileBytes>(file, /*owned=*/true, path);
    struct stat about {};
    if (::fstat(file, &about) == 0 && S_ISDIR(about.st_mode))
        return OpenError{Kind::CannotRead, path + ": is a folder"};
    return bytes;
}

std::unique_ptr<Bytes> streamBytes(std::shared_ptr<std::istream> in, std::string name) {
    return std::make_unique<StreamBytes>(std::move(in), std::move(name));
}

std::unique_ptr<Bytes> joinedBytes(std::string front, std::unique_ptr<Bytes> rest) {
    return std::make_unique<JoinedBytes>(std::move(front), std::move(rest));
}

bool ByteReader::refill() {
    if (m_ended) return false;
    const auto got = m_from->read(m_buffer.data(), m_buffer.size());
    if (!got) m_failure = got.error();
    m_at = 0;
    m_size = got ? got.value() : 0;
    m_ended = m_size == 0;
    return !m_ended;
}

}  // namespace vigil
