#include "host/feeds/OpenRecorded.hpp"

#include <utility>

#include "host/feeds/OpenRecorded_Bytes.hpp"

namespace vigil {
namespace {

std::string shownName(const std::string& path) {
    return path == "-" ? "standard input" : path;
}

/// What the file's name says of its form, if anything.
std::optional<bool> isNamedJsonLines(const std::string& path) {
    const std::size_t dot = path.rfind('.');
    const std::string ending = dot == std::string::npos ? "" : path.substr(dot);
    if (ending == ".jsonl" || ending == ".ndjson" || ending == ".json") return true;
    if (ending == ".csv" || ending == ".tsv") return false;
    return std::nullopt;
}

/// Whether what begins so is JSON lines; nothing as long as more is needed to tell.
std::optional<bool> looksLikeJsonLines(std::string_view front) {
    if (front.starts_with("\xEF\xBB\xBF")) front.remove_prefix(3);
    const std::size_t first = front.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos) return std::nullopt;
    return front[first] == '{';
}

}  // namespace

Opened openCsv(const std::string& path, CsvOptions options, ProblemTeller tell) {
    auto bytes = openBytes(path);
    if (!bytes) return bytes.error();
    return openCsv(std::move(bytes).value(), shownName(path), std::move(options), std::move(tell));
}

Opened openJsonLines(const std::string& path, JsonLinesOptions options, ProblemTeller tell) {
    auto bytes = openBytes(path);
    if (!bytes) return bytes.error();
    return openJsonLines(std::move(bytes).value(), shownName(path), std::move(options), std::move(tell));
}

Opened openCsv(std::shared_ptr<std::istream> in, const std::string& name, CsvOptions options,
               ProblemTeller tell) {
    return openCsv(streamBytes(std::move(in), name), name, std::move(options), std::move(tell));
}

Opened openJsonLines(std::shared_ptr<std::istream> in, const std::string& name, JsonLinesOptions options,
                     ProblemTeller tell) {
    return openJsonLines(streamBytes(std::move(in), name), name, std::move(options), std::move(tell));
}

Opened openRecorded(const std::string& path, CsvOptions csv, JsonLinesOptions lines, ProblemTeller tell) {
    auto opened = openBytes(path);
    if (!opened) return opened.error();
    std::unique_ptr<Bytes> bytes = std::move(opened).value();
    std::string front;
    std::optional<bool> isLines = isNamedJsonLines(path);
    while (!isLines && front.size() < kLongestRow) {
        char chunk[4096];
        const auto got = bytes->read(chunk, sizeof chunk);
        if (!got) return OpenError{OpenError::Kind::CannotRead, got.error().message};
        if (got.value() == 0) break;
        front.append(chunk, got.value());
        isLines = looksLikeJsonLines(front);
    }
    // A file of nothing but blanks holds no notification in either form; JSON lines say so without a fuss.
    bytes = joinedBytes(std::move(front), std::move(bytes));
    if (isLines.value_or(true))
        return openJsonLines(std::move(bytes), shownName(path), std::move(lines), std::move(tell));
    return openCsv(std::move(bytes), shownName(path), std::move(csv), std::move(tell));
}

}  // namespace vigil
