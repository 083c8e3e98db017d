#pragma once

#include <string>

#include "host/command/Doctor.hpp"

// One probe each. Paths of the system are looked at below `root`.

namespace vigil {

Diagnosis displayProbe(const DoctorSurroundings& here);
Diagnosis soundProbe(const DoctorSurroundings& here);
Diagnosis speechProbe(const DoctorSurroundings& here);
Diagnosis siteFolderProbe(const DoctorSurroundings& here);
Diagnosis scriptsFolderProbe(const DoctorSurroundings& here);
Diagnosis timeZoneProbe(const DoctorSurroundings& here);
Diagnosis moduleProbe(const DoctorSurroundings& here);
Diagnosis helperProbe(const DoctorSurroundings& here);
Diagnosis shellProbe(const DoctorSurroundings& here);
Diagnosis scriptRowsProbe(const DoctorSurroundings& here);

/// Whether it is a file that this process may execute.
bool isProgram(const std::string& path);

}  // namespace vigil
