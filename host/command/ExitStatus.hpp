#pragma once

namespace vigil {

/// How the program ends. Scripts rely on these numbers, so they never change.
enum class ExitStatus : int {
    Yes = 0,          ///< done, or the answer is yes
    No = 1,           ///< done, and the answer is no, or there are findings
    BadInput = 2,     ///< what was typed or read is wrong; the message tells its place
    Environment = 3,  ///< the machine fails: a file, a library, a device, a display
};

}  // namespace vigil
