#pragma once

#include <string_view>

// The automation scripts for mail, byte for byte: whoever runs them may know them by their text. What looks
// like a slip in them (the quote behind "activate", the "end if" on the line before it, blanks at the ends of
// lines) is kept.

namespace vigil {

/// Is meant to bring the mail application up with a viewer.
extern const std::string_view kMailViewerScript;
/// Its placeholders: subject, content, sender, address.
extern const std::string_view kMailMessageFormat;
/// Follows the filled format directly and ends its three blocks.
extern const std::string_view kMailClosing;

}  // namespace vigil
