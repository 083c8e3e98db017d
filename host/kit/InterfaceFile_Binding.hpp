#pragma once

#include <memory>

#include "platform/InterfaceOwner.hpp"
#include "platform/MainQueue.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// The same control, held together with the threads that tie it to a property of the owner: what one of them
/// is set to the other shows; on another thread by way of `queue`, where there is one. An error when the
/// control cannot show what the property holds. Main thread.
Result<std::shared_ptr<Object>> boundControl(const std::shared_ptr<Object>& control, InterfaceOwner& owner,
                                             const InterfaceProperty& property, MainQueue* queue);

}  // namespace vigil
