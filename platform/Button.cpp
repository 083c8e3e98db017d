#include "platform/Button.hpp"

#include <utility>

namespace vigil {

Button::Button(std::string title) : m_title(std::move(title)) {}

std::string Button::className() const {
    return "Button";
}

}  // namespace vigil
