#pragma once

#include <memory>
#include <string>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

#include "host/site/HistoryReader.hpp"

namespace vigil {

/// The reader's connection. One thread at a time.
class HistoryReader::File {
  public:
    explicit File(std::string path);

    /// Runs `ask`, and gives what it gives, or why the file does not answer.
    template <class T, class Ask>
    Result<T> answer(Ask&& ask) const {
        try {
            return ask();
        } catch (const SQLite::Exception& what) {
            return Error{"cannot read the history " + path + ": " + what.what()};
        }
    }

    const std::string path;
    const std::unique_ptr<SQLite::Database> database;
};

/// Binds the range's ends as seconds, from `index` on: open ones as beyond all times.
void bindRange(SQLite::Statement& statement, int index, const HistoryRange& range);

}  // namespace vigil
