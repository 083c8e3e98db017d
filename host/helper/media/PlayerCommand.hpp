#pragma once

namespace vigil {

/// `vigil-helper player`: plays, speaks and looks at sounds as the host on the other end of the socket asks,
/// until that end closes. Gives the exit status.
int runPlayerCommand(int socket);

}  // namespace vigil
