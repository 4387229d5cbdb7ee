// Looking up elements, attributes and the document's error.
#include <cstring>

#include "xml/memory.h"

namespace onu::xml {

XmlNode* child(const XmlNode* node, const char* name) {
  if (node == nullptr || name == nullptr) {
    return nullptr;
  }
  XmlNode* found = node->child;
  while (found != nullptr && std::strcmp(found->name, name) != 0) {
    found = found->sibling;
  }
  return found;
}

XmlNode* idx(XmlNode* node, int n) {
  while (node != nullptr && n-- > 0) {
    node = node->next;
  }
  return node;
}

const char* attr(const XmlNode* node, const char* name) {
  if (node == nullptr || name == nullptr) {
    return nullptr;
  }
  for (const char** pair = node->attr; *pair != nullptr; pair += 2) {
    if (std::strcmp(pair[0], name) == 0) {
      return pair[1];
    }
  }
  if (node->name == nullptr) {
    return nullptr;
  }
  for (const char*** list = internal::rootOf(node)->attr; *list != nullptr; ++list) {
    const char** text = *list;
    if (std::strcmp(*text++, node->name) != 0) {
      continue;
    }
    for (; *text != nullptr; text += 3) {
      if (std::strcmp(text[0], name) == 0) {
        return text[1];
      }
    }
  }
  return nullptr;
}

XmlNode* get(XmlNode* node, std::initializer_list<Step> steps) {
  for (const Step& step : steps) {
    if (step.name == nullptr || step.name[0] == '\0') {
      break;
    }
    node = child(node, step.name);
    if (step.index < 0) {
      break;
    }
    node = idx(node, step.index);
  }
  return node;
}

const char* error(const XmlNode* node) {
  return node == nullptr ? "" : internal::rootOf(node)->err;
}

}  // namespace onu::xml
