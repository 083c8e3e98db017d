#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "platform/InterfaceFiles.hpp"

namespace vigil {

/// The longest interface file that is read; against a file that fills the memory.
inline constexpr std::size_t kLongestInterfaceFile = std::size_t{1} << 20;

/// Reads `.ui` files, the XML form of Qt Designer, into models, also where there is no window: QLineEdit
/// becomes a `TextField`, QComboBox a `PopUpButton` with its items, QCheckBox and QPushButton a `Button`, the
/// custom widgets RuleEditor and PredicateEditor the models of those names; any other widget is looked
/// through for such controls. The objects come in the file's order.
///
/// Three dynamic properties of a widget name entries of the owner's table: `outlet`, the place that the
/// control is put into; `bind`, a property that the control shows and sets (a field its text, a pop-up button
/// the title that is selected, a button its state, a condition editor its condition, set by edits alone), in
/// both directions for as long as the control lives; `action`, which the window's view performs. A name that
/// the table lacks, on whatever widget, makes the whole load fail, as does a property of another kind than
/// the control shows; nothing is then connected. An owner that is no plug-in outlives the controls that are
/// bound to it. What another thread sets reaches a bound control through the main queue of the world that was
/// open during the load. What the owner throws from `awakeFromNib` is thrown on, with all connected. Main
/// thread.
class InterfaceFile final : public InterfaceFiles {
  public:
    std::optional<std::vector<std::shared_ptr<Object>>> instantiate(const Bundle& bundle,
                                                                    const std::string& name,
                                                                    InterfaceOwner* owner) override;

    /// Why the last load gave nothing, with the file; empty when it gave something.
    const std::string& lastError() const { return m_lastError; }

  private:
    std::string m_lastError;
};

}  // namespace vigil
