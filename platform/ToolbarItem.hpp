#pragma once

#include <memory>
#include <string>

#include "platform/Export.hpp"
#include "platform/Image.hpp"
#include "platform/InterfaceOwner.hpp"
#include "platform/Object.hpp"

namespace vigil {

/// A button of a window's toolbar, as a model: what it shows, and what a press asks of whom. Main thread.
class VIGIL_KIT ToolbarItem : public Object {
  public:
    /// (Keyword form: initWithItemIdentifier:)
    explicit ToolbarItem(std::string itemIdentifier);
    std::string className() const override;

    /// Tells kinds of items apart; not shown.
    const std::string& itemIdentifier() const { return m_itemIdentifier; }
    const std::string& label() const { return m_label; }
    void setLabel(std::string label) { m_label = std::move(label); }
    /// May be absent.
    const std::shared_ptr<Image>& image() const { return m_image; }
    void setImage(std::shared_ptr<Image> image) { m_image = std::move(image); }

    /// Held weakly; nothing when it has gone.
    std::shared_ptr<InterfaceOwner> target() const { return m_target.lock(); }
    void setTarget(const std::shared_ptr<InterfaceOwner>& target) { m_target = target; }
    /// The name of an action of the target's table.
    const std::string& action() const { return m_action; }
    void setAction(std::string action) { m_action = std::move(action); }

    /// What a press does: asks the target for the action, with this item as the sender. False when there is
    /// no target or it has no such action.
    bool press();

  private:
    const std::string m_itemIdentifier;
    std::string m_label;
    std::shared_ptr<Image> m_image;
    std::weak_ptr<InterfaceOwner> m_target;
    std::string m_action;
};

}  // namespace vigil
