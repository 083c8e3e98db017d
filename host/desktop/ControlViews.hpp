#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <functional>
#include <memory>

#include "platform/Button.hpp"
#include "platform/Controls.hpp"

// Widgets as views on the models of controls, bound both ways for as long as the widget lives. `edited` is
// called when the user has changed something. Main thread; a model may be set on any.

namespace vigil {

using WhenEdited = std::function<void()>;

void attach(QLineEdit& view, const std::shared_ptr<TextField>& model, WhenEdited edited);
void attach(QComboBox& view, const std::shared_ptr<PopUpButton>& model, WhenEdited edited);
void attach(QCheckBox& view, const std::shared_ptr<vigil::Button>& model, WhenEdited edited);

/// Runs the call on the main thread if the object lives then: at once there, else by an event.
void onMain(QObject& object, std::function<void()> call);
/// Keeps something for as long as the object lives.
void keep(QObject& object, std::shared_ptr<const void> what);

}  // namespace vigil
