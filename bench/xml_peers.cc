#include "bench/xml_peers.h"

#include <expat.h>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <mxml.h>
#include <tinyxml2.h>

#include <cstdlib>
#include <cstring>
#include <iterator>
#include <pugixml.hpp>
#include <rapidxml/rapidxml.hpp>
#include <string>

// The printer of RapidXML calls functions it declares later.
namespace rapidxml::internal {
template <class Out, class Ch>
Out print_children(Out, const xml_node<Ch>*, int, int);
template <class Out, class Ch>
Out print_attributes(Out, const xml_node<Ch>*, int);
template <class Out, class Ch>
Out print_data_node(Out, const xml_node<Ch>*, int, int);
template <class Out, class Ch>
Out print_cdata_node(Out, const xml_node<Ch>*, int, int);
template <class Out, class Ch>
Out print_element_node(Out, const xml_node<Ch>*, int, int);
template <class Out, class Ch>
Out print_declaration_node(Out, const xml_node<Ch>*, int, int);
template <class Out, class Ch>
Out print_comment_node(Out, const xml_node<Ch>*, int, int);
template <class Out, class Ch>
Out print_doctype_node(Out, const xml_node<Ch>*, int, int);
template <class Out, class Ch>
Out print_pi_node(Out, const xml_node<Ch>*, int, int);
}  // namespace rapidxml::internal
#include <rapidxml/rapidxml_print.hpp>

#include "xml/document.h"

