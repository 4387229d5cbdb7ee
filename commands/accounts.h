// Commands 1, 19 and 20: log-in check and passwords of the web pages' two accounts.
#pragma once

#include "frontend/web_request.h"

namespace onu {

void checkLogin(WebRequest& request);

void changeAdminPassword(WebRequest& request);
void changeUserPassword(WebRequest& request);

}  // namespace onu
