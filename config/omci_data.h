#pragma once

#include <string>

#include "config/paths.h"

namespace onu {

struct OmciLoid {
  std::string loid;
  std::string password;
};

// The OMCI settings file. Every call reads it anew and a setter writes it back as a whole. All
// return 0, or -1 when the file cannot be opened or the element of the value is missing. Writing is
// not checked.
class OmciData : public Accessor<OmciData, kOmciSettingsPath> {
 public:
  // The identity that the line terminal authenticates. A missing attribute leaves its field as it
  // is.
  int getOmciLoid(OmciLoid& info) const;
  // Writes even when nothing changes.
  int setOmciLoid(const OmciLoid& info) const;

  // Whether the Ethernet ports are kept apart, "true" or "false". 0 with `enabled` untouched when
  // the element does not say.
  int getPortIsolation(std::string& enabled) const;
  // Writes only when the value has changed. -1 also when the element does not say what it was.
  int setPortIsolation(const std::string& enabled) const;
};

}  // namespace onu
