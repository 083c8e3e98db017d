#include "host/site/HistoryCheck.hpp"

#include <SQLiteCpp/Statement.h>
#include <sqlite3.h>

#include "host/site/HistoryFile.hpp"

namespace vigil {
namespace {

// The check looks so often whether it is given up: every so many steps of the database's machine.
constexpr int kSteps = 10000;

int isGivenUp(void* flag) {
    return static_cast<std::atomic<bool>*>(flag)->load() ? 1 : 0;
}

}  // namespace

HistoryCheck::HistoryCheck(const std::string& file) : m_thread([this, file] { run(file); }) {}

HistoryCheck::~HistoryCheck() {
    m_givenUp = true;
    m_thread.join();
}

void HistoryCheck::run(const std::string& file) {
    try {
        const auto database = openHistoryForReading(file);
        sqlite3_progress_handler(database->getHandle(), kSteps, isGivenUp, &m_givenUp);
        m_damaged = database->execAndGet("PRAGMA quick_check(1)").getString() != "ok";
    } catch (const SQLite::Exception& what) {
        // Given up, or out of reach: then nothing is known, and nothing is done.
        m_damaged = isDamage(what);
    }
    m_over = true;
}

}  // namespace vigil
