#include <algorithm>

#include "host/feeds/FeedUrl_Parts.hpp"
#include "platform/Files.hpp"

namespace vigil {
namespace {

int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

/// Cuts words off the front of a text.
class Words {
  public:
    explicit Words(FeedPart part) : m_part(part) {}

    Result<std::vector<std::string>> all() {
        std::vector<std::string> words;
        for (;;) {
            while (m_at < m_part.text.size() && m_part.text[m_at] == ' ')
                ++m_at;
            if (m_at == m_part.text.size()) return words;
            std::string word;
            if (auto taken = takeWord(word); !taken) return taken.error();
            words.push_back(std::move(word));
        }
    }

  private:
    Result<Done> takeWord(std::string& word) {
        for (; m_at < m_part.text.size() && m_part.text[m_at] != ' '; ++m_at) {
            const char c = m_part.text[m_at];
            if (c == '\'' || c == '"') {
                if (auto taken = takeQuoted(c, word); !taken) return taken;
            } else if (c == '\\') {
                if (++m_at == m_part.text.size())
                    return refusedFeed(m_part.end(), "expected a character behind \\");
                word += m_part.text[m_at];
            } else if (std::string_view("|&;<>()").find(c) != std::string_view::npos) {
                return refusedFeed(m_part.at + m_at, std::string("no shell reads this, so ") + c +
                                                         " has to stand in quotes; for a shell write exec:sh "
                                                         "-c '…'");
            } else {
                word += c;
            }
        }
        return Done{};
    }

    /// Ends at the closing quote.
    Result<Done> takeQuoted(char quote, std::string& word) {
        const std::size_t opened = m_at;
        for (++m_at; m_at < m_part.text.size(); ++m_at) {
            const char c = m_part.text[m_at];
            if (c == quote) return Done{};
            const bool escapes =
                quote == '"' && c == '\\' && m_at + 1 < m_part.text.size() &&
                std::string_view("\"\\$`").find(m_part.text[m_at + 1]) != std::string_view::npos;
            word += escapes ? m_part.text[++m_at] : c;
        }
        return refusedFeed(m_part.at + opened, std::string("a quote that is not closed: ") + quote);
    }

    FeedPart m_part;
    std::size_t m_at = 0;
};

}  // namespace

Result<std::vector<std::string>> feedWords(FeedPart part) {
    return Words(part).all();
}

Result<std::string> decodedFeedPart(FeedPart part) {
    std::string decoded;
    for (std::size_t i = 0; i < part.text.size(); ++i) {
        if (part.text[i] != '%') {
            decoded += part.text[i];
            continue;
        }
        const int high = i + 2 < part.text.size() ? hexDigit(part.text[i + 1]) : -1;
        const int low = high < 0 ? -1 : hexDigit(part.text[i + 2]);
        if (low < 0)
            return refusedFeed(part.at + i, "expected two hexadecimal digits behind %; a % itself is %25");
        if (high == 0 && low == 0) return refusedFeed(part.at + i, "%00 cannot stand in a name");
        decoded += static_cast<char>(high * 16 + low);
        i += 2;
    }
    if (!isValidUtf8(decoded)) return refusedFeed(part.at, "decoded, it is not UTF-8");
    return decoded;
}

}  // namespace vigil
