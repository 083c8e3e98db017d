#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "platform/InterfaceFiles.hpp"

namespace vigil {

/// The longest interface file that is read; against a file that fills the memory.
inline constexpr std::size_t kLongestInterfaceFile = std::size_t{1} << 20;

/// Reads `.ui` files, the XML form of Qt Designer, into models, also where there is no window: QLineEdit
/// becomes a `TextField`, QComboBox a `PopUpButton` with its items; any other widget is looked through for
/// such controls. The objects come in the file's order.
///
/// Three dynamic properties of a widget name entries of the owner's table: `outlet`, the place that the
/// control is put into; `bind`, a text that the control shows and sets (its text, or the title that is
/// selected), in both directions for as long as the control lives; `action`, which the window's view
/// performs. A name that the table lacks, on whatever widget, makes the whole load fail; nothing is then
/// connected. An owner that is no plug-in outlives the controls that are bound to it. What another thread
/// sets reaches a bound control through the main queue of the world that was open during the load. Main
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
