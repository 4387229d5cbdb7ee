// The XML libraries compared, each behind two calls.
#pragma once

#include <cstddef>

// Parses a settings file and releases the tree. `data` may be written to and has a NUL at `length`.
// False when the file was not accepted.
using ParseFunction = bool (*)(char* data, std::size_t length);

struct Peer {
  const char* name;
  ParseFunction parse;
  // Parses, changes the text of the first group's <ip>, writes the file to memory, releases all.
  // NULL for a parser that builds no tree.
  ParseFunction roundTrip;
};

// Ours is the first, the one to beat the second.
extern const Peer kPeers[];
extern const std::size_t kPeerCount;
