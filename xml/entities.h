// The entities that document types declare, and what their expansion may cost.
#pragma once

#include <string_view>
#include <vector>

#include "xml/names.h"

namespace onu::xml::internal {

struct Entity {
  std::string_view name;  // with its ";", and a NUL behind that
  std::string_view value;
  std::size_t seenFor;  // the newest entity for which it was looked at
};

// General or parameter entities in the order declared. Texts are not copied.
class EntityTable {
 public:
  // `sign` starts a reference: '&' or '%'.
  explicit EntityTable(char sign) : sign_(sign) {}

  // nullptr when unknown; valid until the next add. The name includes the ";".
  const Entity* find(std::string_view name) const;

  // Keeps the first declaration of a name. False when there was one.
  bool add(std::string_view name, std::string_view value);

  // Whether the newest refers to itself, directly or through others: to be asked once for each. A
  // byte declared pays for looking at 64, so that the cost stays linear; only in a file made for it
  // does that not do, and then the circle is no error, but ends with the budget of its expansion.
  bool isNewestCircular();

  const std::vector<Entity>& all() const { return entities_; }

 private:
  char sign_;
  std::vector<Entity> entities_;
  NameTable places_;       // in entities_
  NameTable awaited_;      // names that were referred to before they were declared
  std::size_t looks_ = 0;  // bytes that may be looked at yet
};

// All entities a document declares. References past the budget stay as written, so that a small
// file cannot take all memory. The predefined five are not among them: they only shrink a text.
struct Entities {
  EntityTable general{'&'};
  EntityTable parameter{'%'};
  std::size_t budget = std::size_t{1} << 20;  // bytes of replacement text left

  // Takes a replacement from the budget. False when it does not fit, and then nothing is left.
  bool spend(std::size_t bytes) {
    const bool fits = bytes <= budget;
    budget = fits ? budget - bytes : 0;
    return fits;
  }
};

// Length of the reference at [p, e), from its sign to its ";"; 0 when there is none.
std::size_t referenceLength(const char* p, const char* e);

}  // namespace onu::xml::internal
