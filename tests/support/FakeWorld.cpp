#include "tests/support/FakeWorld.hpp"

#include <ctime>
#include <utility>

#include "platform/Controls.hpp"

namespace vigil {

bool FakePlugInHost::admits(const std::string& className) {
    asked.push_back("admits " + className);
    return admitsAll;
}

std::shared_ptr<Object> FakePlugInHost::startResult(const Object& plugIn) {
    asked.push_back("start " + plugIn.className());
    return onStart;
}

std::shared_ptr<Object> FakePlugInHost::stopResult(const Object& plugIn) {
    asked.push_back("stop " + plugIn.className());
    return onStop;
}

FakeInterfaceFiles::FakeInterfaceFiles() {
    set("TextField",
        [](InterfaceOwner*) { return std::vector<std::shared_ptr<Object>>{std::make_shared<TextField>()}; });
    set("PopUpButton", [](InterfaceOwner*) {
        return std::vector<std::shared_ptr<Object>>{std::make_shared<PopUpButton>()};
    });
}

void FakeInterfaceFiles::set(const std::string& name, Maker maker) {
    m_makers[name] = std::move(maker);
}

void FakeInterfaceFiles::remove(const std::string& name) {
    m_makers.erase(name);
}

std::optional<std::vector<std::shared_ptr<Object>>> FakeInterfaceFiles::instantiate(const Bundle&,
                                                                                    const std::string& name,
                                                                                    InterfaceOwner* owner) {
    m_asked.push_back(name);
    const auto found = m_makers.find(name);
    if (found == m_makers.end()) return std::nullopt;
    return found->second(owner);
}

void FakeRunLoop::runUntil(Date date) {
    runs.push_back(date);
    if (onRun) onRun(date);
    if (m_world.mainQueue().runPosted() > 0) return;
    if (m_world.now() < date) m_world.setNow(date);
    m_world.speech().endWhatIsDue();
}

FakeWorld::FakeWorld(FakeMainQueue::Form queue) : m_queue(queue) {}

Date FakeWorld::now() {
    const std::lock_guard lock(m_mutex);
    ++m_clockReads;
    return m_now;
}

LocalTime FakeWorld::localTime(Date date) {
    const auto seconds = static_cast<std::time_t>(date.secondsSinceUnix()) + m_zone;
    std::tm parts{};
    gmtime_r(&seconds, &parts);
    return {parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec};
}

void FakeWorld::setNow(Date date) {
    const std::lock_guard lock(m_mutex);
    m_now = date;
}

void FakeWorld::advance(double seconds) {
    const std::lock_guard lock(m_mutex);
    m_now = m_now.plus(seconds);
}

int FakeWorld::clockReads() const {
    const std::lock_guard lock(m_mutex);
    return m_clockReads;
}

}  // namespace vigil
