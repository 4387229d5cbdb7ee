// The entities a document type declares, and what their expansion may cost.
#pragma once

#include <cstddef>
#include <vector>

#include "xml/name_index.h"

namespace xml::internal {

struct Entity {
  const char* name;  // with its ";"
  size_t nameLength;
  const char* value;
  size_t valueLength;
  const char* place;  // of the declaration in the input
};

// General or parameter entities in the order declared. Texts are not copied.
class EntityTable {
 public:
  // `sign` starts a reference: '&' or '%'.
  explicit EntityTable(char sign) : sign_(sign) {}

  // NULL when unknown; valid until the next add. The length includes the ";".
  const Entity* find(const char* name, size_t nameLength) const;

  // Keeps the first declaration of a name. False when there was one.
  bool add(const Entity& entity);

  // The first declaration that made an entity refer to itself, directly or through others; NULL
  // when none does.
  const Entity* firstCircular() const;

  const std::vector<Entity>& all() const { return entities_; }

 private:
  bool hasCircle(size_t count) const;
  size_t nextReference(const Entity& from, size_t* position) const;

  char sign_;
  std::vector<Entity> entities_;
  NameIndex index_;
};

// All entities a document declares. References past the budget stay as written, so that a small
// file cannot take all memory. The predefined five are not among them: they only shrink a text.
struct Entities {
  EntityTable general{'&'};
  EntityTable parameter{'%'};
  size_t budget = size_t{1} << 20;  // bytes of replacement text left

  // Takes a replacement from the budget. False when it does not fit, and then nothing is left.
  bool spend(size_t bytes) {
    bool fits = bytes <= budget;
    budget = fits ? budget - bytes : 0;
    return fits;
  }
};

// Length of the reference at [p, e), from its sign to its ";"; 0 when there is none.
size_t referenceLength(const char* p, const char* e);

}  // namespace xml::internal
