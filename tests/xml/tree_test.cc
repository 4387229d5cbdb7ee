#include <array>
#include <random>

#include "tests/xml/document.h"

namespace onu::xml {

TEST(Lookup, FindsByNameAndPlace) {
  Parsed document("<a k='v'><b><c>1</c></b><d/><b x='y'><c>2</c><c>3</c></b></a>");
  XmlNode* const a = document.node();
  XmlNode* const second = idx(child(a, "b"), 1);
  EXPECT_EQ(written(second), "<b x=\"y\"><c>2</c><c>3</c></b>");
  EXPECT_STREQ(get(a, {{"b", 1}, {"c", 1}})->txt, "3");
  EXPECT_STREQ(get(a, {{"b", 0}, {"c", -1}, {"d", 0}})->txt, "1");
  EXPECT_STREQ(get(a, {{"b", 1}, {"c", 0}, {"", 0}, {"d", 0}})->txt, "2");
  EXPECT_EQ(get(get(setAttr(a, nullptr, "b"), {}), {{nullptr, 0}}), a);
  for (const XmlNode* node :
       {idx(second, 1), child(a, "B"), get(a, {{"b", 3}, {"c", 0}}), child(nullptr, "a"),
        idx(nullptr, 0), get(nullptr, {{"a", 0}}), setText(nullptr, "a"), cut(nullptr),
        setAttr(nullptr, "a", "b"), addChild(nullptr, "a", 0), addChild(a, nullptr, 0)}) {
    EXPECT_EQ(node, nullptr);
  }
  EXPECT_EQ(attr(nullptr, "a"), nullptr);
  EXPECT_EQ(attr(a, nullptr), nullptr);
  EXPECT_EQ(child(a, nullptr), nullptr);
  EXPECT_EQ(parseFile(nullptr), nullptr);
  EXPECT_EQ(written(nullptr) + error(nullptr) + written(setAttr(Parsed("").node(), "a", "b")), "");
  EXPECT_EQ(written(cut(Parsed("<a>").node())), "<a></a>");
  EXPECT_STREQ(document->ent[8], "amp;");
  freeDoc(nullptr);
}

// Names that begin with each other; more than are compared one by one, each four times, and
// the same within an element between them; and so many that a slow table would show.
TEST(Lookup, GroupsNames) {
  EXPECT_EQ(
      groups(Parsed("<a><bcdefghi/><bcdefghij/><n/><h/><x/><n/><bcdefghi>1</bcdefghi></a>").node()),
      "bcdefghi,bcdefghi1|bcdefghij|n,n|h|x|");
  const std::string once = numbered(40, "text #<name#></name#><name#></name#>");
  const std::string want = numbered(40, "name#,name#,name#,name#|");
  const std::string text = "<a>" + once + "<z>" + once + once + "</z>" + once + "</a>";
  Parsed document(text);
  EXPECT_EQ(written(document.node()), text);
  EXPECT_EQ(groups(document.node()), want + "z" + child(document.node(), "z")->txt + "|");
  EXPECT_EQ(groups(child(document.node(), "z")), want);
  const Parsed many("<a>" + numbered(150000, "<n#/>") + "</a>");
  EXPECT_TRUE(groups(many.node()) == numbered(150000, "n#|"));
}

TEST(Write, Escapes) {
  Parsed document("<a b='&#10;&#9;&#13;&lt;&gt;&amp;&quot;&apos;' b='2'>&#13;\n\t&quot;]]&gt;</a>");
  const std::string tag = "<a b=\"&#xA;&#x9;&#xD;&lt;&gt;&amp;&quot;'\">";
  const std::string text = tag + "&#xD;\n\t\"]]&gt;</a>";
  EXPECT_EQ(written(document.node()), text);
  EXPECT_EQ(written(Parsed(text).node()), text);
  // References alone and behind other bytes, wherever there is no more room for either.
  for (std::string start; start.size() < 25; start += 'x') {
    const std::string many = start + numbered(300, "0123456789abcde&&");
    const std::string want = tag + start + numbered(300, "0123456789abcde&amp;&amp;") + "</a>";
    EXPECT_EQ(written(setText(document.node(), many.c_str())), want);
  }
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
  inPieces->xml.txt = "3";
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
  set(true, strdup("d"), strdup("6"), "b(d=6)(e=5)''");
  set(true, strdup("d"), strdup("7"), "b(d=7)(e=5)''");
  set(true, b->attr[0], b->attr[1], "b(d=7)(e=5)''");
  set(true, strdup("gg"), strdup("8"), "b(d=7)(e=5)(gg=8)''");
  set(true, strdup("g"), strdup("9"), "b(d=7)(e=5)(gg=8)(g=9)''");
  set(true, strdup("gg"), nullptr, "b(d=7)(e=5)(g=9)''");
  set(true, strdup("none"), nullptr, "b(d=7)(e=5)(g=9)''");
  set(false, "g", "0", "b(d=7)(e=5)(g=0)''");
  set(false, b->attr[4], nullptr, "b(d=7)(e=5)''");
  set(true, b->attr[2], nullptr, "b(d=7)''");
  set(false, "d", nullptr, "b''");
  EXPECT_EQ(b->attr, document.node()->attr);
  set(true, strdup("h"), strdup("1"), "b(h=1)''");
}

TEST(Edit, ManyAttributesSomeTwice) {
  Parsed document("<a" + numbered(40, " b#='#'") + numbered(10, " b#='x'") + "/>");
  XmlNode* const a = document.node();
  EXPECT_EQ(a->attr[101], std::string(50, ' '));
  EXPECT_EQ(written(a), "<a" + numbered(40, " b#=\"#\"") + "></a>");
  setAttr(setAttr(a, "b0", nullptr), "b", nullptr)->flags |= kAttributesAllocated;
  setAttr(setAttr(a, strdup("b40"), strdup("40")), strdup("b20"), strdup("20"));
  EXPECT_EQ(std::strlen(a->attr[99]), 49U);
  EXPECT_EQ(written(a), "<a" + numbered(41, " b#=\"#\"").substr(7) + "></a>");
}

// Whatever was added and cut before, the tree is that of what is written.
TEST(Edit, AddsAndCutsChildren) {
  std::mt19937 random(1);
  Parsed document("<a><b>12<c>0</c>34<d/><e/></b></a>");
  XmlNode* const b = document.node()->child;
  cut(b->child->ordered);
  std::vector<XmlNode*> want = {b->child, b->child->ordered};
  for (int step = 0; step < 3000; ++step) {
    if (const auto place = random() % 24; place < want.size()) {
      EXPECT_EQ(cut(cut(want[place]))->parent, b);
      want.erase(std::find(want.begin(), want.end(), want[place]));
    } else {
      const char* const name = std::array{"c", "cc", "d", "e"}[random() % 4];
      XmlNode* const added = addChild(b, strdup(name), random() % 5);
      added->flags |= kNameAllocated;
      setText(added, strdup(std::to_string(step).c_str()))->flags |= kTextAllocated;
      const auto isBefore = [](std::size_t off, XmlNode* node) { return off < node->off; };
      want.insert(std::upper_bound(want.begin(), want.end(), added->off, isBefore), added);
    }
    if (step % 10 == 0 && !want.empty()) {
      setAttr(addChild(setText(want[0], "0"), "d", 1), "e", "f");
    }
    std::vector<XmlNode*> children;
    for (XmlNode* node = b->child; node != nullptr; node = node->ordered) {
      children.push_back(node);
    }
    ASSERT_EQ(children, want) << step;
    const Parsed again(written(b));
    ASSERT_EQ(shown(b) + groups(b), shown(again.node()) + groups(again.node())) << step;
  }
}

}  // namespace onu::xml
