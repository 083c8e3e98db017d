#include "host/feeds/JsonLine.hpp"

#include <new>
#include <string>

#include <simdjson.h>

#include "host/feeds/TextLines.hpp"

namespace vigil {

static_assert(TextLines::kPadding >= simdjson::SIMDJSON_PADDING);

JsonLine::JsonLine() : m_parser(std::make_unique<simdjson::dom::parser>()) {
    constexpr std::size_t kFirstCapacity = 4096;  // grows with the lines; the depth stays
    if (m_parser->allocate(kFirstCapacity, kDeepest) != simdjson::SUCCESS) throw std::bad_alloc();
}

JsonLine::~JsonLine() = default;

Result<simdjson::dom::element> JsonLine::parse(std::string_view text) {
    simdjson::dom::element parsed;
    const auto error = m_parser->parse(text.data(), text.size(), /*realloc_if_needed=*/false).get(parsed);
    switch (error) {
        case simdjson::SUCCESS:
            return parsed;
        case simdjson::DEPTH_ERROR:
            return Error{"not JSON: more than " + std::to_string(kDeepest) + " levels deep"};
        case simdjson::UTF8_ERROR:
            return Error{"not JSON: not UTF-8"};
        case simdjson::NUMBER_ERROR:
            return Error{"not JSON: a number that is malformed or too large"};
        case simdjson::STRING_ERROR:
        case simdjson::UNCLOSED_STRING:
        case simdjson::UNESCAPED_CHARS:
            return Error{"not JSON: a text that is not closed or not escaped as it must be"};
        case simdjson::EMPTY:
            return Error{"not JSON: nothing there"};
        case simdjson::MEMALLOC:
            return Error{"no memory to read it"};
        default:
            return Error{"not JSON: brackets, commas or colons do not fit together"};
    }
}

}  // namespace vigil
