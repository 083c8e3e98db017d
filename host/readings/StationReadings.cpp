#include "host/readings/StationReadings.hpp"
