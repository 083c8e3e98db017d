#include "platform/CallNote.hpp"

#include <utility>

namespace vigil {
namespace {

// The scopes stand on their threads' stacks; the thread keeps only the way to the innermost one.
thread_local const CallNote::Scope* t_innermost = nullptr;

}  // namespace

std::shared_ptr<const Object> CallNote::current() {
    return t_innermost ? t_innermost->m_observer : nullptr;
}

CallNote::Scope::Scope(std::shared_ptr<const Object> observer)
    : m_observer(std::move(observer)), m_before(t_innermost) {
    t_innermost = this;
}

CallNote::Scope::~Scope() {
    t_innermost = m_before;
}

}  // namespace vigil
