#include "host/site/SiteSql.hpp"

#include <sqlite3.h>

namespace vigil {
namespace {

constexpr int kPrimary = 0xFF;  // the part of an extended code that names its family

/// The extended code is the connection's last one, which is of another call where the failure came from here.
int codeOf(const SQLite::Exception& failure) {
    return failure.getErrorCode() & kPrimary;
}

std::string meaning(const SQLite::Exception& failure) {
    switch (codeOf(failure)) {
        case SQLITE_FULL:
            return "the disk is full";
        case SQLITE_IOERR:
            return "the disk could not be read or written";
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            return "another program holds it";
        case SQLITE_READONLY:
            return "it may not be written";
        case SQLITE_CANTOPEN:
        case SQLITE_PERM:
        case SQLITE_AUTH:
            return "it could not be opened";
        case SQLITE_NOMEM:
            return "the memory is used up";
        case SQLITE_CORRUPT:
            return "it is damaged; `vigil site check` tells more";
        case SQLITE_NOTADB:
            return "it is no database";
        default:
            return {};
    }
}

}  // namespace

std::string failureText(const std::string& file, const SQLite::Exception& failure) {
    const std::string words = meaning(failure);
    if (words.empty()) return file + ": " + failure.what();
    return file + ": " + words + " (" + failure.what() + ")";
}

bool tellsOfDamage(const SQLite::Exception& failure) {
    return codeOf(failure) == SQLITE_CORRUPT;
}

bool tellsOfAnotherFormat(const SQLite::Exception& failure) {
    return codeOf(failure) == SQLITE_NOTADB;
}

bool isAboutTheRow(const SQLite::Exception& failure) {
    const int code = codeOf(failure);
    return code == SQLITE_CONSTRAINT || code == SQLITE_TOOBIG || code == SQLITE_MISMATCH;
}

bool isAboutUniqueness(const SQLite::Exception& failure) {
    return codeOf(failure) == SQLITE_CONSTRAINT && failure.getExtendedErrorCode() == SQLITE_CONSTRAINT_UNIQUE;
}

}  // namespace vigil
