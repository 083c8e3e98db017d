#include "tests/support/VectorFile.hpp"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <stdexcept>

namespace vigil::test {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void fail(const std::string& file, int line, const std::string& why) {
    throw std::runtime_error(file + ":" + std::to_string(line) + ": " + why);
}

void readCases(const fs::path& path, const std::string& shown, std::vector<VectorCase>& to) {
    std::ifstream in(path, std::ios::binary);
    if (!in) fail(shown, 0, "cannot be read");
    const std::size_t before = to.size();
    bool open = false;
    int number = 0;
    for (std::string line; std::getline(in, line);) {
        ++number;
        if (line.empty()) {
            open = false;
        } else if (line[0] == '#') {
            if (!open) to.push_back({shown, number, {}, {}});
            open = true;
            if (!to.back().fields.empty()) fail(shown, number, "a comment between fields");
            to.back().shows +=
                (to.back().shows.empty() ? "" : " ") + line.substr(std::min<std::size_t>(2, line.size()));
        } else {
            const auto colon = line.find(':');
            if (!open) fail(shown, number, "a case without a comment that says what it shows");
            if (colon == std::string::npos) fail(shown, number, "expected NAME: VALUE");
            // One blank behind the colon belongs to neither.
            const std::size_t start = colon + 1 + (line.compare(colon + 1, 1, " ") == 0 ? 1 : 0);
            to.back().fields.push_back({line.substr(0, colon), line.substr(start), number});
        }
    }
    if (to.size() == before) fail(shown, number, "no case");
    // A file's heading is a comment alone.
    std::erase_if(to, [](const VectorCase& each) { return each.fields.empty(); });
    if (to.size() == before) fail(shown, number, "no case");
}

int hexDigit(char c) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    const auto at = kDigits.find(c);
    return at == std::string_view::npos ? -1 : static_cast<int>(at);
}

}  // namespace

std::string VectorCase::place() const {
    return file + ":" + std::to_string(line) + ": " + shows;
}

std::optional<std::string> VectorCase::text(std::string_view name) const {
    for (const Field& field : fields) {
        if (field.name == name) return field.value;
        if (field.name == std::string(name) + "-bytes") return unescaped(field.value);
    }
    return std::nullopt;
}

std::vector<const VectorCase::Field*> VectorCase::all(std::string_view name) const {
    std::vector<const Field*> found;
    for (const Field& field : fields)
        if (field.name == name) found.push_back(&field);
    return found;
}

std::vector<VectorCase> readVectors(const std::string& folder, const std::string& prefix) {
    const fs::path root = fs::path(VIGIL_SOURCE_DIR) / "tests/vectors" / folder;
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(root)) {
        const std::string name = entry.path().filename().string();
        if (name.starts_with(prefix) && name.ends_with(".txt")) names.insert(name);
    }
    if (names.empty()) throw std::runtime_error("no file tests/vectors/" + folder + "/" + prefix + "*.txt");
    std::vector<VectorCase> cases;
    for (const std::string& name : names) {
        std::string shown = "tests/vectors/";
        ((shown += folder) += '/') += name;
        readCases(root / name, shown, cases);
    }
    return cases;
}

std::string unescaped(std::string_view text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            bytes += text[i];
            continue;
        }
        const char kind = ++i < text.size() ? text[i] : '\0';
        const int high = kind == 'x' && i + 2 < text.size() ? hexDigit(text[i + 1]) : -1;
        const int low = high >= 0 ? hexDigit(text[i + 2]) : -1;
        if (low >= 0) {
            bytes += static_cast<char>(high * 16 + low);
            i += 2;
        } else if (kind == 't') {
            bytes += '\t';
        } else if (kind == 'n') {
            bytes += '\n';
        } else if (kind == 'r') {
            bytes += '\r';
        } else if (kind == '\\') {
            bytes += '\\';
        } else {
            throw std::runtime_error("not an escape: " + std::string(text.substr(i - 1)));
        }
    }
    return bytes;
}

}  // namespace vigil::test
