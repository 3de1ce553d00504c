#include "crashrpt/xml_text.h"

#include <gtest/gtest.h>

namespace {

TEST(XmlText, EscapesWhatMarkupIsMadeOf) {
  EXPECT_EQ(XmlText("a<b>&\"c\" 'd'"), "a&lt;b&gt;&amp;&quot;c&quot; &apos;d&apos;");
}

TEST(XmlText, KeepsLineBreaksAndTabsThroughEveryParser) {
  EXPECT_EQ(XmlText("1\t2\r\n3"), "1&#9;2&#13;&#10;3");
}

TEST(XmlText, KeepsCharactersOfAllLengths) {
  const std::string text =
      "\x7F \xC2\x80 \xC3\xBC \xE2\x82\xAC \xEF\xBF\xBD \xF0\x9F\x97\xBA \xF4\x8F\xBF\xBF";
  EXPECT_EQ(XmlText(text), text);
}

TEST(XmlText, DropsWhatXmlForbids) {
  std::string controls;
  for (char c = 0; c < 32; ++c) {
    if (c != '\t' && c != '\n' && c != '\r') controls += c;
  }
  ASSERT_EQ(controls.size(), 29U);
  EXPECT_EQ(XmlText("a" + controls + "b"), "ab");
  EXPECT_EQ(XmlText("a\xEF\xBF\xBE\xEF\xBF\xBF"
                    "b"),
            "ab")
      << "U+FFFE and U+FFFF";
}

TEST(XmlText, DropsBytesThatAreNoUtf8) {
  EXPECT_EQ(XmlText("a\x80\xBF"
                    "b"),
            "ab")
      << "without a first byte";
  EXPECT_EQ(XmlText("a\xC0\xAF\xE0\x80\xAF\xF0\x80\x80\xAF"
                    "b"),
            "ab")
      << "longer than needed";
  EXPECT_EQ(XmlText("a\xED\xA0\x80"
                    "b"),
            "ab")
      << "half of a pair";
  EXPECT_EQ(XmlText("a\xF4\x90\x80\x80\xF5\xFE\xFF"
                    "b"),
            "ab")
      << "beyond Unicode";
  EXPECT_EQ(XmlText("a\xE2\x82<"), "a&lt;") << "cut in the middle";
  EXPECT_EQ(XmlText("a\xE2"), "a") << "cut at the end";
}

TEST(XmlElementText, ReadsBackWhatXmlTextWrote) {
  const std::string text = "a<b>&amp;\"c\"\t'd'\r\n\xE2\x82\xAC";
  EXPECT_EQ(XmlElementText("<r><x>1</x><t>" + XmlText(text) + "</t></r>", "t"), text);
}

TEST(XmlElementText, TakesTheFirstAndNothingWhenThereIsNone) {
  EXPECT_EQ(XmlElementText("<t>1</t><t>2</t>", "t"), "1");
  EXPECT_EQ(XmlElementText("<t></t>", "t"), "");
  EXPECT_EQ(XmlElementText("<tt>1</tt>", "t"), "");
  EXPECT_EQ(XmlElementText("<t>1", "t"), "");
  EXPECT_EQ(XmlElementText("", "t"), "");
}

}  // namespace
