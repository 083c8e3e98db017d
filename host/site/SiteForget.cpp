#include "host/site/SiteForget.hpp"

#include <string>

namespace vigil {

const char* const kHighestId =
    "SELECT max((SELECT value FROM meta WHERE name = 'highestId'), "
    "ifnull((SELECT max(id) FROM fires), 0), ifnull((SELECT max(id) FROM effects), 0))";

bool hasOlder(SQLite::Database& database, Date before) {
    SQLite::Statement query(database,
                            "SELECT EXISTS (SELECT 1 FROM effects WHERE queued < ?1 AND state = 'ended') "
                            "OR EXISTS (SELECT 1 FROM fires WHERE time < ?1 AND completed = 1)");
    query.bind(1, before.secondsSinceReference());
    return query.executeStep() && query.getColumn(0).getInt() != 0;
}

std::size_t forgetOlder(SQLite::Database& database, Date before, int most) {
    // An id that went is not given again.
    database.exec(std::string("UPDATE meta SET value = (") + kHighestId + ") WHERE name = 'highestId'");
    std::size_t gone = 0;
    for (const char* which :
         {"DELETE FROM effects WHERE id IN (SELECT id FROM effects WHERE queued < ? AND state = 'ended' "
          "ORDER BY queued LIMIT ?)",
          "DELETE FROM fires WHERE id IN (SELECT id FROM fires WHERE time < ? AND completed = 1 "
          "ORDER BY time LIMIT ?)"}) {
        SQLite::Statement remove(database, which);
        remove.bind(1, before.secondsSinceReference());
        remove.bind(2, most);
        gone += static_cast<std::size_t>(remove.exec());
    }
    return gone;
}

}  // namespace vigil
