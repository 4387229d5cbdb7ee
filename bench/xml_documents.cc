#include "bench/xml_documents.h"

namespace {

constexpr const char* kGroups[] = {"lan", "wan",  "pon",      "igmp",
                                   "qos", "voip", "firewall", "account"};

void appendGroup(std::string& file, std::size_t i) {
  std::string name = kGroups[i % 8];
  std::string number = std::to_string(i);
  file += "  <!-- " + name + " settings, instance " + number + " -->\n";
  file += "  <" + name + ">\n";
  file += "    <enable>1</enable>\n";
  file += "    <ip>192.168." + std::to_string(i % 256) + ".1</ip>\n";
  file += "    <netmask>255.255.255.0</netmask>\n";
  file += "    <description>" + name + " of the unit &amp; its ports</description>\n";
  file += "    <vlan>" + std::to_string(100 + i % 3000) + "</vlan>\n";
  file += "    <ports>\n";
  for (std::size_t port = 0; port < 4; ++port) {
    file += "      <port mode=\"1\" speed=\"1000\" duplex=\"full\" pvid=\"" +
            std::to_string(1 + port) + "\">eth_" + std::to_string(port) + "</port>\n";
  }
  file += "    </ports>\n";
  file += "  </" + name + ">\n";
}

std::string inRoot(const std::string& content) { return "<root>" + content + "</root>"; }

}  // namespace

std::string settingsFile(std::size_t bytes) {
  std::string file = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<config>\n";
  for (std::size_t i = 0; file.size() + 600 < bytes; ++i) {
    appendGroup(file, i);
  }
  while (file.size() + 60 < bytes) {
    file += "  <option>value of an option</option>\n";
  }
  return file + "</config>\n";
}

std::string sameNames(std::size_t n) {
  std::string content;
  while (n-- != 0) {
    content += "<entry>value</entry>";
  }
  return inRoot(content);
}

std::string otherNames(std::size_t n) {
  std::string content;
  for (std::size_t i = 1000000; n-- != 0; ++i) {
    std::string name = "e" + std::to_string(i);
    content += "<" + name + ">v</" + name + ">";
  }
  return inRoot(content);
}

std::string nearNames(std::size_t n) {
  constexpr std::size_t kBlocks = 13;  // enough for 8192 names
  std::string content;
  for (std::size_t i = 0; i < n; ++i) {
    std::string name;
    for (std::size_t block = 0; block != kBlocks; ++block) {
      std::string part = "abcdefghijklmnop";
      if ((i >> block & 1) != 0) {
        for (std::size_t byte : {7, 11, 15}) {
          part[byte] = static_cast<char>(part[byte] ^ 0x80);
        }
      }
      name += part;
    }
    content += "<" + name + "/>";
  }
  return inRoot(content);
}

std::string nested(std::size_t n) {
  std::string content;
  for (std::size_t i = 0; i < n; ++i) {
    content += "<entry>";
  }
  for (std::size_t i = 0; i < n; ++i) {
    content += "</entry>";
  }
  return inRoot(content);
}

std::string textPieces(std::size_t n) {
  std::string content;
  while (n-- != 0) {
    content += "some text <b/>";
  }
  return inRoot(content);
}

std::string manyAttributes(std::size_t n) {
  std::string tag = "<root";
  for (std::size_t i = 1000000; n-- != 0; ++i) {
    tag += " a" + std::to_string(i) + "=\"value\"";
  }
  return tag + "></root>";
}

std::string documentTypes(std::size_t n) {
  std::string types;
  for (std::size_t i = 1000000; n-- != 0; ++i) {
    types +=
        "<!DOCTYPE root [<!ENTITY e" + std::to_string(i) + " '&e" + std::to_string(i + 1) + ";'>]>";
  }
  return types + inRoot("");
}
