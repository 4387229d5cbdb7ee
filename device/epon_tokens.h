#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace onu {

enum class TokenIndex { kPerFile, kPerLine };

// Splits what the EPON driver prints: of every line that begins with "[" the text after its first
// five characters and before its last one (the closing "]"), at runs of blanks. The `count` texts
// at `tokens`, which must be empty, take one token each; those beyond are dropped.
//
// With kPerLine the n-th token of every line is added to text n. With kPerFile the texts fill in
// the order of the file, and a line goes on with the last token of the line before where no blank
// parts the two.
void splitTokens(std::string_view text, TokenIndex indexing, std::string* tokens,
                 std::size_t count);

}  // namespace onu
