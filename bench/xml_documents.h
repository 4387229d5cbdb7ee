// Settings files of any size and the shapes whose cost must grow linearly.
#pragma once

#include <cstddef>
#include <string>

// A typical settings file of about `bytes`: XML declaration, comments, indented groups of short
// texts, ports with attributes.
std::string settingsFile(std::size_t bytes);

// Documents of `n` parts: children of one name, children each of its own name, one in the other,
// text pieces between children, attributes of one element.
std::string sameNames(std::size_t n);
std::string otherNames(std::size_t n);
std::string nested(std::size_t n);
std::string textPieces(std::size_t n);
std::string manyAttributes(std::size_t n);

// As many document types, each with an entity that refers to the next one's.
std::string documentTypes(std::size_t n);

// Long names that differ in the highest bits of their words alone, as names do which are made to
// collide.
std::string nearNames(std::size_t n);
