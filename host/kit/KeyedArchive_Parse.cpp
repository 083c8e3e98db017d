#include <unordered_set>

#include <nlohmann/json.hpp>

#include "host/kit/KeyedArchive_Text.hpp"

// JSON to nodes. The library's event interface is used because it keeps integers, unsigned integers and reals
// apart, hands over a number's own text where it fits none of them, tells the byte of an error, and works
// without recursion, so that the depth is bounded here and nowhere else. A tree made by the library itself
// would lose duplicate members and the kind of an integer that is too large.

namespace vigil {
namespace {

using Json = nlohmann::json;
constexpr int kNumberOutOfRange = 406;  // the library's number for a real beyond a double

class Builder final : public nlohmann::json_sax<Json> {
  public:
    Builder(std::size_t textSize, const ArchiveLimits& limits) : m_textSize(textSize), m_limits(limits) {}

    ArchiveNode& node() { return m_result; }
    const std::optional<Error>& error() const { return m_error; }

    bool null() override { return add({}); }
    bool boolean(bool flag) override { return add({flag}); }
    bool number_integer(number_integer_t value) override { return add({std::int64_t{value}}); }
    bool number_unsigned(number_unsigned_t value) override {
        if (value > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
            return fail("the integer is too large");
        return add({static_cast<std::int64_t>(value)});
    }
    bool number_float(number_float_t value, const string_t& text) override {
        if (text.find_first_of(".eE") == string_t::npos) return fail("the integer is too large");
        return add({value});
    }
    bool string(string_t& text) override { return add({std::move(text)}); }
    bool binary(binary_t&) override { return fail("binary data cannot stand here"); }

    bool start_object(std::size_t) override { return open({ArchiveNode::Members{}}); }
    bool start_array(std::size_t) override { return open({ArchiveNode::List{}}); }
    bool end_object() override { return close(); }
    bool end_array() override { return close(); }

    bool key(string_t& name) override {
        Frame& frame = m_frames.back();
        frame.name = std::move(name);
        frame.hasName = true;
        return frame.names.insert(frame.name).second || fail("the name stands twice");
    }

    bool parse_error(std::size_t byte, const std::string&,
                     const nlohmann::detail::exception& exception) override {
        if (exception.id == kNumberOutOfRange) return fail("the number is too large");
        if (byte > m_textSize) return fail("the text ends too soon");
        return fail("not JSON at byte " + std::to_string(byte == 0 ? 0 : byte - 1));
    }

  private:
    struct Frame {
        ArchiveNode node;
        std::string name;
        bool hasName = false;
        std::unordered_set<std::string> names;
    };

    bool fail(const std::string& reason) {
        std::string path;
        for (const Frame& frame : m_frames) {
            if (const auto* list = frame.node.as<ArchiveNode::List>())
                appendPathIndex(path, list->size());
            else if (frame.hasName)
                appendPathName(path, frame.name);
        }
        m_error = archiveError(path, reason);
        return false;
    }

    bool count() {
        return ++m_values <= m_limits.values ||
               fail("more than " + std::to_string(m_limits.values) + " values");
    }

    bool open(ArchiveNode node) {
        // The outermost object is the envelope, not a level of the graph.
        if (m_frames.size() > m_limits.depth)
            return fail("more than " + std::to_string(m_limits.depth) + " levels inside each other");
        if (!count()) return false;
        m_frames.emplace_back().node = std::move(node);
        return true;
    }

    bool close() {
        ArchiveNode node = std::move(m_frames.back().node);
        m_frames.pop_back();
        place(std::move(node));
        return true;
    }

    bool add(ArchiveNode node) {
        if (!count()) return false;
        place(std::move(node));
        return true;
    }

    void place(ArchiveNode node) {
        if (m_frames.empty()) {
            m_result = std::move(node);
            return;
        }
        Frame& frame = m_frames.back();
        if (auto* list = std::get_if<ArchiveNode::List>(&frame.node.held)) {
            list->push_back(std::move(node));
        } else if (auto* members = std::get_if<ArchiveNode::Members>(&frame.node.held)) {
            members->push_back({std::move(frame.name), std::move(node)});
            frame.hasName = false;
        }
    }

    std::size_t m_textSize;
    const ArchiveLimits& m_limits;
    std::size_t m_values = 0;
    std::vector<Frame> m_frames;
    ArchiveNode m_result;
    std::optional<Error> m_error;
};

}  // namespace

Result<ArchiveNode> parseArchiveText(std::string_view text, const ArchiveLimits& limits) {
    if (text.size() > limits.bytes)
        return archiveError("", "longer than " + std::to_string(limits.bytes) + " bytes");
    Builder builder(text.size(), limits);
    const bool read = Json::sax_parse(text.begin(), text.end(), &builder);
    if (builder.error()) return *builder.error();
    if (!read) return archiveError("", "not JSON");
    return std::move(builder.node());
}

}  // namespace vigil
