#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <initializer_list>

#include "tests/xml/document.h"

namespace onu::xml {

namespace {

using namespace std::string_view_literals;

struct TreeCase {
  std::string_view text;
  const char* tree;
  const char* error = "";  // without "[error near line 1]: "
};

void expectTrees(std::initializer_list<TreeCase> cases) {
  for (const TreeCase& c : cases) {
    Parsed document(c.text);
    EXPECT_EQ(shown(document.node()), c.tree) << c.text;
    std::string prefix = *c.error == '\0' ? "" : "[error near line 1]: ";
    EXPECT_EQ(document.error(), prefix + c.error) << c.text;
  }
}

TEST(Tree, Elements) {
  expectTrees({
      {"\xEF\xBB\xBF<?xml version='1.0'?>\n<a></a>\n ", "a''"},
      {"<a>x<b>1</b>yz<c/>w</a>", "a'xyzw'[b'1'@1 c''@3]"},
      {"<!DOCTYPE a PUBLIC '[' \">\"><a>x<!-- - -- > -->y</a>", "a'xy'"},
      {"<!DOCTYPE a SYSTEM \"[\" [] ><a/>", "a''"},
      {"<a>1<x/>2<b>3<y/>4</b>5</a>", "a'125'[x''@1 b'34'[y''@1]@2]"},
      {"<a>x<![CDATA[<&amp;\r\n]]]>y</a>", "a'x<&amp;\r\n]y'"},
      {"<a>x<?p q?>y</a>", "a'xy'"},
      {"<a  b = \"1\"\tc='2' ><d /></a >", "a{b=1;c=2;}''[d''@0]"},
      {"<a b c=d e/>", "a{b=;c=;d=;e=;}''"},
      {"<a bbbbbbbbbbbbbbbb='1' c='' d =\"\" e= \"x\" f =\n'>' g= h/>",
       "a{bbbbbbbbbbbbbbbb=1;c=;d=;e=x;f=>;g=;h=;}''"},
      {"<a b='\"'c=\"'\"/>", "a{b=\";c=';}''"},
      {"<a><abcdefgh/><abcdefghi/><abcdefgh/><abcdefghijklmnopqrs>1</abcdefghijklmnopqrs></a>",
       "a''[abcdefgh''@0 abcdefghi''@0 abcdefgh''@0 abcdefghijklmnopqrs'1'@0]"},
      {"<a\1 b\2=''/>", "a\1{b\2=;}''"},
      {"<a>x</a>\0<"sv, "a'x'"},
  });
}

TEST(Tree, Decoding) {
  expectTrees({
      {"<a>1\r\n2\r3\n4\r\r\n</a>", "a'1\n2\n3\n4\n\n'"},
      {"<a>&#x41;&#65;&#x1f600;&#233;</a>", "a'AA\xF0\x9F\x98\x80\xC3\xA9'"},
      {"<a>&#x7f;&#x80;&#x7ff;&#x800;&#xffff;&#x10000;</a>",
       "a'\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80'"},
      {"<a>&#x7fffffff;&#x80000000;</a>", "a'\xFD\xBF\xBF\xBF\xBF\xBF&#x80000000;'"},
      {"<a>&#0;&#65 &#;&#x;&#-1;&u;&;& &lt</a>", "a'&#0;&#65 &#;&#x;&#-1;&u;&;& &lt'"},
      {"<a>&lt;&gt;&amp;&quot;&apos;</a>", "a'<>&\"''"},
      {"<a>&amp;lt;&#38;#65;</a>", "a'&lt;&#65;'"},
      {"<a b='1\t2\r\n3\n4\r5 '/>", "a{b=1 2 3 4 5 ;}''"},
      {"<a b='&#9;&#10;&#13;&#32;'/>", "a{b=\t\n\r ;}''"},
  });
}

TEST(Tree, Errors) {
  expectTrees({
      {"", "none", "root tag missing"},
      {"<a><b>x</b></c>", "a''[b'x'@0]", "unexpected closing tag </c>"},
      {"<a></ab>", "a''", "unexpected closing tag </ab>"},
      {"<a></b>0123456789abcdef", "a''", "unexpected closing tag </b>"},
      {"<abc>x</a", "abc'x'", "unexpected closing tag </a>"},
      {"<abc>x</abc", "abc'x'", "missing >"},
      {"</a>", "none", "markup outside of root element"},
      {"<![CDATA[x]]><a/>", "none", "markup outside of root element"},
      {"<a/><b/>", "a''", "markup outside of root element"},
      {"<a/> t", "a''", "markup outside of root element"},
      {"<a><b c=\"1></b></a>", "a''", "missing \""},
      {"<a b='1\"/>", "none", "missing '"},
      {"<a><b/ ></a>", "a''", "missing >"},
      {"<a b", "none", "missing >"},
      {"<a></a b>", "a''", "missing >"},
      {"<a>x<b>1</b>y<c>z", "a'xy'[b'1'@1 c''@2]", "unclosed tag <c>"},
      {"<a>x<!-- ->", "a'x'", "unclosed <!--"},
      {"<a><!-->", "a''", "unclosed <!--"},
      {"<a><![CDATA[x]]</a>", "a''", "unclosed <![CDATA["},
      {"<!DOCTYPE a", "none", "unclosed <!DOCTYPE"},
      {"<!DOCTYPE a [ ] <a/>", "none", "unclosed <!DOCTYPE"},
      {"<?a>", "none", "unclosed <?"},
      {"<a><1/></a>", "a''", "unexpected <"},
      {"<a><!ELEMENT/></a>", "a''", "unexpected <"},
      {"\177ELF\1\0<"sv, "none", "root tag missing"},
  });
}

// Every kind of decoding and cutting that moves line feeds stands before the error.
TEST(ErrorLine, CountsTheInputsOwnLineFeeds) {
  Parsed document(
      "<?p\n\n q?>\r\n<a\nb\n=\n'1\r\n\t2'>3\r\n&#10;4\r5<![CDATA[\n]]>\n<!--\n\n-->\n</b>");
  EXPECT_EQ(document.error(), "[error near line 14]: unexpected closing tag </b>");
  EXPECT_EQ(Parsed("<a>&#10;</b>").error(), "[error near line 1]: unexpected closing tag </b>");
  EXPECT_EQ(Parsed("<a>\n<b c='\n>\n").error(), "[error near line 2]: missing '");
  EXPECT_EQ(Parsed("\n<!DOCTYPE a [\n<!ENTITY b 'x\ny'>\n<!ATTLIST\n c>\n<!ATTLIST d e>]>").error(),
            "[error near line 7]: malformed <!ATTLIST");
}

TEST(ErrorText, IsCut) {
  std::string name(300, 'n');
  EXPECT_EQ(Parsed("<a></" + name + ">").error(),
            "[error near line 1]: unexpected closing tag </" + name.substr(0, 127 - 46));
}

TEST(Prefixes, OfEveryLengthAreSafe) {
  std::string_view whole =
      "<?xml version='1.0' standalone=\"yes\"?>\n<!DOCTYPE a [<!ENTITY e \"&#38;v\"><!ENTITY % p "
      "'<!ATTLIST a k CDATA \"&e;\">'>%p;<!ATTLIST b l (p|q) #FIXED ' p ' m NOTATION (n) #IMPLIED>"
      "<!-- ] --><?x ]?>]>\n<a m=\"1\" n='&e;\r\n'>t&e;\r\n<b/>u<![CDATA[v]]><!-- w "
      "--><c>&#233;</c>"
      "</a><?p q?> ";
  for (std::size_t length = 0; length <= whole.size(); ++length) {
    Parsed document(whole.substr(0, length));
    std::string text = written(document.node());
    // Complete behind the root element, and behind the instruction.
    bool isComplete = length + 8 == whole.size() || length + 1 >= whole.size();
    EXPECT_EQ(document.error().empty(), isComplete) << length;
    if (!text.empty()) {
      EXPECT_EQ(written(Parsed(text).node()), text);
    }
  }
  Parsed document(whole);
  EXPECT_EQ(shown(document.node()), "a{m=1;n=&v ;}'t&v\nuv'[b''@4 c'\xC3\xA9'@6]");
  EXPECT_EQ(document->standalone, 1);
}

TEST(Utf16, OfBothByteOrders) {
  for (const auto& [text, tree] : std::initializer_list<std::pair<std::u16string, const char*>>{
           {u"<\u00E9>\u20AC</\u00E9>", "\xC3\xA9'\xE2\x82\xAC'"},
           {u"<a>\xD83D\xDE00</a>", "a'\xF0\x9F\x98\x80'"},
           {u"<a>\xD83D\xD83D\xDE00</a>", "a'\xEF\xBF\xBD\xF0\x9F\x98\x80'"},
           {u"<a>\xD83Dx</a>", "a'\xEF\xBF\xBDx'"},
           {u"<a>\xDE00\xDE00\xD83D</a>", "a'\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD'"},
           {u"<a/>\xD83D", "a''"}}) {
    for (bool highFirst : {true, false}) {
      std::string bytes;
      for (char16_t unit : u"\uFEFF" + text) {
        bytes += static_cast<char>(highFirst ? unit >> 8 : unit);
        bytes += static_cast<char>(highFirst ? unit : unit >> 8);
      }
      EXPECT_EQ(shown(Parsed(bytes).node()), tree) << highFirst;
      EXPECT_EQ(shown(Parsed(bytes + "x").node()), tree) << highFirst << " and an odd byte";
    }
  }
}

TEST(Utf16, GrowsByHalf) {
  std::string bytes = "\xFF\xFE<";
  bytes += std::string("\0a\0>\0", 5);
  std::string want;
  for (int i = 0; i < 100000; ++i) {
    bytes += "\xAC\x20";
    want += "\xE2\x82\xAC";
  }
  bytes += std::string("<\0/\0a\0>\0", 8);
  EXPECT_TRUE(shown(Parsed(bytes).node()) == "a'" + want + "'");
}

// Deeper than a small stack lets calls be; run under `ulimit -s 256` as well.
TEST(Depth, IsNoMatterOfStack) {
  constexpr std::size_t kDepth = 100000;
  std::string text;
  for (std::size_t i = 0; i < kDepth; ++i) {
    text += "<a>";
  }
  for (std::size_t i = 0; i < kDepth; ++i) {
    text += "</a>";
  }
  Parsed document(text);
  EXPECT_EQ(document.error(), "");
  EXPECT_EQ(written(document.node()), text);
  EXPECT_EQ(Parsed(text.substr(0, 3 * kDepth)).error(), "[error near line 1]: unclosed tag <a>");
}

TEST(Files, AreReadByEveryEntryPoint) {
  for (std::size_t length : {1U, 1016U, 1017U, 1018U, 5000U, 3000000U}) {
    std::string text = "<a>" + std::string(length, 'x') + "</a>";
    int fd = memfd_create("file", 0);
    ASSERT_EQ(pwrite(fd, text.data(), text.size(), 0), static_cast<ssize_t>(text.size()));
    std::string path = "/proc/self/fd/" + std::to_string(fd);
    FILE* stream = fopen(path.c_str(), "r");
    for (XmlRoot* root : {parseFile(path.c_str()), parseFd(fd), parseStream(stream)}) {
      Document document(root);
      ASSERT_TRUE(document);
      EXPECT_EQ(document->len, -1);
      EXPECT_TRUE(written(document.node()) == text) << length;
    }
    fclose(stream);
    close(fd);
  }
}

TEST(Files, ThatCannotBeRead) {
  EXPECT_EQ(parseFile("/nonexistent/file"), nullptr);
  EXPECT_EQ(parseFd(-1), nullptr);
  int writeOnly = open("/dev/null", O_WRONLY);
  for (XmlRoot* root : {parseFile("/dev/null"), parseFile("/tmp"), parseFd(writeOnly)}) {
    EXPECT_STREQ(error(Document(root).node()), "[error near line 1]: root tag missing");
  }
  close(writeOnly);
}

}  // namespace

}  // namespace onu::xml
