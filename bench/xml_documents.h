// Settings files of three sizes and the five shapes whose cost must grow linearly.
#pragma once

#include <cstddef>
#include <string>

// A typical settings file of about `bytes`: XML declaration, comments, indented groups of short
// texts, ports with attributes.
std::string settingsFile(size_t bytes);

// Documents of `n` parts: children of one name, children each of its own name, one in the other,
// text pieces between children, attributes of one element.
std::string sameNames(size_t n);
std::string otherNames(size_t n);
std::string nested(size_t n);
std::string textPieces(size_t n);
std::string manyAttributes(size_t n);

// Long names that differ in the highest bits of their words alone, as names do which are made to
// collide.
std::string nearNames(size_t n);
