#pragma once

#include <string>

#include <SQLiteCpp/SQLiteCpp.h>

#include "platform/Result.hpp"

namespace vigil {

/// What a failure of the library means, for people: "FILE: the disk is full".
std::string failureText(const std::string& file, const SQLite::Exception& failure);

/// Whether it says that the file's own pages or tables do not hold together.
bool tellsOfDamage(const SQLite::Exception& failure);

/// Whether the file is no database at all.
bool tellsOfAnotherFormat(const SQLite::Exception& failure);

/// Whether it is about the one row that was to be written (a rule of its table, a size), so that others may
/// go on.
bool isAboutTheRow(const SQLite::Exception& failure);

/// Whether it is a text that has to be unique and is not.
bool isAboutUniqueness(const SQLite::Exception& failure);

/// `work()`, with a failure of the library as an error.
template <class T, class Work>
Result<T> asked(const std::string& file, Work work) {
    try {
        return work();
    } catch (const SQLite::Exception& failure) {
        return Error{failureText(file, failure)};
    }
}

}  // namespace vigil
