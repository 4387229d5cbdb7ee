#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <ostream>

#include "tests/xml/document.h"

namespace {

struct TreeCase {
  const char* label;
  std::string_view text;
  const char* tree;
  const char* error;  // without "[error near line 1]: ", "" for none
};
void PrintTo(const TreeCase& c, std::ostream* out) { *out << c.label << ": " << c.text; }
std::string labelOf(const testing::TestParamInfo<TreeCase>& info) { return info.param.label; }

class Tree : public testing::TestWithParam<TreeCase> {};

TEST_P(Tree, IsAsWritten) {
  const TreeCase& c = GetParam();
  Parsed document(c.text);
  EXPECT_EQ(shown(document.node()), c.tree);
  std::string prefix = *c.error == '\0' ? "" : "[error near line 1]: ";
  EXPECT_EQ(document.error(), prefix + c.error);
}

using namespace std::string_view_literals;

INSTANTIATE_TEST_SUITE_P(
    Elements, Tree,
    testing::Values(
        TreeCase{"empty_element", "<a/>", "a''", ""},
        TreeCase{"declaration_and_trailing_space", "\xEF\xBB\xBF<?xml version='1.0'?>\n<a></a>\n ",
                 "a''", ""},
        TreeCase{"children_split_the_text", "<a>x<b>1</b>yz<c/>w</a>", "a'xyzw'[b'1'@1 c''@3]", ""},
        TreeCase{"comment_joins_text", "<a>x<!-- - -- > -->y</a>", "a'xy'", ""},
        TreeCase{"cdata_is_literal", "<a>x<![CDATA[<&amp;\r\n]]]>y</a>", "a'x<&amp;\r\n]y'", ""},
        TreeCase{"instruction_in_element", "<a>x<?p q?>y</a>", "a'xy'", ""},
        TreeCase{"spaces_in_tags", "<a  b = \"1\"\tc='2' ><d /></a >", "a{b=1;c=2;}''[d''@0]", ""},
        TreeCase{"attributes_without_value", "<a b c=d e/>", "a{b=;c=;d=;e=;}''", ""},
        TreeCase{"attributes_unparted", "<a b='\"'c=\"'\"/>", "a{b=\";c=';}''", ""},
        TreeCase{
            "names_of_any_length",
            "<a><abcdefgh/><abcdefghi/><abcdefgh/><abcdefghijklmnopqrs>1</abcdefghijklmnopqrs></a>",
            "a''[abcdefgh''@0 abcdefghi''@0 abcdefgh''@0 abcdefghijklmnopqrs'1'@0]", ""},
        TreeCase{"control_character_in_name", "<a\1 b\2=''/>", "a\1{b\2=;}''", ""},
        TreeCase{"nul_ends_data", "<a>x</a>\0<"sv, "a'x'", ""}),
    labelOf);

INSTANTIATE_TEST_SUITE_P(
    Decoding, Tree,
    testing::Values(
        TreeCase{"line_ends", "<a>1\r\n2\r3\n4\r\r\n</a>", "a'1\n2\n3\n4\n\n'", ""},
        TreeCase{"hexadecimal_and_decimal", "<a>&#x41;&#65;&#x1f600;&#233;</a>",
                 "a'AA\xF0\x9F\x98\x80\xC3\xA9'", ""},
        TreeCase{"boundaries_of_lengths", "<a>&#x7f;&#x80;&#x7ff;&#x800;&#xffff;&#x10000;</a>",
                 "a'\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80'", ""},
        TreeCase{"largest_value", "<a>&#x7fffffff;&#x80000000;</a>",
                 "a'\xFD\xBF\xBF\xBF\xBF\xBF&#x80000000;'", ""},
        TreeCase{"references_that_stay", "<a>&#0;&#65 &#;&#x;&#-1;&u;&;& &lt</a>",
                 "a'&#0;&#65 &#;&#x;&#-1;&u;&;& &lt'", ""},
        TreeCase{"predefined", "<a>&lt;&gt;&amp;&quot;&apos;</a>", "a'<>&\"''", ""},
        TreeCase{"no_reference_out_of_a_reference", "<a>&amp;lt;&#38;#65;</a>", "a'&lt;&#65;'", ""},
        TreeCase{"space_in_value", "<a b='1\t2\r\n3\n4\r5 '/>", "a{b=1 2 3 4 5 ;}''", ""},
        TreeCase{"referred_space_in_value", "<a b='&#9;&#10;&#13;&#32;'/>", "a{b=\t\n\r ;}''", ""}),
    labelOf);

INSTANTIATE_TEST_SUITE_P(
    Errors, Tree,
    testing::Values(
        TreeCase{"nothing", "", "none", "root tag missing"},
        TreeCase{"no_markup", "text", "none", "root tag missing"},
        TreeCase{"only_comment", "<!---->", "none", "root tag missing"},
        TreeCase{"other_end_tag", "<a><b>x</b></c>", "a''[b'x'@0]", "unexpected closing tag </c>"},
        TreeCase{"longer_end_tag", "<a></ab>", "a''", "unexpected closing tag </ab>"},
        TreeCase{"end_tag_first", "</a>", "none", "markup outside of root element"},
        TreeCase{"cdata_first", "<![CDATA[x]]><a/>", "none", "markup outside of root element"},
        TreeCase{"second_root", "<a/><b/>", "a''", "markup outside of root element"},
        TreeCase{"text_behind_root", "<a/> t", "a''", "markup outside of root element"},
        TreeCase{"end_tag_behind_root", "<a></a></a>", "a''", "markup outside of root element"},
        TreeCase{"double_quote", "<a><b c=\"1></b></a>", "a''", "missing \""},
        TreeCase{"single_quote", "<a b='1\"/>", "none", "missing '"},
        TreeCase{"tag_end", "<a><b/ ></a>", "a''", "missing >"},
        TreeCase{"tag_at_end_of_data", "<a b", "none", "missing >"},
        TreeCase{"end_tag_end", "<a></a b>", "a''", "missing >"},
        TreeCase{"unclosed_keeps_children", "<a>x<b>1</b>y<c>z", "a'xy'[b'1'@1 c''@2]",
                 "unclosed tag <c>"},
        TreeCase{"comment", "<a>x<!-- ->", "a'x'", "unclosed <!--"},
        TreeCase{"comment_needs_four_dashes", "<a><!-->", "a''", "unclosed <!--"},
        TreeCase{"cdata", "<a><![CDATA[x]]</a>", "a''", "unclosed <![CDATA["},
        TreeCase{"doctype", "<!DOCTYPE a", "none", "unclosed <!DOCTYPE"},
        TreeCase{"subset", "<!DOCTYPE a [ ] <a/>", "none", "unclosed <!DOCTYPE"},
        TreeCase{"instruction", "<?a>", "none", "unclosed <?"},
        TreeCase{"markup", "<a><1/></a>", "a''", "unexpected <"},
        TreeCase{"declaration", "<a><!ELEMENT/></a>", "a''", "unexpected <"},
        TreeCase{"last_byte", "<a><", "a''", "unexpected <"},
        TreeCase{"binary",
                 "\x7F"
                 "ELF\1\0<"sv,
                 "none", "root tag missing"}),
    labelOf);

// Every kind of decoding and cutting that moves line feeds stands before the error.
TEST(ErrorLine, CountsTheInputsOwnLineFeeds) {
  Parsed document(
      "<?p\n\n q?>\r\n<a\nb\n=\n'1\r\n\t2'>3\r\n&#10;4\r5<![CDATA[\n]]>\n<!--\n\n-->\n</b>");
  EXPECT_EQ(document.error(), "[error near line 14]: unexpected closing tag </b>");
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
  for (size_t length = 0; length <= whole.size(); ++length) {
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

struct Utf16Case {
  const char* label;
  std::u16string_view text;
  const char* tree;
};

TEST(Utf16, OfBothByteOrders) {
  const Utf16Case cases[] = {{"latin", u"<\u00E9>\u20AC</\u00E9>", "\xC3\xA9'\xE2\x82\xAC'"},
                             {"pair", u"<a>\xD83D\xDE00</a>", "a'\xF0\x9F\x98\x80'"},
                             {"high_alone", u"<a>\xD83Dx</a>", "a'\xEF\xBF\xBDx'"},
                             {"low_alone", u"<a>\xDE00\xD83D</a>", "a'\xEF\xBF\xBD\xEF\xBF\xBD'"},
                             {"high_at_the_end", u"<a/>\xD83D", "a''"}};
  for (const Utf16Case& c : cases) {
    for (bool highFirst : {true, false}) {
      std::string bytes;
      for (char16_t unit : std::u16string(1, u'\xFEFF') + std::u16string(c.text)) {
        char high = static_cast<char>(unit >> 8);
        char low = static_cast<char>(unit & 0xFF);
        bytes += highFirst ? high : low;
        bytes += highFirst ? low : high;
      }
      EXPECT_EQ(shown(Parsed(bytes).node()), c.tree) << c.label << highFirst;
      EXPECT_EQ(shown(Parsed(bytes + "x").node()), c.tree) << c.label << " and an odd byte";
    }
  }
}

// Deeper than a small stack lets calls be; run under `ulimit -s 256` as well.
TEST(Depth, IsNoMatterOfStack) {
  constexpr size_t kDepth = 100000;
  std::string text;
  for (size_t i = 0; i < kDepth; ++i) text += "<a>";
  for (size_t i = 0; i < kDepth; ++i) text += "</a>";
  Parsed document(text);
  EXPECT_EQ(document.error(), "");
  EXPECT_EQ(written(document.node()), text);
  EXPECT_EQ(Parsed(text.substr(0, 3 * kDepth)).error(), "[error near line 1]: unclosed tag <a>");
}

class Files : public testing::Test {
 protected:
  Files() { fd_ = mkstemp(path_); }
  ~Files() override {
    close(fd_);
    unlink(path_);
  }
  void fill(const std::string& text) {
    ASSERT_EQ(pwrite(fd_, text.data(), text.size(), 0), static_cast<ssize_t>(text.size()));
  }
  char path_[32] = "/tmp/xml_test.XXXXXX";
  int fd_;
};

TEST_F(Files, AreReadByEveryEntryPoint) {
  for (size_t length : {1, 1016, 1017, 1018, 5000, 3000000}) {
    std::string text = "<a>" + std::string(length, 'x') + "</a>";
    fill(text);
    lseek(fd_, 0, SEEK_SET);
    FILE* stream = fopen(path_, "r");
    for (xml::XmlRoot* root :
         {xml::parseFile(path_), xml::parseFd(fd_), xml::parseStream(stream)}) {
      xml::Document document(root);
      ASSERT_TRUE(document);
      EXPECT_EQ(document->len, -1);
      EXPECT_EQ(std::string(document->err), "");
      EXPECT_TRUE(written(document.node()) == text) << length;
    }
    fclose(stream);
  }
}

TEST_F(Files, ThatCannotBeRead) {
  EXPECT_EQ(xml::parseFile("/nonexistent/file"), nullptr);
  EXPECT_EQ(xml::parseFd(-1), nullptr);
  const char* missing = "[error near line 1]: root tag missing";
  EXPECT_STREQ(xml::error(xml::Document(xml::parseFile(path_)).node()), missing);
  EXPECT_STREQ(xml::error(xml::Document(xml::parseFile("/tmp")).node()), missing);
  int writeOnly = open(path_, O_WRONLY);
  EXPECT_STREQ(xml::error(xml::Document(xml::parseFd(writeOnly)).node()), missing);
  close(writeOnly);
}

}  // namespace
