// The entities that document types declare, and what their expansion may cost.
#pragma once

#include <string_view>
#include <vector>

#include "xml/names.h"

namespace onu::xml::internal {

struct Entity {
  std::string_view name;  // with its ";", and a NUL behind that
  std::string_view value;
  const char* place;  // of the declaration in the input
  std::size_t order;  // how many declarations of entities stood before it
};

// General or parameter entities in the order declared. Texts are not copied.
class EntityTable {
 public:
  // `sign` starts a reference: '&' or '%'.
  explicit EntityTable(char sign) : sign_(sign) {}

  // nullptr when unknown; valid until the next add. The name includes the ";".
  const Entity* find(std::string_view name) const;

  // Keeps the first declaration of a name. False when there was one.
  bool add(const Entity& entity);

  // The first declaration that made an entity refer to itself, directly or through others; nullptr
  // when none did. Looks at once for the newest's references to itself, and for circles through
  // others whenever all texts are twice as long as the last time or `now`: a look per declaration
  // would cost the square of their length.
  const Entity* firstCircular(bool now);

  const std::vector<Entity>& all() const { return entities_; }

 private:
  bool refersToItself(std::size_t entity) const;
  bool hasCircle(std::size_t count) const;
  std::size_t nextReference(const Entity& from, std::size_t* position) const;

  char sign_;
  std::vector<Entity> entities_;
  NameTable places_;             // in entities_
  std::size_t cost_ = 0;         // of looking for circles in all
  std::size_t checkedCost_ = 0;  // when it was done last
  std::size_t checked_ = 0;      // entities among which there are none
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
