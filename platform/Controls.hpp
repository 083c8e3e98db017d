#pragma once

#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "platform/Export.hpp"
#include "platform/Object.hpp"
#include "platform/Property.hpp"
#include "platform/Value.hpp"

// Controls as models: what they hold, without a pixel. A window shows each through a view that is bound both
// ways. Main thread, except that reading a property is safe from any thread.

namespace vigil {

/// One line of text that the user may edit. Archived under "stringValue".
class VIGIL_KIT TextField : public Object {
  public:
    TextField();
    explicit TextField(std::string text);
    std::string className() const override;

    std::string stringValue() const { return m_stringValue.get(); }
    void setStringValue(std::string text) { m_stringValue.set(std::move(text)); }
    Property<std::string>& stringValueProperty() { return m_stringValue; }

    bool initWithCoder(KeyedDecoder& coder) override;
    void encodeWithCoder(KeyedEncoder& coder) const override;

  private:
    Property<std::string> m_stringValue;
};

/// A choice of one title among several. The first item added becomes the selected one. Archived under "items"
/// and "titleOfSelectedItem".
class VIGIL_KIT PopUpButton : public Object {
  public:
    std::string className() const override;

    /// Titles are unique: adding one that stands already moves it to the end.
    void addItemWithTitle(const std::string& title);
    std::vector<std::string> itemTitles() const { return m_items.get(); }

    /// Nothing when there is no item or none is selected.
    std::optional<std::string> titleOfSelectedItem() const { return m_selected.get(); }
    /// A title that no item bears selects nothing.
    void selectItemWithTitle(const std::string& title);
    Property<std::optional<std::string>>& selectionProperty() { return m_selected; }

    bool initWithCoder(KeyedDecoder& coder) override;
    void encodeWithCoder(KeyedEncoder& coder) const override;

  private:
    Property<std::vector<std::string>> m_items;
    Property<std::optional<std::string>> m_selected;
};

/// An item of a menu; the only kind in use is the separator.
class VIGIL_KIT MenuItem : public Object {
  public:
    static std::shared_ptr<MenuItem> separatorItem();
    std::string className() const override;
    bool isSeparatorItem() const { return true; }
};

/// What a node of the action tree shows for itself: nothing, a text, or a live control. Copies share the
/// control; nobody clones it.
using DisplayValue = std::variant<std::monostate, std::string, std::shared_ptr<TextField>,
                                  std::shared_ptr<PopUpButton>, std::shared_ptr<MenuItem>>;

/// The text of a text field or of a plain text; nothing for any other kind.
VIGIL_KIT std::optional<std::string> stringValue(const DisplayValue& value);
/// The selected title of a pop-up button; nothing for any other kind.
VIGIL_KIT std::optional<std::string> titleOfSelectedItem(const DisplayValue& value);
/// The text itself, a control's own description, or "(null)".
VIGIL_KIT std::string description(const DisplayValue& value);

VIGIL_KIT Value archiveValue(const DisplayValue& value);
/// Nothing at all (not an absent display value) when `value` is no display value.
VIGIL_KIT std::optional<DisplayValue> displayValueFrom(const Value& value);

}  // namespace vigil
