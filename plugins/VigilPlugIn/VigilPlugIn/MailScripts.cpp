#include "plugins/VigilPlugIn/VigilPlugIn/MailScripts.hpp"

namespace vigil {

const std::string_view kMailViewerScript =
    "\n"
    "                            tell application \"Mail\"\n"
    "                            activate\"\n"
    "                            if (count of message viewers) is 0 then\n"
    "                            make new message viewer at front \n"
    "                            set selected mailboxes of message viewer 1 to {inbox}"
    "                            end if\n"
    "                            end tell";

const std::string_view kMailMessageFormat =
    "tell application \"Mail\"\n"
    "                set newMessage to make new outgoing message with properties "
    "{subject:\"%@\", content:\"%@\" & return} \n"
    "                 tell newMessage\n"
    "                set visible to true\n"
    "                set sender to \"%@\"\n"
    "                make new to recipient at end of to recipients with properties {address:\"%@\"}\n"
    "                 tell content\n"
    "        ";

const std::string_view kMailClosing =
    "        end tell\n"
    "        send\n"
    "        end tell\n"
    "        end tell";

}  // namespace vigil
