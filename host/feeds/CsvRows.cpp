#include "host/feeds/CsvRows.hpp"

#include <utility>

namespace vigil {

CsvRows::CsvRows(std::unique_ptr<Bytes> from, char separator, ProblemTeller tell)
    : m_in(std::move(from)), m_separator(static_cast<unsigned char>(separator)), m_tell(std::move(tell)) {
    skipByteOrderMark();
}

bool CsvRows::next(CsvRow& row) {
    for (;;) {
        const Ended ended = readRow(row);
        if (failure()) return false;  // what has been read of the row may lack its end
        if (ended == Ended::Refused) continue;
        const bool blank = row.size() == 1 && row.cell(0).empty();
        if (!blank) return true;
        if (ended == Ended::File) return false;
    }
}

CsvRows::Ended CsvRows::readRow(CsvRow& row) {
    row.m_line = m_in.line();
    row.m_text.clear();
    row.m_cells.clear();
    for (;;) {
        const Ended ended = readCell(row);
        if (ended != Ended::Cell) return ended;
    }
}

CsvRows::Ended CsvRows::readCell(CsvRow& row) {
    skipBlanks();
    const std::size_t begin = row.m_text.size();
    const std::size_t line = m_in.line();
    const Ended ended = m_in.peek() == '"' ? readQuoted(row) : readPlain(row);
    row.m_cells.push_back({begin, row.m_text.size(), line});
    if (row.m_text.size() + row.m_cells.size() <= kLongestRow || ended == Ended::Refused) return ended;
    if (ended == Ended::Cell) skipLine();
    return refuse(row.m_line, "the row has more than " + std::to_string(kLongestRow) + " bytes; left out");
}

CsvRows::Ended CsvRows::readQuoted(CsvRow& row) {
    const std::size_t line = m_in.line();
    m_in.next();
    for (;;) {
        if (m_in.peek() == ByteReader::kEnd)
            return refuse(line, "the file ends inside the quoted cell that begins here; the row is left out");
        const int byte = m_in.next();
        if (byte == '"') {
            if (m_in.peek() != '"') break;
            m_in.next();
        }
        row.m_text += static_cast<char>(byte);
        if (row.m_text.size() <= kLongestRow) continue;
        skipLine();
        return refuse(line, "the quoted cell that begins here is not closed within " +
                                std::to_string(kLongestRow) +
                                " bytes; what follows is left out to the line's end");
    }
    skipBlanks();
    if (endsCell(m_in.peek())) return endOfCell();
    const std::size_t at = m_in.line();
    skipLine();
    return refuse(at, "text behind a closing quote; the row is left out");
}

CsvRows::Ended CsvRows::readPlain(CsvRow& row) {
    const std::size_t begin = row.m_text.size();
    while (!endsCell(m_in.peek())) {
        const int byte = m_in.next();
        // One byte more than allowed is kept, so that the caller sees it.
        if (row.m_text.size() <= kLongestRow) row.m_text += static_cast<char>(byte);
    }
    if (row.m_text.size() > kLongestRow) return endOfCell();
    while (row.m_text.size() > begin && isBlank(static_cast<unsigned char>(row.m_text.back())))
        row.m_text.pop_back();
    return endOfCell();
}

CsvRows::Ended CsvRows::endOfCell() {
    const int byte = m_in.next();
    if (byte == m_separator) return Ended::Cell;
    if (byte == '\r' && m_in.peek() == '\n') m_in.next();
    return byte == ByteReader::kEnd ? Ended::File : Ended::Row;
}

void CsvRows::skipBlanks() {
    while (isBlank(m_in.peek()))
        m_in.next();
}

void CsvRows::skipLine() {
    int byte = m_in.next();
    while (byte != '\n' && byte != '\r' && byte != ByteReader::kEnd)
        byte = m_in.next();
    if (byte == '\r' && m_in.peek() == '\n') m_in.next();
}

void CsvRows::skipByteOrderMark() {
    if (m_in.peek() != 0xEF) return;
    for (const int expected : {0xEF, 0xBB, 0xBF})
        if (m_in.peek() == expected) m_in.next();
}

CsvRows::Ended CsvRows::refuse(std::size_t line, std::string message) {
    if (m_tell) m_tell({line, std::move(message)});
    return Ended::Refused;
}

}  // namespace vigil
