#pragma once

#include "frontend/web_request.h"

namespace onu {

// The actions of a setting: 0 reads it, 1 stores it; any other action has no reply.
inline void getOrSet(WebRequest& request, void (*get)(WebRequest&), void (*set)(WebRequest&)) {
  if (request.action == 0) {
    get(request);
  } else if (request.action == 1) {
    set(request);
  }
}

}  // namespace onu
