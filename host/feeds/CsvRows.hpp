#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/feeds/Bytes.hpp"
#include "host/feeds/Recorded.hpp"

namespace vigil {

/// The cells of one row of a CSV file.
class CsvRow {
  public:
    std::size_t line() const { return m_line; }
    std::size_t size() const { return m_cells.size(); }
    /// Without quotes and, outside of quotes, without blanks around it. Valid until the row is read anew.
    std::string_view cell(std::size_t i) const {
        return std::string_view(m_text).substr(m_cells[i].begin, m_cells[i].end - m_cells[i].begin);
    }
    /// The line on which the cell begins; in a row of several lines not the row's.
    std::size_t lineOf(std::size_t i) const { return m_cells[i].line; }

  private:
    friend class CsvRows;
    struct Cell {
        std::size_t begin, end, line;
    };
    std::size_t m_line = 0;
    std::string m_text;
    std::vector<Cell> m_cells;
};

/// Cuts bytes into rows as RFC 4180 says, and takes what is seen besides: LF, CR or CRLF, a byte order mark,
/// blanks around a quoted cell, empty lines (which are no rows), a last line without its end. A quote inside
/// an unquoted cell is an ordinary character.
class CsvRows {
  public:
    CsvRows(std::unique_ptr<Bytes> from, char separator, ProblemTeller tell);

    /// Reads the next row that is whole; false at the end. Rows that are not whole are told with their line
    /// and skipped.
    bool next(CsvRow& row);
    /// Absent unless the environment failed, which reads as an end.
    const std::optional<Error>& failure() const { return m_in.failure(); }

  private:
    enum class Ended { Cell, Row, File, Refused };
    Ended readRow(CsvRow& row);
    Ended readCell(CsvRow& row);
    Ended readQuoted(CsvRow& row);
    Ended readPlain(CsvRow& row);
    Ended endOfCell();
    void skipBlanks();
    void skipLine();
    void skipByteOrderMark();
    bool isBlank(int byte) const { return byte == ' ' || (byte == '\t' && m_separator != '\t'); }
    bool endsCell(int byte) const {
        return byte == m_separator || byte == '\n' || byte == '\r' || byte == ByteReader::kEnd;
    }
    Ended refuse(std::size_t line, std::string message);

    ByteReader m_in;
    int m_separator;
    ProblemTeller m_tell;
};

}  // namespace vigil
