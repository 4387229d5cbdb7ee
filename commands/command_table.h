#pragma once

#include "frontend/request_process.h"

namespace onu {

// Every command of the unit: the one list of numbers, and of what reads and what changes the unit.
CommandTable commandTable();

}  // namespace onu
