#include <gtest/gtest.h>

#include <initializer_list>

#include "tests/xml/document.h"

namespace onu::xml {

namespace {

TEST(Subset, Declares) {
  struct Case {
    const char *subset, *content, *want;
  };
  for (const Case& c : std::initializer_list<Case>{
           {"<!ENTITY e 'v'>", "<a b='&e;'>&e;&f;</a>", "<a b=\"v\">v&amp;f;</a>"},
           {"<!ENTITY e '1'><!ENTITY e '2'><!ENTITY lt '&lt;x'>", "<a>&e;&lt;</a>", "<a>1&lt;</a>"},
           {"<!ENTITY e '&f;&f;'><!ENTITY f '&#38;&lt;g'>", "<a>&e;</a>",
            "<a>&amp;&lt;g&amp;&lt;g</a>"},
           {"<!ENTITY e ''><!ENTITY f 'a text longer than its reference'>", "<a>1&e;2&f;3&f;</a>",
            "<a>12a text longer than its reference3a text longer than its reference</a>"},
           {"<!ENTITY e SYSTEM 'u>'><!ENTITY f PUBLIC 'p' 'u' NDATA n><!ENTITY g '1'>",
            "<a>&e;&g;</a>", "<a>&amp;e;1</a>"},
           {"<!NOTATION n SYSTEM '><!ENTITY e \"1\">'><!ENTITY e '2'>", "<a>&e;</a>", "<a>2</a>"},
           {"<!ENTITY e '<b>]>'>", "<a>&e;</a>", "<a>&lt;b&gt;]&gt;</a>"},
           {"<!ENTITY e '1\t2&#9;'>", "<a b='&e;'/>", "<a b=\"1 2&#x9;\"></a>"},
           {"<!ENTITY % p 'x'><!ENTITY e '%p;%q;100%'>", "<a>&e;</a>", "<a>x%q;100%</a>"},
           {"<!ENTITY % lt 'x'><!ENTITY e '1%lt;2%lt;'>", "<a>&e;&lt;</a>", "<a>1x2x&lt;</a>"},
           {"<!ENTITY % p '<!ENTITY e \"v\"><!ATTLIST a b CDATA \"w\">'> %p;", "<a>&e;</a>",
            "<a b=\"w\">v</a>"},
           {"<!ENTITY % p 'b CDATA \"v\"'><!ATTLIST a %p; c CDATA 'w'>", "<a/>",
            "<a b=\"v\" c=\"w\"></a>"},
           {"<!ELEMENT a (b|c)*><!NOTATION n SYSTEM '>'><!-- <!ENTITY e '1'> ' --><?p ]> "
            "?>x<!ENTITY e '2'>",
            "<a>&e;</a>", "<a>2</a>"},
           {"<!ATTLIST a b CDATA '1' c CDATA #FIXED '2' d CDATA #IMPLIED e ID #REQUIRED>",
            "<a c='3'><b/></a>", "<a c=\"3\" b=\"1\"><b></b></a>"},
           {"<!ATTLIST a b CDATA '1' b CDATA '2'><!ATTLIST a b CDATA '3' c CDATA '4'>", "<a/>",
            "<a b=\"1\" c=\"4\"></a>"},
           {"<!ATTLIST a b CDATA ' 1  2 ' c (p|q) ' 1  2 ' d NOTATION (n) ' 1  2 ' e "
            "NMTOKENS ' &#49;  2 '>",
            "<a/>", "<a b=\" 1  2 \" c=\"1 2\" d=\"1 2\" e=\"1 2\"></a>"},
           {"<!ATTLIST a b CDATA '' c ID ''>", "<a b=' 1\n\t2 ' c=' 1\n\t2 '><b c=' 3 '/></a>",
            "<a b=\" 1  2 \" c=\"1 2\"><b c=\" 3 \"></b></a>"},
           {"<!ENTITY e '&f;&f;&g;'><!ENTITY f '&g;'><!ENTITY g 'x'>", "<a>&e;</a>", "<a>xxx</a>"},
       }) {
    Parsed document(std::string("<!DOCTYPE a [") + c.subset + "]>" + c.content);
    EXPECT_EQ(document.error(), "") << c.subset;
    EXPECT_EQ(written(document.node()), c.want) << c.subset;
  }
}

// Several document types add up, wherever they stand. What stands behind an error says nothing.
TEST(Subset, OfEveryDocumentTypeDeclares) {
  struct Case {
    const char *text, *want, *error;
  };
  for (const Case& c : std::initializer_list<Case>{
           {"<!DOCTYPE a [<!ENTITY e '1'>]><!DOCTYPE a [<!ENTITY e '3'><!ENTITY f '&e;2'>]>"
            "<a><!DOCTYPE a [<!ATTLIST a b CDATA 'x'>]>&f;</a>",
            "<a b=\"x\">12</a>", ""},
           {"<!DOCTYPE a []><!DOCTYPE a [<!-- ]> --><!ENTITY e ' ]> '><?p ]> ?>] ><a>&e;</a>",
            "<a> ]&gt; </a>", ""},
           {"<!DOCTYPE a [<!E ' ]><!DOCTYPE a [<!-- ]><!ENTITY e '1'>]><a>&e;</a>", "",
            "unclosed <!--"},
           {"<!DOCTYPE a []><a><!DOCTYPE a [<!ATTLIST a b CDATA 'x'><!ATTLIST a b>]><b/></a>",
            "<a b=\"x\"></a>", "malformed <!ATTLIST"},
           {"<a><!DOCTYPE a []><!DOCTYPE a [<!ATTLIST a ]><b/></a>", "<a></a>",
            "unclosed <!ATTLIST"},
           {"<a><!DOCTYPE a [<!ENTITY e '&e;'><!ATTLIST a b CDATA 'x'>]></a>", "<a></a>",
            "circular entity declaration &e;"},
           {"<a><!DOCTYPE a [<!ATTLIST a b CDATA 'x'><!ENTITY e '&f;'>]><!DOCTYPE a [<!ENTITY f "
            "'&e;'><!ATTLIST a c CDATA 'y'>]></a>",
            "<a b=\"x\"></a>", "circular entity declaration &f;"},
           {"<a><!DOCTYPE a [<!ENTITY x 'a long text, then the circle is not met at once'>"
            "<!ENTITY y 'the same again, and again'><!ENTITY e '&f;'><!ATTLIST a b CDATA 'x'>"
            "<!ENTITY f '&e;'><!ATTLIST a c CDATA 'y'><!ATTLIST d e CDATA 'y'>]></a>",
            "<a b=\"x\"></a>", "circular entity declaration &f;"},
       }) {
    Parsed document(c.text);
    EXPECT_EQ(document.error(),
              *c.error == '\0' ? "" : std::string("[error near line 1]: ") + c.error)
        << c.text;
    EXPECT_EQ(written(document.node()), c.want) << c.text;
  }
}

// What stands behind the circle would be half a mebibyte.
TEST(Entities, EndWithTheDeclarationThatClosesACircle) {
  Parsed document("<!DOCTYPE a [<!ENTITY % a '%a;%a;'><!ENTITY b '%a;'><!ENTITY % c '%b;'>]><a/>");
  EXPECT_EQ(document.error(), "[error near line 1]: circular entity declaration &a;");
  EXPECT_EQ(document->ent[10], nullptr);
  Parsed general("<!DOCTYPE a [<!ENTITY b '&c;'><!ENTITY c '&b;'><!ENTITY d ''>]><a/>");
  EXPECT_STREQ(general->ent[12], "c;");
  EXPECT_EQ(general->ent[14], nullptr);
}

TEST(Subset, IsRefused) {
  for (const auto& [subset, error] : std::initializer_list<std::pair<const char*, const char*>>{
           {"<!ENTITY e '1&e;'>", "circular entity declaration &e;"},
           {"<!ENTITY e '&f;'><!ENTITY x '&e;'><!ENTITY f '1&g;'><!ENTITY g '&lt;&e;'>",
            "circular entity declaration &g;"},
           {"<!ENTITY % p '%q;'><!ENTITY % q '%p;'>", "circular entity declaration &q;"},
           {"<!ENTITY e '&e;'><!ATTLIST a b>", "circular entity declaration &e;"},
           {"<!ENTITY e '&f;'><!ENTITY f '&e;'><!ENTITY g ''>", "circular entity declaration &f;"},
           {"<!ATTLIST a b>", "malformed <!ATTLIST"},
           {"<!ATTLIST a b CDATA>", "malformed <!ATTLIST"},
           {"<!ATTLIST a b CDATA #>", "malformed <!ATTLIST"},
           {"<!ATTLIST a b CDATA", "unclosed <!ATTLIST"},
           {"<!ATTLIST a b (p|q 'p'>", "malformed <!ATTLIST"},
           {"<!ATTLIST a b CDATA \"v>", "malformed <!ATTLIST"},
           {"<!ATTLIST a b/c CDATA ''>", "malformed <!ATTLIST"},
           {"<!ATTLIST a b CDATA 'v' ", "unclosed <!ATTLIST"},
           {"<!-- -> ", "unclosed <!--"},
           {"<?p ", "unclosed <?"}}) {
    Parsed document(std::string("<!DOCTYPE a [") + subset + "]><a/>");
    EXPECT_EQ(document.error(), std::string("[error near line 1]: ") + error) << subset;
  }
}

TEST(Defaults, AnswerAttr) {
  Parsed document(
      "<!DOCTYPE a [<!ATTLIST b c CDATA 'v'><!ATTLIST d e ID 'x'>]><a><b/><b c='w'/><d/></a>");
  XmlNode* b = child(document.node(), "b");
  EXPECT_STREQ(attr(b, "c"), "v");
  EXPECT_STREQ(attr(idx(b, 1), "c"), "w");
  EXPECT_EQ(attr(child(document.node(), "d"), "c"), nullptr);
  EXPECT_STREQ(attr(child(document.node(), "d"), "e"), "x");
  EXPECT_STREQ(document->attr[0][3], " ");
  EXPECT_STREQ(document->attr[1][3], "*");
  EXPECT_EQ(document->attr[2], nullptr);
}

// 20,000 elements would write 8 MiB of a default; those that do not fit are left out.
TEST(Defaults, WriteOneMebibyteAtMost) {
  std::string text = "<!DOCTYPE a [<!ATTLIST b c CDATA '" + std::string(400, 'v') + "'>]><a>";
  for (int i = 0; i < 20000; ++i) {
    text += "<b/>";
  }
  Parsed document(text + "<b c='own'/></a>");
  const std::string all = written(document.node());
  EXPECT_GT(all.size(), std::size_t{1} << 20);
  EXPECT_LT(all.size(), (std::size_t{1} << 20) + 20001 * 16);
  EXPECT_EQ(all.substr(0, 12), "<a><b c=\"vvv");
  EXPECT_EQ(all.substr(all.size() - 30), "</b><b></b><b c=\"own\"></b></a>");
  EXPECT_TRUE(written(document.node()) == all);
}

// Every level doubles the one before, to 10 GB; references past the bound stay as they are.
TEST(Entities, ExpandToOneMebibyteAtMost) {
  std::string subset = "<!ENTITY e0 '0123456789'>";
  for (int i = 1; i <= 30; ++i) {
    std::string of = "&e" + std::to_string(i - 1) + ";";
    subset += "<!ENTITY e" + std::to_string(i) + " '" + of + of + "'>";
  }
  Parsed document("<!DOCTYPE a [" + subset + "]><a><b>&e30;</b><b c='&e0;'>&e1;&lt;</b></a>");
  XmlNode* b = child(document.node(), "b");
  EXPECT_EQ(document.error(), "");
  EXPECT_GT(std::strlen(b->txt), 300000U);
  EXPECT_LT(std::strlen(b->txt), 1100000U);
  EXPECT_EQ(shown(idx(b, 1)), "b{c=&e0;;}'&e1;<'");
}

TEST(Instructions, KeepTheirSideAndTarget) {
  Parsed document(
      "<?p 1?><?xml v='standalone=\"yes\"' standalone='no'?><?q?><?p  2 ?><a><?p 3?></a><?q "
      "4?><?xml standalone='yes'?>");
  EXPECT_EQ(written(document.node()), "<?p 1?>\n<?p 2 ?>\n<?q?>\n<a></a>\n<?p 3?>\n<?q 4?>");
  EXPECT_STREQ(document->pi[0][5], "<<>");
  EXPECT_EQ(document->standalone, 0);
  EXPECT_EQ(Parsed("<?xml standalone='nay'?><a/>")->standalone, 0);
}

}  // namespace

}  // namespace onu::xml
