#pragma once

#include "frontend/web_request.h"

namespace onu {

// The actions of a setting: 0 reads it, 1 stores it; any other action has no reply.
template <typename Get, typename Set>
void getOrSet(WebRequest& request, const Get& get, const Set& set) {
  if (request.action == 0) {
    get(request);
  } else if (request.action == 1) {
    set(request);
  }
}

}  // namespace onu
