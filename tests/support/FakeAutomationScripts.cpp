#include "tests/support/FakeAutomationScripts.hpp"

namespace vigil {

Result<Done> FakeAutomationScripts::run(const std::string& source) {
    m_journal.add("automate");
    sources.push_back(source);
    if (failure) return *failure;
    return Done{};
}

}  // namespace vigil
