#include "host/kit/ReplayWorld.hpp"

#include <utility>

#include "host/services/Mailbox.hpp"
#include "host/services/SystemClock.hpp"

namespace vigil {

ReplayWorld::ReplayWorld(QRVLog& log, InterfaceFiles& interfaceFiles, std::string scriptsFolder, Zone zone)
    : m_log(log),
      m_interfaceFiles(interfaceFiles),
      m_scriptsFolder(std::move(scriptsFolder)),
      m_zone(zone ? std::move(zone) : Zone(utcTime)) {}

void ReplayWorld::turnTo(Date date) {
    m_now = date;
    while (m_queue.runOne()) {
    }
}

void ReplayWorld::Queue::dispatchSync(const Task& task) {
    const auto times = std::exchange(m_next, std::nullopt);
    if (times) m_world.m_now = times->begins;
    task();
    if (times) m_world.m_now = times->ends;
}

bool ReplayWorld::Queue::dispatchAsync(Task task) {
    if (m_posted.size() >= kPostedTasks) return false;
    m_posted.push_back(std::move(task));
    return true;
}

bool ReplayWorld::Queue::runOne() {
    if (m_posted.empty()) return false;
    const Task task = std::move(m_posted.front());
    m_posted.pop_front();
    task();
    return true;
}

void ReplayWorld::Loop::runUntil(Date date) {
    if (m_world.m_queue.runOne()) return;
    if (m_world.m_now < date) m_world.m_now = date;
}

}  // namespace vigil
