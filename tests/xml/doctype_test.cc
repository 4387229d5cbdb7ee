#include <gtest/gtest.h>

#include <ostream>

#include "tests/xml/document.h"

namespace {

struct SubsetCase {
  const char* label;
  const char* subset;
  const char* content;
  const char* want;  // the written document, or the error, which starts with '['
};
void PrintTo(const SubsetCase& c, std::ostream* out) { *out << c.label << ": " << c.subset; }

std::string labelOf(const testing::TestParamInfo<SubsetCase>& info) { return info.param.label; }

class Subset : public testing::TestWithParam<SubsetCase> {};

TEST_P(Subset, Declares) {
  const SubsetCase& c = GetParam();
  Parsed document(std::string("<!DOCTYPE a [") + c.subset + "]>" + c.content);
  bool failed = !document.error().empty();
  EXPECT_EQ(failed ? document.error() : written(document.node()), c.want);
}

#define ERROR "[error near line 1]: "

INSTANTIATE_TEST_SUITE_P(
    All, Subset,
    testing::Values(
        SubsetCase{"entity", "<!ENTITY e 'v'>", "<a b='&e;'>&e;&f;</a>", "<a b=\"v\">v&amp;f;</a>"},
        SubsetCase{"first_declaration_holds", "<!ENTITY e '1'><!ENTITY e '2'><!ENTITY lt 'x'>",
                   "<a>&e;&lt;</a>", "<a>1&lt;</a>"},
        SubsetCase{"entity_of_entities", "<!ENTITY e '&f;&f;'><!ENTITY f '&#38;&lt;g'>",
                   "<a>&e;</a>", "<a>&amp;&lt;g&amp;&lt;g</a>"},
        SubsetCase{"empty_and_long", "<!ENTITY e ''><!ENTITY f 'a text longer than its reference'>",
                   "<a>1&e;2&f;3&f;</a>",
                   "<a>12a text longer than its reference3a text longer than its reference</a>"},
        SubsetCase{"external_entity", "<!ENTITY e SYSTEM 'u>'><!ENTITY f PUBLIC 'p' 'u' NDATA n>",
                   "<a>&e;</a>", "<a>&amp;e;</a>"},
        SubsetCase{"markup_in_value", "<!ENTITY e '<b>]>'>", "<a>&e;</a>", "<a>&lt;b&gt;]&gt;</a>"},
        SubsetCase{"value_in_attribute", "<!ENTITY e '1\t2&#9;'>", "<a b='&e;'/>",
                   "<a b=\"1 2&#x9;\"></a>"},
        SubsetCase{"parameter_in_value", "<!ENTITY % p 'x'><!ENTITY e '%p;%q;100%'>", "<a>&e;</a>",
                   "<a>x%q;100%</a>"},
        SubsetCase{"parameter_of_declarations",
                   "<!ENTITY % p '<!ENTITY e \"v\"><!ATTLIST a b CDATA \"w\">'> %p;", "<a>&e;</a>",
                   "<a b=\"w\">v</a>"},
        SubsetCase{"parameter_in_list", "<!ENTITY % p 'b CDATA \"v\"'><!ATTLIST a %p; c CDATA 'w'>",
                   "<a/>", "<a b=\"v\" c=\"w\"></a>"},
        SubsetCase{"others_skipped",
                   "<!ELEMENT a (b|c)*><!NOTATION n SYSTEM '>'><!-- <!ENTITY e '1'> ' --><?p ]> "
                   "?>x<!ENTITY e '2'>",
                   "<a>&e;</a>", "<a>2</a>"},
        SubsetCase{"defaults",
                   "<!ATTLIST a b CDATA '1' c CDATA #FIXED '2' d CDATA #IMPLIED e ID #REQUIRED>",
                   "<a c='3'><b/></a>", "<a c=\"3\" b=\"1\"><b></b></a>"},
        SubsetCase{"first_default_holds",
                   "<!ATTLIST a b CDATA '1' b CDATA '2'><!ATTLIST a b CDATA '3' c CDATA '4'>",
                   "<a/>", "<a b=\"1\" c=\"4\"></a>"},
        SubsetCase{"types",
                   "<!ATTLIST a b CDATA ' 1  2 ' c (p|q) ' 1  2 ' d NOTATION (n) ' 1  2 ' e "
                   "NMTOKENS ' &#49;  2 '>",
                   "<a/>", "<a b=\" 1  2 \" c=\"1 2\" d=\"1 2\" e=\"1 2\"></a>"},
        SubsetCase{"type_decides_decoding", "<!ATTLIST a b CDATA '' c ID ''>",
                   "<a b=' 1\n\t2 ' c=' 1\n\t2 '><b c=' 3 '/></a>",
                   "<a b=\" 1  2 \" c=\"1 2\"><b c=\" 3 \"></b></a>"},
        SubsetCase{"circle_of_one", "<!ENTITY e '1&e;'>", "<a/>",
                   ERROR "circular entity declaration &e;"},
        SubsetCase{"circle_of_three",
                   "<!ENTITY e '&f;'><!ENTITY x '&e;'><!ENTITY f '1&g;'><!ENTITY g '&lt;&e;'>",
                   "<a/>", ERROR "circular entity declaration &g;"},
        SubsetCase{"circle_of_parameters", "<!ENTITY % p '%q;'><!ENTITY % q '%p;'>", "<a/>",
                   ERROR "circular entity declaration &q;"},
        SubsetCase{"no_circle", "<!ENTITY e '&f;&f;&g;'><!ENTITY f '&g;'><!ENTITY g 'x'>",
                   "<a>&e;</a>", "<a>xxx</a>"},
        SubsetCase{"circle_before_malformed", "<!ENTITY e '&e;'><!ATTLIST a b>", "<a/>",
                   ERROR "circular entity declaration &e;"},
        SubsetCase{"list_without_type", "<!ATTLIST a b>", "<a/>", ERROR "malformed <!ATTLIST"},
        SubsetCase{"list_without_default", "<!ATTLIST a b CDATA>", "<a/>",
                   ERROR "malformed <!ATTLIST"},
        SubsetCase{"list_with_open_enumeration", "<!ATTLIST a b (p|q 'p'>", "<a/>",
                   ERROR "malformed <!ATTLIST"},
        SubsetCase{"list_with_open_quote", "<!ATTLIST a b CDATA \"v>", "<a/>",
                   ERROR "malformed <!ATTLIST"},
        SubsetCase{"list_without_element", "<!ATTLIST >", "<a/>", ERROR "malformed <!ATTLIST"},
        SubsetCase{"list_with_odd_name", "<!ATTLIST a b/c CDATA ''>", "<a/>",
                   ERROR "malformed <!ATTLIST"},
        SubsetCase{"list_without_end", "<!ATTLIST a b CDATA 'v' ", "<a/>",
                   ERROR "unclosed <!ATTLIST"},
        SubsetCase{"comment_without_end", "<!-- -> ", "<a/>", ERROR "unclosed <!--"},
        SubsetCase{"instruction_without_end", "<?p ", "<a/>", ERROR "unclosed <?"}),
    labelOf);

TEST(Doctype, WithoutSubsetIsSkipped) {
  EXPECT_EQ(written(Parsed("<!DOCTYPE a PUBLIC '[' \">\"><a/>").node()), "<a></a>");
}

TEST(Defaults, AnswerAttr) {
  Parsed document("<!DOCTYPE a [<!ATTLIST b c CDATA 'v'>]><a><b/><b c='w'/><d/></a>");
  xml::XmlNode* b = xml::child(document.node(), "b");
  EXPECT_STREQ(xml::attr(b, "c"), "v");
  EXPECT_STREQ(xml::attr(xml::idx(b, 1), "c"), "w");
  EXPECT_EQ(xml::attr(xml::child(document.node(), "d"), "c"), nullptr);
  EXPECT_STREQ(document->attr[0][3], " ");
}

// Nine levels of ten would be 10^9 bytes; references past the bound stay as they are.
TEST(Entities, ExpandToOneMebibyteAtMost) {
  std::string subset = "<!ENTITY e0 '0123456789'>";
  for (int i = 1; i < 9; ++i) {
    std::string of = "&e" + std::to_string(i - 1) + ";";
    subset += "<!ENTITY e" + std::to_string(i) + " '";
    for (int n = 0; n < 10; ++n) subset += of;
    subset += "'>";
  }
  Parsed document("<!DOCTYPE a [" + subset + "]><a><b>&e8;</b><b c='&e0;'>&e1;&lt;</b></a>");
  xml::XmlNode* b = xml::child(document.node(), "b");
  EXPECT_EQ(document.error(), "");
  EXPECT_GT(std::strlen(b->txt), 300000U);
  EXPECT_LT(std::strlen(b->txt), 1100000U);
  EXPECT_EQ(shown(xml::idx(b, 1)), "b{c=&e0;;}'&e1;<'");
}

TEST(Instructions, KeepTheirSideAndTarget) {
  Parsed document("<?p 1?><?xml standalone='no'?><?q?><?p  2 ?><a><?p 3?></a><?q 4?>");
  EXPECT_EQ(written(document.node()), "<?p 1?>\n<?p 2 ?>\n<?q?>\n<a></a>\n<?p 3?>\n<?q 4?>");
  const char** list = document->pi[0];
  EXPECT_STREQ(list[0], "p");
  EXPECT_STREQ(list[2], "2 ");
  EXPECT_EQ(list[4], nullptr);
  EXPECT_STREQ(list[5], "<<>");
  EXPECT_EQ(document->standalone, 0);
}

}  // namespace
