#pragma once

#include <string>

#include "platform/Export.hpp"
#include "platform/Object.hpp"
#include "platform/Property.hpp"

namespace vigil {

/// A button as a model: its title and, for one that stays in, whether it is on. What a click does besides is
/// the view's to perform. Main thread, except that reading is safe from any thread.
class VIGIL_KIT Button : public Object {
  public:
    explicit Button(std::string title = {});
    std::string className() const override;

    const std::string& title() const { return m_title; }
    bool state() const { return m_state.get(); }
    void setState(bool on) { m_state.set(on); }
    Property<bool>& stateProperty() { return m_state; }

  private:
    const std::string m_title;
    Property<bool> m_state{false};
};

}  // namespace vigil
