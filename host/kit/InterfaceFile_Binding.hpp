#pragma once

#include <memory>
#include <string>

#include "host/kit/InterfaceFile_Widgets.hpp"
#include "platform/InterfaceOwner.hpp"
#include "platform/MainQueue.hpp"

namespace vigil {

/// The model of a widget, or nothing when the widget has none. Main thread.
std::shared_ptr<Object> makeControl(const InterfaceWidget& widget);

/// The same control, held together with the threads that tie it to a text of the owner: what one of them is
/// set to the other shows; on another thread by way of `queue`, where there is one. `control` comes from
/// `makeControl`. Nothing when the property holds something else than a text.
std::shared_ptr<Object> boundControl(const std::shared_ptr<Object>& control, InterfaceOwner& owner,
                                     const InterfaceProperty& property, MainQueue* queue);

}  // namespace vigil
