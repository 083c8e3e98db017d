#include <utility>

#include "host/site/HistoryFile.hpp"
#include "host/site/HistoryWriter_Thread.hpp"

// How the writer comes by its file: opened, checked, and set aside when it is damaged.

namespace vigil {

Result<Done> HistoryWriter::Thread::open() {
    try {
        openStore();
        return Done{};
    } catch (const SQLite::Exception& what) {
        m_store.reset();
        const auto obstacle = obstacleIn(what);
        if (!obstacle) return Error{"cannot open the history " + file + ": " + what.what()};
        if (!beginAnew(*obstacle, what.what())) return Error{"cannot begin the history " + file + " anew"};
        return Done{};
    }
}

void HistoryWriter::Thread::openStore() {
    auto database = openHistoryForWriting(file);
    claimHistory(*database, m_identity);
    auto store = std::make_unique<HistoryStore>(std::move(database));
    if (!m_check && !m_failing && !store->wasClosed()) {
        store->endAbandonedWatches();
        m_check = std::make_unique<HistoryCheck>(file);
    }
    m_store = std::move(store);
}

void HistoryWriter::Thread::lookAtCheck() {
    if (!m_check || !m_check->isOver()) return;
    const bool damaged = m_check->foundDamage();
    m_check.reset();
    if (!damaged) return;
    m_store.reset();
    beginAnew(HistoryObstacle::Damage, "its check found damage");
}

bool HistoryWriter::Thread::beginAnew(HistoryObstacle obstacle, const std::string& why) {
    m_check.reset();
    m_store.reset();
    const std::string state = obstacle == HistoryObstacle::Damage ? "is damaged (" + why + ")" : why;
    const auto aside = setHistoryAside(file, obstacle);
    if (!aside) {
        tell("The history " + file + " " + state + " and stays so: " + aside.error().message + ".");
        return false;
    }
    try {
        openStore();
        insert(m_context.events());
        tell("The history " + file + " " + state + "; it is now " + aside.value() +
             ", and a new one is begun.");
        return true;
    } catch (const SQLite::Exception& what) {
        m_store.reset();
        tell("The history " + file + " is set aside as " + aside.value() +
             ", and no new one can be begun: " + what.what() + ".");
        return false;
    }
}

}  // namespace vigil
