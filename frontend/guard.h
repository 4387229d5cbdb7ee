#pragma once

#include <string>

namespace onu {

// Whether nothing in the request text can act on a shell or on the command shell: no control
// character, no line end, none of " ' \ ` $ ; | < > ( ) { } * ? [ ] ! # ~, and no & but between two
// parameters. Values go into command lines as they stand; a build with ONU_GUARD runs no command on
// a text that is not harmless. About four instructions a byte.
bool isHarmless(const std::string& text);

}  // namespace onu
