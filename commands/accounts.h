#pragma once

#include "frontend/web_request.h"

namespace onu {

// The accounts of the web pages, "admin" and "user". Every outcome is a digit as the whole body,
// and the action does not matter.

// Command 1: username, password. "0" accepted, "2" wrong password, "1" settings unreadable. A name
// without an account has the empty password.
void checkLogin(WebRequest& request);

// Commands 19 and 20: pwdold, pwdnew. "0" changed, "1" old password wrong, "2" saving failed.
void changeAdminPassword(WebRequest& request);
void changeUserPassword(WebRequest& request);

}  // namespace onu
