#include "host/kit/KeyedArchive_Output.hpp"

#include <cmath>

#include "host/kit/KeyedArchive_Text.hpp"
#include "platform/Files.hpp"

namespace vigil {

bool ArchiveOutput::fail(const std::string& reason) {
    if (!m_error) m_error = archiveError(path, reason);
    return false;
}

bool ArchiveOutput::failAt(std::string_view key, const std::string& reason) {
    const std::size_t before = path.size();
    extendPath(key);
    fail(reason);
    path.resize(before);
    return false;
}

void ArchiveOutput::extendPath(std::string_view key) {
    appendPathName(path, isValidUtf8(key) ? key : std::string_view("(no UTF-8)"));
}

void ArchiveOutput::count(std::size_t values) {
    m_values += values;
    if (m_values > m_limits.values) fail("more than " + std::to_string(m_limits.values) + " values");
}

void ArchiveOutput::countObject(std::size_t objects) {
    if (objects > m_limits.objects) fail("more than " + std::to_string(m_limits.objects) + " objects");
}

void ArchiveOutput::checkLength() {
    if (text.size() > m_limits.bytes)
        fail("the archive is longer than " + std::to_string(m_limits.bytes) + " bytes");
}

bool ArchiveOutput::mayNest(std::size_t levels) {
    if (levels > m_limits.depth)
        fail("more than " + std::to_string(m_limits.depth) + " levels inside each other");
    return !failed();
}

void ArchiveOutput::newLine(std::size_t level) {
    text.append("\n").append(2 * (level + 1), ' ');
}

void ArchiveOutput::beginEntry(std::string_view key, bool first, std::size_t level) {
    if (!first) text += ',';
    newLine(level);
    if (!isValidUtf8(key))
        appendQuoted(text, "$bytes:" + hexText(key));
    else
        appendQuoted(text, key.starts_with('$') ? "$" + std::string(key) : std::string(key));
    text += ": ";
}

std::size_t ArchiveOutput::writeScalar(const Value& value) {
    if (const auto* real = value.as<double>()) return writeReal(*real);
    if (const auto* content = value.as<std::string>()) return writeText(*content);
    if (const auto* date = value.as<Date>()) {
        text += "{\"$date\": ";
        count(1);
        const std::size_t height = writeReal(date->secondsSinceReference()) + 1;
        text += '}';
        return height;
    }
    if (const auto* flag = value.as<bool>())
        text += *flag ? "true" : "false";
    else if (const auto* integer = value.as<std::int64_t>())
        text += std::to_string(*integer);
    else
        text += "null";
    return 0;
}

std::size_t ArchiveOutput::writeReal(double value) {
    if (std::isfinite(value)) {
        appendReal(text, value);
        return 0;
    }
    count(1);
    text += "{\"$real\": \"" + numberText(value) + "\"}";
    return 1;
}

std::size_t ArchiveOutput::writeText(const std::string& content) {
    if (isValidUtf8(content)) {
        appendQuoted(text, content);
        return 0;
    }
    count(1);
    text += "{\"$bytes\": \"" + hexText(content) + "\"}";
    return 1;
}

}  // namespace vigil
