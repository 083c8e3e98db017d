#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vigil::test {

/// One case of a vector file: a comment that says what it shows, then fields, one a line.
struct VectorCase {
    struct Field {
        std::string name;
        std::string value;
        int line;
    };
    std::string file;  ///< with its folder
    int line = 0;      ///< of the comment
    std::string shows;
    std::vector<Field> fields;

    /// "conditions/numbers.txt:12: shows …", for messages.
    std::string place() const;
    /// The field as it stands there, or, when `NAME-bytes` stands there instead, that with its escapes
    /// replaced. Nothing when neither stands there.
    std::optional<std::string> text(std::string_view name) const;
    std::vector<const Field*> all(std::string_view name) const;
};

/// What the files `FOLDER/PREFIX*.txt` below tests/vectors hold, by name of the file. A file without a case,
/// a case without a comment, a line that is no field, and no file at all are std::runtime_error with the
/// place.
std::vector<VectorCase> readVectors(const std::string& folder, const std::string& prefix);

/// \t \n \r \\ and \xHH replaced; another backslash is std::runtime_error.
std::string unescaped(std::string_view text);

}  // namespace vigil::test
