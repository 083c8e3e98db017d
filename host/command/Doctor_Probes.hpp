#pragma once

#include <optional>
#include <string>

#include "host/command/Doctor.hpp"

// One probe each. Paths of the system are looked at below `root`.

namespace vigil {

Diagnosis displayProbe(const DoctorSurroundings& here);
Diagnosis soundProbe(const DoctorSurroundings& here);
Diagnosis speechProbe(const DoctorSurroundings& here);
Diagnosis mailProbe(const DoctorSurroundings& here);
Diagnosis smsProbe(const DoctorSurroundings& here);
Diagnosis siteFolderProbe(const DoctorSurroundings& here);
Diagnosis scriptsFolderProbe(const DoctorSurroundings& here);
Diagnosis settingsProbe(const DoctorSurroundings& here);
Diagnosis secretsProbe(const DoctorSurroundings& here);
Diagnosis timeZoneProbe(const DoctorSurroundings& here);
Diagnosis moduleProbe(const DoctorSurroundings& here);
Diagnosis helperProbe(const DoctorSurroundings& here);
Diagnosis shellProbe(const DoctorSurroundings& here);
Diagnosis scriptRowsProbe(const DoctorSurroundings& here);

/// Whether it is a file that this process may execute.
bool isProgram(const std::string& path);

/// Where a program is: a path that is one, or a name that is looked up in PATH. Without `root`.
std::optional<std::string> programPath(const DoctorSurroundings& here, const std::string& name);

}  // namespace vigil
