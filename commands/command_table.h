#pragma once

#include "frontend/request_process.h"

namespace onu {

// Every command of the unit: the one list of numbers, names and processors.
CommandTable commandTable();

}  // namespace onu
