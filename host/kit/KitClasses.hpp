#pragma once

namespace vigil {

/// Makes the classes of the contract and of the conditions known to archives. May be called as often as one
/// likes; archives and the plug-in loader call it by themselves. Any thread.
void registerKitClasses();

}  // namespace vigil