namespace {

constexpr char kNewText[] = "10.20.30.40";

bool parseOurs(char* data, std::size_t length) {
  onu::xml::Document document(onu::xml::parseStr(data, length));
  return document->err[0] == '\0';
}

bool tripOurs(char* data, std::size_t length) {
  onu::xml::Document document(onu::xml::parseStr(data, length));
  onu::xml::setText(onu::xml::child(document->xml.child, "ip"), kNewText);
  std::size_t written = 0;
  char* text = onu::xml::toXml(document.node(), &written);
  std::free(text);
  return written > length / 2;
}

constexpr unsigned kPugiFlags = pugi::parse_default | pugi::parse_ws_pcdata;

bool parsePugi(char* data, std::size_t length) {
  pugi::xml_document document;
  return document.load_buffer_inplace(data, length, kPugiFlags, pugi::encoding_utf8);
}

struct PugiWriter : pugi::xml_writer {
  std::string text;
  void write(const void* data, std::size_t size) override {
    text.append(static_cast<const char*>(data), size);
  }
};

bool tripPugi(char* data, std::size_t length) {
  pugi::xml_document document;
  if (!document.load_buffer_inplace(data, length, kPugiFlags, pugi::encoding_utf8)) {
    return false;
  }
  for (pugi::xml_node group : document.document_element().children()) {
    if (group.type() != pugi::node_element) {
      continue;
    }
    group.child("ip").text().set(kNewText);
    break;
  }
  PugiWriter writer;
  writer.text.reserve(length + length / 16 + 1024);
  document.save(writer, "", pugi::format_raw | pugi::format_no_declaration, pugi::encoding_utf8);
  return writer.text.size() > length / 2;
}

bool parseRapid(char* data, std::size_t) {
  rapidxml::xml_document<> document;
  document.parse<0>(data);
  return document.first_node() != nullptr;
}

bool tripRapid(char* data, std::size_t length) {
  rapidxml::xml_document<> document;
  document.parse<0>(data);
  rapidxml::xml_node<>* ip = document.first_node("config")->first_node()->first_node("ip");
  ip->first_node()->value(kNewText);
  ip->value(kNewText);
  std::string text;
  text.reserve(length + length / 16 + 1024);
  rapidxml::print(std::back_inserter(text), document, rapidxml::print_no_indenting);
  return text.size() > length / 2;
}

bool parseTiny(char* data, std::size_t length) {
  tinyxml2::XMLDocument document(true, tinyxml2::PRESERVE_WHITESPACE);
  return document.Parse(data, length) == tinyxml2::XML_SUCCESS;
}

bool tripTiny(char* data, std::size_t length) {
  tinyxml2::XMLDocument document(true, tinyxml2::PRESERVE_WHITESPACE);
  if (document.Parse(data, length) != tinyxml2::XML_SUCCESS) {
    return false;
  }
  document.RootElement()->FirstChildElement()->FirstChildElement("ip")->SetText(kNewText);
  tinyxml2::XMLPrinter printer(nullptr, true);
  document.Print(&printer);
  return static_cast<std::size_t>(printer.CStrSize()) > length / 2;
}

bool parseMini(char* data, std::size_t) {
  mxml_node_t* document = mxmlLoadString(nullptr, data, MXML_OPAQUE_CALLBACK);
  mxmlDelete(document);
  return document != nullptr;
}

bool tripMini(char* data, std::size_t length) {
  mxml_node_t* document = mxmlLoadString(nullptr, data, MXML_OPAQUE_CALLBACK);
  if (document == nullptr) {
    return false;
  }
  mxml_node_t* ip = mxmlFindElement(document, document, "ip", nullptr, nullptr, MXML_DESCEND);
  mxmlSetOpaque(ip, kNewText);
  char* text = mxmlSaveAllocString(document, MXML_NO_CALLBACK);
  bool done = std::strlen(text) > length / 2;
  std::free(text);
  mxmlDelete(document);
  return done;
}

bool parseExpat(char* data, std::size_t length) {
  XML_Parser parser = XML_ParserCreate(nullptr);
  std::size_t events = 0;
  XML_SetUserData(parser, &events);
  XML_SetElementHandler(
      parser, [](void* n, const char*, const char**) { ++*static_cast<std::size_t*>(n); },
      [](void* n, const char*) { ++*static_cast<std::size_t*>(n); });
  XML_SetCharacterDataHandler(parser,
                              [](void* n, const char*, int) { ++*static_cast<std::size_t*>(n); });
  bool done = XML_Parse(parser, data, static_cast<int>(length), XML_TRUE) == XML_STATUS_OK;
  XML_ParserFree(parser);
  return done && events != 0;
}

bool parseLibxml(char* data, std::size_t length) {
  xmlDoc* document =
      xmlReadMemory(data, static_cast<int>(length), nullptr, nullptr, XML_PARSE_NONET);
  xmlFreeDoc(document);
  return document != nullptr;
}

xmlNode* find(xmlNode* parent, const char* name) {
  for (xmlNode* node = parent->children; node != nullptr; node = node->next) {
    bool isElement = node->type == XML_ELEMENT_NODE;
    if (isElement && (name == nullptr || xmlStrEqual(node->name, BAD_CAST name) != 0)) {
      return node;
    }
  }
  return nullptr;
}

bool tripLibxml(char* data, std::size_t length) {
  xmlDoc* document =
      xmlReadMemory(data, static_cast<int>(length), nullptr, nullptr, XML_PARSE_NONET);
  if (document == nullptr) {
    return false;
  }
  xmlNodeSetContent(find(find(xmlDocGetRootElement(document), nullptr), "ip"), BAD_CAST kNewText);
  xmlChar* text = nullptr;
  int written = 0;
  xmlDocDumpMemory(document, &text, &written);
  xmlFree(text);
  xmlFreeDoc(document);
  return static_cast<std::size_t>(written) > length / 2;
}

}  // namespace

const Peer kPeers[] = {{"ours", parseOurs, tripOurs},       {"pugixml", parsePugi, tripPugi},
                       {"rapidxml", parseRapid, tripRapid}, {"tinyxml2", parseTiny, tripTiny},
                       {"mini_xml", parseMini, tripMini},   {"expat", parseExpat, nullptr},
                       {"libxml2", parseLibxml, tripLibxml}};
const std::size_t kPeerCount = std::size(kPeers);
