#pragma once

#include "frontend/web_request.h"

namespace onu {

// Rates and queues of the traffic manager. Action 0 reads, 1 stores; any other action has no reply.
// A failed read of queues replies the bare word "error", a failed store "1" and a good one "0".

// Command 26, algo_mode: the scheduling method of all transmit queues. Storing always replies "0".
void configureScheduling(WebRequest& request);

// Command 27. Reads the weights queue0 to queue7; stores usr_pri as the weight of queue que_id.
void configureQueueWeights(WebRequest& request);

// Command 28, voq_dir: "0" the receive queues, anything else the transmit queues. Reads size0 to
// size7; stores voq_thresh as the size of queue voq_id.
void configureQueueSizes(WebRequest& request);

// Command 30. Reads an array of one object with bc_mode and rate, or "[]". bs (0 limits queue 1,
// 1 queue 7, 2 the whole interface, 3 nothing) and bs_thresh, the rate, are applied to the
// traffic manager first and then stored, other modes only stored.
void configureStormLimit(WebRequest& request);

}  // namespace onu
