// Command 8: the EPON counters.
#pragma once

#include "frontend/web_request.h"

namespace onu {

void sendPonCounters(WebRequest& request);

}  // namespace onu
