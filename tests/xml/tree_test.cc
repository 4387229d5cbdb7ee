#include "tests/xml/document.h"

namespace onu::xml {

TEST(Lookup, FindsByNameAndPlace) {
  Parsed document("<a><b><c>1</c></b><d/><b x='y'><c>2</c><c>3</c></b></a>");
  XmlNode* const a = document.node();
  XmlNode* const second = idx(child(a, "b"), 1);
  EXPECT_STREQ(attr(second, "x"), "y");
  EXPECT_EQ(written(second), "<b x=\"y\"><c>2</c><c>3</c></b>");
  EXPECT_STREQ(get(a, {{"b", 1}, {"c", 1}})->txt, "3");
  EXPECT_STREQ(get(a, {{"b", 0}, {"c", -1}, {"d", 0}})->txt, "1");
  EXPECT_STREQ(get(a, {{"b", 1}, {"c", 0}, {"", 0}, {"d", 0}})->txt, "2");
  EXPECT_EQ(get(a, {}), a);
  for (const XmlNode* node :
       {idx(second, 1), child(a, "B"), get(a, {{"b", 2}, {"c", 0}}), child(nullptr, "a"),
        idx(nullptr, 0), get(nullptr, {{"a", 0}}), setText(nullptr, "a"),
        setAttr(nullptr, "a", "b"), addChild(nullptr, "a", 0), cut(nullptr)}) {
    EXPECT_EQ(node, nullptr);
  }
  EXPECT_EQ(attr(nullptr, "a"), nullptr);
  EXPECT_EQ(parseFile(nullptr), nullptr);
  EXPECT_EQ(written(nullptr) + error(nullptr) + written(Parsed("").node()), "");
}

// Names that begin with each other; more than are compared one by one, each twice, and the same
// within an element between them.
TEST(Lookup, GroupsNames) {
  EXPECT_EQ(groups(Parsed("<a><bcdefghi/><bcdefghij/><bcdefghi/></a>").node()),
            "bcdefghi,bcdefghi|bcdefghij|");
  const std::string once = numbered(40, "<name#/>");
  const std::string want = numbered(40, "name#,name#|");
  Parsed document("<a>" + once + "<z>" + once + once + "</z>" + once + "</a>");
  EXPECT_EQ(groups(document.node()), want + "z|");
  EXPECT_EQ(groups(child(document.node(), "z")), want);
}

TEST(Write, Escapes) {
  Parsed document("<a b='&#10;&#9;&#13;&lt;&gt;&amp;&quot;&apos;' b='2'>&#13;\n\t&quot;]]&gt;</a>");
  const std::string tag = "<a b=\"&#xA;&#x9;&#xD;&lt;&gt;&amp;&quot;'\">";
  const std::string text = tag + "&#xD;\n\t\"]]&gt;</a>";
  EXPECT_EQ(written(document.node()), text);
  EXPECT_EQ(written(Parsed(text).node()), text);
  const std::string many(60, '&');
  EXPECT_EQ(written(setText(document.node(), many.c_str())), tag + numbered(60, "&amp;") + "</a>");
}

TEST(Edit, Texts) {
  Parsed document("<a>12<b/>34<c/>56</a>");
  XmlNode* const a = document.node();
  EXPECT_EQ(written(setText(a, "x<y")), "<a>x&lt;<b></b>y<c></c></a>");
  setText(a, strdup("0123456789"))->flags |= kTextAllocated;
  EXPECT_EQ(written(a), "<a>01<b></b>23<c></c>456789</a>");
  EXPECT_EQ(written(setText(a, "")), "<a><b></b><c></c></a>");
  setText(a->child, strdup("left to the document"))->flags |= kTextAllocated;
  EXPECT_EQ(written(setText(a->child, a->child->txt)), "<b>left to the document</b>");

  Parsed inPieces("<a>1<b/>2</a>");
  const std::string stored(1, '3');
  inPieces->xml.txt = stored.c_str();
  EXPECT_EQ(written(inPieces.node()), "<a>3<b></b></a>");
}

// Copies that are handed over are released when replaced, removed, or with the document.
TEST(Edit, Attributes) {
  Parsed document("<a><b c='1' d='2' c='3'/></a>");
  XmlNode* const b = document.node()->child;
  const auto set = [b](bool handsOver, const char* name, const char* value, const char* want) {
    const int flag = handsOver ? kAttributesAllocated : 0;
    b->flags = static_cast<std::uint8_t>((b->flags & ~kAttributesAllocated) | flag);
    EXPECT_EQ(setAttr(b, name, value), b);
    EXPECT_EQ(shown(b), want);
    const auto count = static_cast<std::size_t>(std::count(want, want + std::strlen(want), '='));
    EXPECT_EQ(std::strlen(b->attr[2 * count + 1]), count) << want;
  };
  set(false, "d", "4", "b(c=1)(d=4)(c=3)''");
  set(false, "e", "5", "b(c=1)(d=4)(c=3)(e=5)''");
  set(false, "c", nullptr, "b(d=4)(e=5)''");
  set(false, "none", nullptr, "b(d=4)(e=5)''");
  set(true, strdup("d"), strdup("6"), "b(d=6)(e=5)''");
  set(true, strdup("d"), strdup("7"), "b(d=7)(e=5)''");
  set(true, b->attr[0], b->attr[1], "b(d=7)(e=5)''");
  set(true, strdup("f"), strdup("8"), "b(d=7)(e=5)(f=8)''");
  set(true, strdup("g"), strdup("9"), "b(d=7)(e=5)(f=8)(g=9)''");
  set(true, strdup("f"), nullptr, "b(d=7)(e=5)(g=9)''");
  set(true, strdup("none"), nullptr, "b(d=7)(e=5)(g=9)''");
  set(false, "g", "0", "b(d=7)(e=5)(g=0)''");
  set(false, b->attr[4], nullptr, "b(d=7)(e=5)''");
  set(true, b->attr[2], nullptr, "b(d=7)''");
  set(true, strdup("h"), strdup("1"), "b(d=7)(h=1)''");

  XmlNode* const a = document.node();
  const char** const none = a->attr;
  EXPECT_EQ(written(setAttr(a, "x", "y")).substr(0, 9), "<a x=\"y\">");
  EXPECT_EQ(setAttr(a, "x", nullptr)->attr, none);
}

TEST(Edit, ManyAttributesSomeTwice) {
  Parsed document("<a" + numbered(40, " b#='#'") + numbered(10, " b#='x'") + "/>");
  XmlNode* const a = document.node();
  EXPECT_EQ(a->attr[101], std::string(50, ' '));
  EXPECT_EQ(written(a), "<a" + numbered(40, " b#=\"#\"") + "></a>");
  setAttr(setAttr(a, "b0", nullptr), "b40", "40");
  EXPECT_EQ(a->attr[99], std::string(49, ' '));
  EXPECT_EQ(written(a), "<a" + numbered(41, " b#=\"#\"").substr(7) + "></a>");
}

TEST(Edit, AddsAndCutsChildren) {
  const struct {
    const char* name;
    std::size_t off;
    const char *written, *groups;
  } cases[] = {{"b", 0, "<a><b></b>1<b></b>2<c></c>3<b></b>4</a>", "b,b,b|c|"},
               {"b", 1, "<a>1<b></b><b></b>2<c></c>3<b></b>4</a>", "b,b,b|c|"},
               {"c", 0, "<a><c></c>1<b></b>2<c></c>3<b></b>4</a>", "c,c|b,b|"},
               {"c", 1, "<a>1<b></b><c></c>2<c></c>3<b></b>4</a>", "b,b|c,c|"},
               {"c", 9, "<a>1<b></b>2<c></c>3<b></b>4<c></c></a>", "b,b|c,c|"},
               {"d", 0, "<a><d></d>1<b></b>2<c></c>3<b></b>4</a>", "d|b,b|c|"},
               {"d", 1, "<a>1<b></b><d></d>2<c></c>3<b></b>4</a>", "b,b|d|c|"},
               {"d", 4, "<a>1<b></b>2<c></c>3<b></b>4<d></d></a>", "b,b|c|d|"}};
  for (const auto& c : cases) {
    Parsed document("<a>1<b></b>2<c></c>3<b></b>4</a>");
    XmlNode* const a = document.node();
    XmlNode* const added = addChild(a, strdup(c.name), c.off);
    added->flags |= kNameAllocated;
    EXPECT_EQ(written(a), c.written);
    EXPECT_EQ(groups(a), c.groups) << c.written;
    EXPECT_EQ(cut(cut(added))->parent, a);
    EXPECT_EQ(written(a) + groups(a), "<a>1<b></b>2<c></c>3<b></b>4</a>b,b|c|");
    cut(a->child);
    EXPECT_EQ(written(a) + groups(a), "<a>12<c></c>3<b></b>4</a>c|b|");
  }
}

// What stands before an element is known in both lists, whatever was added or cut around it.
TEST(Edit, CutsWhatWasAddedInAnyOrder) {
  const std::string text = "<a><b>0</b>1<c>0</c>2<b>1</b><b>2</b><c>1</c></a>";
  for (unsigned order = 0; order != 4 * 3 * 2; ++order) {
    Parsed document(text);
    XmlNode* const a = document.node();
    std::vector<XmlNode*> added = {addChild(a, "c", 0), addChild(a, "d", 1), addChild(a, "b", 0),
                                   addChild(a, "d", 0)};
    EXPECT_EQ(groups(a), "b0,b,b1,b2|c,c0,c1|d,d|");
    for (unsigned left = 4, rest = order; left != 0; rest /= left--) {
      cut(added[rest % left]);
      added.erase(added.begin() + rest % left);
    }
    EXPECT_EQ(written(a) + groups(a), text + "b0,b1,b2|c0,c1|") << order;
  }
}

TEST(Edit, BuildsATree) {
  Parsed document("<a/>");
  XmlNode* const b = setText(addChild(document.node(), "b", 0), "x");
  setAttr(addChild(b, "c", 1), "d", "e");
  EXPECT_EQ(written(document.node()), "<a><b>x<c d=\"e\"></c></b></a>");
}

}  // namespace onu::xml
