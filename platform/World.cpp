#include "platform/World.hpp"

namespace vigil {
namespace {

thread_local World* t_current = nullptr;

}  // namespace

World::World() = default;
World::~World() = default;

World* World::current() {
    return t_current;
}

World::Scope::Scope(World& world) : m_before(t_current) {
    t_current = &world;
}

World::Scope::~Scope() {
    t_current = m_before;
}

}  // namespace vigil
