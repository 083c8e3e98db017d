#pragma once

#include <memory>
#include <string>

#include "conditions/ConditionPredicate.hpp"
#include "host/kit/InterfaceFile.hpp"
#include "host/kit/ReplayWorld.hpp"
#include "host_contract/QRVPlugIn.hpp"
#include "host_contract/Readings.hpp"
#include "platform/InterfaceOwner.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// What a monitor says of its condition.
struct Explanation {
    /// "range": a piece of the condition's text could not be cut; "parse": a piece was no condition.
    enum class Failure { None, Range, Parse };
    std::string status;  ///< as far as it was built
    Failure failure = Failure::None;
};

/// "range" or "parse"; nothing for no failure.
const char* failureName(Explanation::Failure failure);

/// Asks a monitor of the module, by the names in its interface table, which comparisons of a condition hold.
/// One thread.
class Explainer {
  public:
    /// An error when the module cannot be loaded or its monitor does not explain.
    static Result<std::unique_ptr<Explainer>> make(const std::string& programFolder);
    ~Explainer();

    /// For a station whose current readings are these, enumerated in the order of their table.
    Explanation explain(const std::shared_ptr<ConditionPredicate>& condition,
                        const std::shared_ptr<const Readings>& readings);

  private:
    class SilentLog;
    class Station;

    Explainer();
    Result<Done> connect();

    std::unique_ptr<SilentLog> m_log;
    InterfaceFile m_interfaceFiles;
    ReplayWorld m_world;
    std::shared_ptr<Station> m_station;
    std::shared_ptr<QRVPlugIn> m_monitor;
    InterfaceOwner* m_owner = nullptr;
    const InterfaceProperty* m_predicate = nullptr;
    const InterfaceAction* m_explain = nullptr;
};

}  // namespace vigil
