#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/Bundle.hpp"
#include "platform/Export.hpp"
#include "platform/Object.hpp"

namespace vigil {

class InterfaceOwner;

/// Makes the controls that an interface file describes. Main thread.
class VIGIL_KIT InterfaceFiles {
  public:
    virtual ~InterfaceFiles();
    /// Instantiates the file `name` (without ending) of the bundle's resources: the top-level objects in the
    /// file's order, new ones on every call. With an owner, the file's bindings, actions and outlets are
    /// connected to it and its `awakeFromNib` is called last. Nothing when the file is missing or cannot be
    /// understood.
    virtual std::optional<std::vector<std::shared_ptr<Object>>> instantiate(const Bundle& bundle,
                                                                            const std::string& name,
                                                                            InterfaceOwner* owner) = 0;
};

}  // namespace vigil
