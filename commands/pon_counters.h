#pragma once

#include "frontend/web_request.h"

namespace onu {

// Command 8: the driver's twenty EPON counters as it prints them, each an empty text when it cannot
// be read. Takes no parameters and has no failure reply.
void getPonCounters(WebRequest& request);

}  // namespace onu
