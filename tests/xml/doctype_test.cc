#include "tests/xml/document.h"

namespace onu::xml {

// What is written of documents that begin with an internal subset, whose opening is left out.
static void expectTexts(std::initializer_list<Case> cases) {
  expectEach(cases, written, "<!DOCTYPE a [");
}

// Several document types add up, wherever they stand.
TEST(Subset, Declares) {
  expectTexts({
      {"<!ENTITY\tversion\r'5'>]><a b='&version;'>&version;&f;</a>", "<a b=\"5\">5&amp;f;</a>"},
      {"<!ENTITY e '1'><!ENTITY e '2'><!ENTITY amp '&amp;'>]><a>&e;&amp;</a>", "<a>1&amp;</a>"},
      {"<!ENTITY e '&f;&f;'><!ENTITY f '&#38;&lt;g'>]><a>&e;</a>", "<a>&amp;&lt;g&amp;&lt;g</a>"},
      {"<!ENTITY e SYSTEM \"><!ENTITY e ''>\"><!ENTITY ''><?]>?>x<!ENTITY f '1'>]><a>&e;&;&f;</a>",
       "<a>&amp;e;&amp;;1</a>"},
      {"<!ENTITY e '1\t2&#9;'>]><a b='&e;'/>", "<a b=\"1 2&#x9;\"></a>"},
      {"<!ENTITY % p 'x'><!ENTITY e '%p;%q;100%'>]><a>&e;</a>", "<a>x%q;100%</a>"},
      {"<!ENTITY % lt 'x'><!ENTITY e '1%lt;2%lt;'>]><a>&e;&lt;</a>", "<a>1x2x&lt;</a>"},
      {"<!NOTATION n '><!ENTITY e \"\">'><!--<!ENTITY e '1'>'--><!ENTITY e '2'>]><a>&e;</a>",
       "<a>2</a>"},
      {"\" <!ENTITY e '1'> ' ]><a>&e;' ]>\" ]></a>", "<a>1' ]&gt;\" ]&gt;</a>"},
      {"<!ENTITY % p ' b ID'><!ATTLIST a %p; 'v' &p; ID 'w'>]><a/>", "<a b=\"v\" &p;=\"w\"></a>"},
      {"<!ATTLIST a b CDATA '1' c CDATA #FIXED '2' d CDATA #IMPLIED e ID #REQUIRED>]><a c='3'/>",
       "<a c=\"3\" b=\"1\"></a>"},
      {"<!ATTLIST a b CDATA '1' b CDATA '2'><!ATTLIST a b CDATA '3' c CDATA '4'>]><a><b/></a>",
       "<a b=\"1\" c=\"4\"><b></b></a>"},
      {"<!ATTLIST a b CDATA ' 1  2 ' c () ' 1  2 ' d NOTATION (n) ' &#49;  2 '>%]><a/>",
       "<a b=\" 1  2 \" c=\"1 2\" d=\"1 2\"></a>"},
      {"<!ATTLIST a b CDATA '' c ID ''>]><a b=' 1\n\t2 ' c=' 1\n\t2 '><b c=' 3 '/></a>",
       "<a b=\" 1  2 \" c=\"1 2\"><b c=\" 3 \"></b></a>"},
      {"<!ENTITY e '1'>]><!DOCTYPE a [<!ENTITY e '3'><!ENTITY f '&e;2'>]>"
       "<a><!DOCTYPE a [<!ATTLIST a b CDATA 'x'>]>&f;</a>",
       "<a b=\"x\">12</a>"},
      {"]><!DOCTYPE a [<!-- ]> --><?>]> ?><!ENTITY e ' ]> '>] ><a>&e;</a>", "<a> ]&gt; </a>"},
  });
}

// What stands behind an error says nothing.
TEST(Subset, IsRefused) {
  expectTexts({
      {"<!E ' ]><!DOCTYPE a [<!-- ]><!ENTITY e '1'>]><a>&e;</a>", "", "unclosed <!--"},
      {"]><a><!DOCTYPE a [<!ATTLIST a b CDATA 'x'><!ATTLIST a b>]><b/></a>", "<a b=\"x\"></a>",
       "malformed <!ATTLIST"},
      {"]><a><!DOCTYPE a [<!ATTLIST a b CDATA 'x'><!ENTITY e '&f;'>]>"
       "<!DOCTYPE a [<!ENTITY f '&e;'><!ATTLIST a c CDATA 'y'>]></a>",
       "<a b=\"x\"></a>", "circular entity declaration &f;"},
      {"<!ENTITY e '1&e;'><!ATTLIST a b>]>", "", "circular entity declaration &e;"},
      {"<!ENTITY e '&f;'><!ENTITY x '&e;'><!ENTITY f '1&g;'><!ENTITY g '&lt;&e;'>]>", "",
       "circular entity declaration &g;"},
      {"<!ENTITY % p '%q;'><!ENTITY % q '%p;'>]>", "", "circular entity declaration &q;"},
  });
  for (const std::string list : {"", "b", "b CDATA", "b CDATA 'v' "}) {
    expectTexts({{"<!ATTLIST a " + list + "]>", "", "unclosed <!ATTLIST"}});
  }
  for (const std::string list :
       {"b NOTATION ", "b CDATA #FIXED ", "b CDATA>", "b CDATA #>", "b (p|q 'p'>", "b CDATA \"v>",
        "b/c 'v'>", "b=c CDATA 'v'>", "b #FIXED 'v'>"}) {
    expectTexts({{"<!ATTLIST a " + list + "]>", "", "malformed <!ATTLIST"}});
  }
}

// What stands behind the circle would be half a mebibyte.
TEST(Entities, EndWithTheDeclarationThatClosesACircle) {
  Parsed document("<!DOCTYPE a [<!ENTITY % a '%a;%a;'><!ENTITY b '%a;'><!ENTITY % c '%b;'>]><a/>");
  EXPECT_STREQ(document->err, "[error near line 1]: circular entity declaration &a;");
  EXPECT_EQ(document->ent[10], nullptr);
  // Some chains that end in the long text are paid for; behind more no circle is looked for.
  for (const int count : {115, 125}) {
    Parsed general("<!DOCTYPE a [<!ENTITY b '" + numbered(999, "&c;") + "'>" +
                   numbered(count, "<!ENTITY e# '&f#;&b;'><!ENTITY f# '&b;&b;'>") +
                   "<!ENTITY c '&b;'><!ENTITY d ''>]><a/>");
    EXPECT_STREQ(general->ent[12 + 4 * count], "c;");
    EXPECT_EQ(general->ent[14 + 4 * count] == nullptr, count == 115) << general->err;
  }
}

// It would be 10 MB; references past the bound stay as they are, and so do shorter ones.
TEST(Entities, ExpandToOneMebibyteAtMost) {
  Parsed document("<!DOCTYPE a [<!ENTITY d '1'><!ENTITY e '0123456789'><!ENTITY f '" +
                  numbered(1000, "&e;") + "'><!ENTITY g '" + numbered(1000, "&f;") +
                  "'>]><a><b>&g;</b><b c='&d;'>&e;&lt;</b></a>");
  XmlNode* const b = child(document.node(), "b");
  EXPECT_NEAR(static_cast<double>(std::strlen(b->txt)), 900000, 200000);
  EXPECT_EQ(shown(b->next), "b(c=&d;)'&e;<'");
  const std::string kibibyte(1024, ' ');
  expectTexts({{"<!ENTITY % p '" + kibibyte + "'><!ENTITY e '" + kibibyte + "'>" +
                    numbered(1023, "%p;") + "]><a>&e;&e;</a>",
                "<a>" + kibibyte + "&amp;e;</a>"}});
}

TEST(Defaults, AnswerAttr) {
  Parsed document(
      "<!DOCTYPE a [<!ATTLIST b c CDATA 'v'><!ATTLIST d e ID 'x'>]><a><b/><b d='' c='w'/><d/></a>");
  const XmlNode* const b = document.node()->child;
  EXPECT_EQ(std::string(attr(b, "c")) + attr(b->next, "c") + attr(b->sibling, "e"), "vwx");
  EXPECT_EQ(attr(b->sibling, "c"), nullptr);
  EXPECT_EQ(std::string(document->attr[0][3]) + document->attr[1][3], " *");
  EXPECT_EQ(document->attr[2], nullptr);
}

// Of few attributes and of many.
TEST(Defaults, LeaveWhatIsCarried) {
  const std::string few = "<b" + numbered(8, " c#=\"\"");
  const Parsed document("<!DOCTYPE a [<!ATTLIST b c7 CDATA 'x'>]><a>" +
                        numbered(2, few + "/>" + few + " c7='' d=\"\"/>") + "</a>");
  EXPECT_EQ(written(document.node()),
            "<a>" + numbered(2, few + "></b>" + few + " d=\"\"></b>") + "</a>");
}

// 20,000 elements would write 10 MiB of a default; from the first one that does not fit, none is.
TEST(Defaults, WriteOneMebibyteAtMost) {
  const std::string value(540, 'v');
  Parsed document("<!DOCTYPE a [<!ATTLIST b c CDATA '" + value + "'><!ATTLIST z c CDATA ''>]><a>" +
                  numbered(20000, "<b/>") + "<b c='own'/><z/></a>");
  const std::string all = written(document.node());
  EXPECT_EQ(all.size(), 1923 * 545 + 20001 * 7 + 22);
  EXPECT_EQ(all.substr(0, 12), "<a><b c=\"vvv");
  EXPECT_EQ(all.substr(all.size() - 37), "</b><b></b><b c=\"own\"></b><z></z></a>");
  EXPECT_TRUE(written(document.node()) == all);
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

}  // namespace onu::xml
