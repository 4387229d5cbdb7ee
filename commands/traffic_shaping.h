// Commands 26 to 28 and 30: scheduling, queue weights and sizes, limit of storms.
#pragma once

#include "frontend/web_request.h"

namespace onu {

void sendScheduling(WebRequest& request);
void storeScheduling(WebRequest& request);

void sendQueueWeights(WebRequest& request);
void storeQueueWeight(WebRequest& request);

void sendQueueSizes(WebRequest& request);
void storeQueueSize(WebRequest& request);

void sendStormLimit(WebRequest& request);
void storeStormLimit(WebRequest& request);

}  // namespace onu
