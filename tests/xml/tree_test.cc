#include <gtest/gtest.h>

#include "tests/xml/document.h"

namespace onu::xml {

namespace {

TEST(Lookup, FindsByNameAndPlace) {
  Parsed document("<a><b><c>1</c></b><d/><b x='y'><c>2</c><c>3</c></b></a>");
  XmlNode* a = document.node();
  XmlNode* b = child(a, "b");
  EXPECT_EQ(idx(b, 2), nullptr);
  EXPECT_EQ(child(a, "B"), nullptr);
  EXPECT_STREQ(attr(idx(b, 1), "x"), "y");
  EXPECT_STREQ(get(a, {{"b", 1}, {"c", 1}})->txt, "3");
  EXPECT_EQ(get(a, {{"b", 2}, {"c", 0}}), nullptr);
  EXPECT_STREQ(get(a, {{"b", 0}, {"c", -1}, {"d", 0}})->txt, "1");
  EXPECT_STREQ(get(a, {{"b", 1}, {"c", 0}, {"", 0}, {"d", 0}})->txt, "2");
  EXPECT_EQ(get(a, {}), a);
  EXPECT_EQ(written(idx(b, 1)), "<b x=\"y\"><c>2</c><c>3</c></b>");
}

// Names that begin with each other; more than are compared one by one, each twice, and the same
// within an element between them.
TEST(Lookup, GroupsNames) {
  EXPECT_EQ(groups(Parsed("<a><bcdefghi/><bcdefghij/><bcdefghi/></a>").node()),
            "bcdefghi,bcdefghi|bcdefghij");
  std::string once;
  std::string want;
  for (int i = 0; i < 40; ++i) {
    std::string name = "name" + std::to_string(i);
    once += "<" + name + "/>";
    want += (i == 0 ? "" : "|") + name + "," + name;
  }
  Parsed document("<a>" + once + "<z>" + once + once + "</z>" + once + "</a>");
  EXPECT_EQ(groups(document.node()), want + "|z");
  EXPECT_EQ(groups(child(document.node(), "z")), want);
}

TEST(Null, IsAnsweredByNull) {
  for (const XmlNode* node :
       {child(nullptr, "a"), idx(nullptr, 0), get(nullptr, {{"a", 0}}), setText(nullptr, "a"),
        setAttr(nullptr, "a", "b"), addChild(nullptr, "a", 0), cut(nullptr)}) {
    EXPECT_EQ(node, nullptr);
  }
  EXPECT_EQ(attr(nullptr, "a"), nullptr);
  EXPECT_EQ(parseFile(nullptr), nullptr);
  EXPECT_EQ(written(nullptr) + error(nullptr) + written(Parsed("").node()), "");
}

TEST(Write, Escapes) {
  Parsed document("<a b='&#10;&#9;&#13;&lt;&gt;&amp;&quot;&apos;' b='2'>&#13;\n\t&quot;]]&gt;</a>");
  std::string text = "<a b=\"&#xA;&#x9;&#xD;&lt;&gt;&amp;&quot;'\">&#xD;\n\t\"]]&gt;</a>";
  EXPECT_EQ(written(document.node()), text);
  EXPECT_EQ(written(Parsed(text).node()), text);
  std::string many(60, '&');
  setText(document.node(), many.c_str());
  EXPECT_EQ(written(document.node()).size(),
            text.size() - std::strlen("&#xD;\n\t\"]]&gt;") + 5 * 60);
}

TEST(Write, NamesARepeatedAttributeOnce) {
  std::string tag = "<a";
  std::string want = tag;
  for (int i = 0; i < 50; ++i) {
    tag += " b" + std::to_string(i % 40) + "='" + std::to_string(i) + "'";
    if (i < 40) {
      want += " b" + std::to_string(i) + "=\"" + std::to_string(i) + "\"";
    }
  }
  EXPECT_EQ(written(Parsed(tag + "/>").node()), want + "></a>");
}

TEST(Edit, Texts) {
  Parsed document("<a>12<b/>34<c/>56</a>");
  XmlNode* a = document.node();
  EXPECT_EQ(setText(a, "x<y"), a);
  EXPECT_EQ(written(a), "<a>x&lt;<b></b>y<c></c></a>");
  setText(a, strdup("0123456789"));
  a->flags |= kTextAllocated;
  EXPECT_EQ(written(a), "<a>01<b></b>23<c></c>456789</a>");
  setText(a, "");
  EXPECT_EQ(written(a), "<a><b></b><c></c></a>");
  setText(a->child, strdup("left to the document"));
  a->child->flags |= kTextAllocated;
  setText(a->child, a->child->txt);
  EXPECT_STREQ(a->child->txt, "left to the document");

  Parsed inPieces("<a>1<b/>2</a>");
  char* stored = strdup("3");
  inPieces->xml.txt = stored;
  EXPECT_EQ(written(inPieces.node()), "<a>3<b></b></a>");
  std::free(stored);
}

TEST(Edit, Attributes) {
  Parsed document("<a><b c='1' d='2'/></a>");
  XmlNode* a = document.node();
  XmlNode* b = a->child;
  const char** none = a->attr;
  EXPECT_EQ(setAttr(b, "c", "3"), b);
  setAttr(b, "e", "4");
  setAttr(b, "d", nullptr);
  setAttr(b, "none", nullptr);
  EXPECT_EQ(shown(b), "b{c=3;e=4;}''");
  EXPECT_EQ(std::strlen(b->attr[5]), 2U);
  setAttr(a, "x", "y");
  EXPECT_EQ(shown(a).substr(0, 6), "a{x=y;");
  setAttr(a, "x", nullptr);
  EXPECT_EQ(a->attr, none);
  b->flags |= kAttributesAllocated;
  setAttr(b, strdup("c"), strdup("own"));
  setAttr(b, b->attr[0], b->attr[1]);
  EXPECT_EQ(shown(b), "b{c=own;e=4;}''");
  Parsed repeated("<a b='1' c='2' b='3' d='4'/>");
  setAttr(repeated.node(), "b", nullptr);
  EXPECT_EQ(shown(repeated.node()), "a{c=2;d=4;}''");
  EXPECT_EQ(std::strlen(repeated.node()->attr[5]), 2U);
}

TEST(Edit, ManyAttributes) {
  std::string tag = "<a";
  for (int i = 0; i < 40; ++i) {
    tag += " b" + std::to_string(i) + "='" + std::to_string(i) + "'";
  }
  Parsed document(tag + "/>");
  XmlNode* a = document.node();
  EXPECT_EQ(std::string(a->attr[81]), std::string(40, ' '));
  setAttr(a, "b39", "x");
  setAttr(a, "c", "y");
  setAttr(a, "b0", nullptr);
  EXPECT_EQ(std::string(a->attr[81]), std::string(40, ' '));
  std::string text = written(a);
  EXPECT_EQ(text.substr(0, 8), "<a b1=\"1");
  EXPECT_EQ(text.substr(text.find("b38")), "b38=\"38\" b39=\"x\" c=\"y\"></a>");
}

// Copies that are handed over are released when replaced, removed, or with the document.
TEST(Edit, AttributesHandedOver) {
  Parsed document("<a b='1'/>");
  XmlNode* a = document.node();
  a->flags |= kAttributesAllocated;
  setAttr(a, strdup("b"), strdup("2"));
  setAttr(a, strdup("b"), strdup("3"));
  setAttr(a, strdup("c"), strdup("4"));
  setAttr(a, strdup("d"), strdup("5"));
  setAttr(a, strdup("d"), nullptr);
  setAttr(a, strdup("none"), nullptr);
  a->flags = static_cast<uint8_t>(a->flags & ~kAttributesAllocated);
  setAttr(a, "c", "6");
  EXPECT_EQ(shown(a), "a{b=3;c=6;}''");
}

TEST(Edit, AddsAndCutsChildren) {
  struct {
    const char* name;
    std::size_t off;
    const char *written, *groups;
  } const cases[] = {{"b", 0, "<a><b></b>1<b></b>2<c></c>3<b></b>4</a>", "b,b,b|c"},
                     {"b", 1, "<a>1<b></b><b></b>2<c></c>3<b></b>4</a>", "b,b,b|c"},
                     {"c", 0, "<a><c></c>1<b></b>2<c></c>3<b></b>4</a>", "c,c|b,b"},
                     {"c", 1, "<a>1<b></b><c></c>2<c></c>3<b></b>4</a>", "b,b|c,c"},
                     {"c", 9, "<a>1<b></b>2<c></c>3<b></b>4<c></c></a>", "b,b|c,c"},
                     {"d", 0, "<a><d></d>1<b></b>2<c></c>3<b></b>4</a>", "d|b,b|c"},
                     {"d", 1, "<a>1<b></b><d></d>2<c></c>3<b></b>4</a>", "b,b|d|c"},
                     {"d", 4, "<a>1<b></b>2<c></c>3<b></b>4<d></d></a>", "b,b|c|d"}};
  std::string text = "<a>1<b></b>2<c></c>3<b></b>4</a>";
  for (const auto& c : cases) {
    Parsed document(text);
    XmlNode* a = document.node();
    XmlNode* added = addChild(a, c.name, c.off);
    EXPECT_EQ(written(a), c.written);
    EXPECT_EQ(groups(a), c.groups) << c.written;
    EXPECT_EQ(cut(added), added);
    EXPECT_EQ(cut(added), added);
    EXPECT_EQ(written(a), text);
    EXPECT_EQ(groups(a), "b,b|c");
  }
  Parsed document(text);
  XmlNode* owner = addChild(document.node(), strdup("handed"), 9);
  owner->flags |= kNameAllocated;
  cut(owner);
  EXPECT_EQ(owner->parent, document.node());
  cut(document.node()->child);
  EXPECT_EQ(written(document.node()), "<a>12<c></c>3<b></b>4</a>");
  EXPECT_EQ(groups(document.node()), "c|b");
}

// What stands before an element is known in both lists, whatever was added or cut around it.
TEST(Edit, CutsWhatWasAddedInAnyOrder) {
  const std::string text = "<a><b>0</b>1<c>0</c>2<b>1</b><b>2</b><c>1</c></a>";
  for (unsigned order = 0; order != 4 * 3 * 2; ++order) {
    Parsed document(text);
    XmlNode* a = document.node();
    std::vector<XmlNode*> added = {addChild(a, "c", 0), addChild(a, "d", 1), addChild(a, "b", 0),
                                   addChild(a, "d", 0)};
    EXPECT_EQ(groups(a), "b0,b,b1,b2|c,c0,c1|d,d") << written(a);
    for (unsigned left = 4, rest = order; left != 0; --left) {
      cut(added[rest % left]);
      added.erase(added.begin() + rest % left);
      rest /= left;
    }
    EXPECT_EQ(written(a), text) << order;
    EXPECT_EQ(groups(a), "b0,b1,b2|c0,c1") << order;
  }
}

TEST(Edit, BuildsATree) {
  Parsed document("<a/>");
  for (int i = 0; i < 1000; ++i) {
    setText(addChild(document.node(), "b", 0), "x");
  }
  XmlNode* last = get(document.node(), {{"b", 999}});
  setAttr(addChild(last, "c", 1), "d", "e");
  EXPECT_EQ(written(last), "<b>x<c d=\"e\"></c></b>");
}

}  // namespace

}  // namespace onu::xml
