#include <sys/mman.h>
#include <unistd.h>

#include "tests/xml/document.h"

namespace onu::xml {

using namespace std::string_view_literals;

TEST(Tree, HoldsElementsAndTexts) {
  expectEach({
      {"\xEF\xBB\xBF<?xml version='1.0'?>\n<!DOCTYPE a SYSTEM \"[\" [] ><a></a>\n ", "a''"},
      {"<!DOCTYPE a PUBLIC '' '[' \"[\"><a>1<x/>2<b>3<yb></yb>4</b>5</a>",
       "a'125'[x''@1][b'34'[yb''@1]@2]"},
      {"<a>v<!---->w<!-- - -- > --><?xml q?>x<![CDATA[]]><![CDATA[<&amp;\r\n]]]>y</a>",
       "a'vwx<&amp;\r\n]y'"},
      {"<a\t b = \"'\"c='\"' ><d /><d></d ></a >", "a(b=')(c=\")''[d''@0][d''@0]"},
      {"<a ='1' b 'c' d=#e\" f>\"2\"</a>", "a(=1)(b=)('c'=)(d=)(#e\"=)(f=)'\"2\"'"},
      {"<a bb='1' c='' d =\"\" e= \"x\" f =\n'>' g= h/>", "a(bb=1)(c=)(d=)(e=x)(f=>)(g=)(h=)''"},
      {"<a\1 b\2=''/>\0"sv, "a\1(b\2=)''"},
      {"<a>x<!DOCTYPE></a>\0<"sv, "a'x'"},
      {"<a>1\r\n2\r3\n4\r\r\n</a>", "a'1\n2\n3\n4\n\n'"},
      {"<a>&#65;&#x7f;&#x80;&#x7ff;&#x800;&#xffff;&#x10000;&#x1f600;</a>",
       "a'A\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF0\x9F\x98\x80'"},
      {"<a>&#x7fffffff;&#x80000000;</a>", "a'\xFD\xBF\xBF\xBF\xBF\xBF&#x80000000;'"},
      {"<a>&/a>&#0;&#65 &#;&#a;&#x;&#x@;&#x:;&#xg;&#-1;&u;&;& &lt</a>",
       "a'&/a>&#0;&#65 &#;&#a;&#x;&#x@;&#x:;&#xg;&#-1;&u;&;& &lt'"},
      {"<!DOCTYPE a [<!ENTITY #0 'x'><!ENTITY e '&#38;'>]><a>&#0;&e;&#<c>&e;</c></a>",
       "a'&#0;&&#'[c'&'@7]"},
      {"<a>&lt;&gt;&amp;lt;&quot;&apos;&#38;#65;</a>", "a'<>&lt;\"'&#65;'"},
      {"<a b='1\t\n2\r\n3\n4\r5 &#9;&#10;&#13;&#32;'/>", "a(b=1  2 3 4 5 \t\n\r )''"},
  });
}

TEST(Errors, LeaveWhatWasRead) {
  expectEach({
      {"", "none", "root tag missing"},
      {"x\0\n<"sv, "none", "root tag missing"},
      {"<a></a?>", "a''", "unexpected closing tag </a?>"},
      {"<a></b>0123456789abcdef", "a''", "unexpected closing tag </b>"},
      {"<abcdefghi></abcd_fghi> ", "abcdefghi''", "unexpected closing tag </abcd_fghi>"},
      {"\xFE\xFF\0<\0a\0>\0<\0/\xD8\x3D\xDE\0"sv, "a''", "unexpected closing tag </😀>"},
      {"<abc>x</", "abc'x'", "unexpected closing tag </>"},
      {"<abc>x</abc", "abc'x'", "missing >"},
      {"<a></a b>", "a''", "missing >"},
      {"<a><b/ ></a>", "a''", "missing >"},
      {"<a><b c=\"1'></b></a>", "a''", "missing \""},
      {"</a>", "none", "markup outside of root element"},
      {"<a/><b/>", "a''", "markup outside of root element"},
      {"<a/> t", "a''", "markup outside of root element"},
      {"<a>x<b>1</b >y<c>z", "a'xy'[b'1'@1][c''@2]", "unclosed tag <c>"},
      {"<a>x<!--->->", "a'x'", "unclosed <!--"},
      {"<a><![CDATA[x]]</a>", "a''", "unclosed <![CDATA["},
      {"<!DOCTYPE a", "none", "unclosed <!DOCTYPE"},
      {"<!DOCTYPE a [\0]><a/>"sv, "none", "unclosed <!DOCTYPE"},
      {"<?a>", "none", "unclosed <?"},
      {"<a><0a></a>", "a''", "unexpected <"},
      {"<a><!ELEMENT/></a>", "a''", "unexpected <"},
  });
}

// Every kind of decoding and cutting that moves line feeds stands before the error.
TEST(Errors, CountTheInputsOwnLineFeedsAndAreCut) {
  const std::string name(300, 'n');
  const std::string unexpected = "unexpected closing tag </";
  expectEach({
      {"<?p\n\n q?>\r\n<a\nb\n=\n'1\r\n\t2'>3\r\n&#10;4\r5<![CDATA[\n]]>\n<!--\n\n-->\n</b>",
       "a(b=1  2)'3\n\n4\n5\n\n\n'", unexpected + "b>", 14},
      {"<!DOCTYPE a [<!ENTITY e '\r'>]><a><c>&#10;</c><c>\r&#65;</c><c>&amp;\n</c>&e;</b>",
       "a'\n'[c'\n'@0][c'\nA'@0][c'&\n'@0]", unexpected + "b>", 2},
      {"<a>\n<b c='\n>\n", "a'\n'", "missing '", 2},
      {"\n<!DOCTYPE a [\n<!ENTITY b 'x\ny'>\n<!ATTLIST\n c>\n<!ATTLIST d e>]>", "none",
       "malformed <!ATTLIST", 7},
      {"<a></" + name + ">", "a''", unexpected + name.substr(0, 127 - 46)},
  });
}

TEST(Prefixes, OfEveryLengthAreSafe) {
  const std::string_view whole =
      "<?xml\nversion = '1.0' standalone=\"yes\"?>\n<!DOCTYPE a [<!ENTITY e \"&#38;\tv\">"
      "<!ENTITY % p '<!ATTLIST a k CDATA \"&e;\">'>%p;<!ATTLIST b l (p|q) #FIXED ' p ' "
      "m NOTATION (n) #IMPLIED><!-- ] --><?x ]?>]>\n<a m=\"1\" n='&e;\r\n'>t&e;\r"
      "<b l=\" r \"/>u<![CDATA[v]]><!-- w --><c>&#233;</c></a><?p q?> ";
  for (std::size_t length = 0; length <= whole.size(); ++length) {
    const Parsed document(whole.substr(0, length));
    const std::string text = written(document.node());
    // Complete behind the root element, and behind the instruction.
    const bool isComplete = length + 8 == whole.size() || length + 1 >= whole.size();
    EXPECT_EQ((document->err[0] == '\0'), isComplete) << length;
    EXPECT_EQ(written(Parsed(text).node()), text);
    EXPECT_EQ(document->len, static_cast<std::ptrdiff_t>(length));
  }
  const Parsed document(whole);
  EXPECT_EQ(written(document.node()),
            "<a m=\"1\" n=\"&amp; v \" k=\"&amp; v\">t&amp;\tv\n<b "
            "l=\"r\"></b>uv<c>\xC3\xA9</c></a>\n<?p q?>");
  EXPECT_EQ(written(child(document.node(), "c")), "<c>\xC3\xA9</c>");
  EXPECT_EQ(document->xml.flags & kTextAllocated, kTextAllocated);
  EXPECT_EQ(document->standalone, 1);
  EXPECT_EQ(Parsed("<?xml standalone 'yes'?><?xml a= standalone='yes'?>")->standalone, 0);
  EXPECT_STREQ(Parsed("<?p q?>")->pi[0][3], "<");
}

TEST(Utf16, OfBothByteOrders) {
  for (const auto& [text, tree] : std::initializer_list<std::pair<std::u16string, std::string>>{
           {u"<a>\xD83D\xDE01\xD83D\xD83D\xDE00\xDE00\xD83Dx\xDE00</a>",
            "a'\xF0\x9F\x98\x81\xEF\xBF\xBD\xF0\x9F\x98\x80\xEF\xBF\xBD\xEF\xBF\xBDx\xEF\xBF\xBD'"},
           {u"<a/>\xD83D", "a''"},
           {u"<\u00E9>" + std::u16string(99999, u'\u20AC') + u"</\u00E9>",
            "\xC3\xA9'" + numbered(99999, "\u20AC") + "'"},
       }) {
    for (const bool highFirst : {true, false}) {
      std::string bytes;
      for (const char16_t unit : u"\uFEFF" + text) {
        bytes += static_cast<char>(highFirst ? unit >> 8 : unit);
        bytes += static_cast<char>(highFirst ? unit : unit >> 8);
      }
      EXPECT_TRUE(shown(Parsed(bytes).node()) == tree) << tree.substr(0, 30) << highFirst;
      EXPECT_TRUE(shown(Parsed(bytes + "x").node()) == tree) << tree.substr(0, 30) << "odd byte";
    }
  }
}

// Deeper than a small stack lets calls be.
TEST(Depth, IsNoMatterOfStack) {
  const std::string tags = numbered(100000, "<a>");
  const std::string text = tags + numbered(100000, "</a>");
  const Parsed document(text);
  EXPECT_EQ(document->cur, nullptr);
  EXPECT_EQ(written(document.node()), text);
  EXPECT_STREQ(Parsed(tags)->cur->name, "a");
  EXPECT_STREQ(Parsed(tags)->err, "[error near line 1]: unclosed tag <a>");
}

TEST(Files, AreReadByEveryEntryPoint) {
  close(STDIN_FILENO);  // so that 0 is a descriptor like any other
  for (const std::size_t length : {1U, 258U, 1008U, 1009U, 1010U, 3000000U}) {
    const std::string text = "<a>y<b></b>" + std::string(length, 'x') + "</a>";
    const int fd = memfd_create("file", 0);
    EXPECT_EQ(pwrite(fd, text.data(), text.size(), 0), static_cast<ssize_t>(text.size()));
    const std::string path = "/proc/self/fd/" + std::to_string(fd);
    FILE* const stream = fopen(path.c_str(), "r");
    for (XmlRoot* root : {parseFile(path.c_str()), parseFd(fd), parseStream(stream)}) {
      const Document document(root);
      EXPECT_EQ(document->len, -1);
      EXPECT_TRUE(written(document.node()) == text) << length;
    }
    fclose(stream);
    close(fd);
  }
  EXPECT_EQ(parseFile("/nonexistent/file"), nullptr);
  EXPECT_EQ(parseFd(-1), nullptr);
  EXPECT_STREQ(Document(parseFile("/tmp"))->err, "[error near line 1]: root tag missing");
  EXPECT_EQ(close(STDIN_FILENO), -1) << "left open";
}

}  // namespace onu::xml
