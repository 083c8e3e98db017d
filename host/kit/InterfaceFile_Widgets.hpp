#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Result.hpp"

namespace vigil {

/// What an interface file says of one widget, as far as models need it.
struct InterfaceWidget {
    std::string kind;  ///< "QLineEdit"
    std::string name;
    std::string text;                 ///< of a line or a button
    bool checked = false;             ///< of a button
    std::vector<std::string> items;   ///< of a combo box
    std::optional<int> currentIndex;  ///< of a combo box, where the file says it
    std::optional<std::string> bind, action, outlet;
};

/// Every widget of the file, in its order. An error tells the byte where the text is no XML. Document types,
/// entities of a file's own and other files are passed over. Any thread.
Result<std::vector<InterfaceWidget>> parseInterfaceFile(std::string_view text);

}  // namespace vigil
