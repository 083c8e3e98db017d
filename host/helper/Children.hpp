#pragma once

#include <vector>

#include <sys/types.h>

namespace vigil {

/// The processes whose parent this one is, ended ones included. Of a subreaper these are also the orphans of
/// all that it started.
std::vector<pid_t> childProcesses();

/// The same from a walk over all processes, for a Linux that does not list children.
std::vector<pid_t> childProcessesByWalk();

/// Takes the ended children away, `but` excepted: as long as it has not been waited for, its number and that
/// of its group are given to nobody else. Gives the children that are left, `but` excepted.
std::vector<pid_t> reapOthers(pid_t but);

}  // namespace vigil
