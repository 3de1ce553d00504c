#include "publish/html_text.h"

#include <gtest/gtest.h>

namespace {

TEST(HtmlText, LeavesPlainTextAlone) {
  for (const std::string& text :
       {std::string(), std::string("preview.jpg"), std::string("my data (2)_v-1.0~a!$*,;=@+[]{}|^`")}) {
    EXPECT_EQ(EscapeHtml(text), text);
    EXPECT_EQ(EscapePathComponent(text), text);
  }
  EXPECT_EQ(EscapeQueryValue("http://www.maps.example/my maps/index.html"),
            "http://www.maps.example/my maps/index.html");
}

TEST(HtmlText, WritesMarkupAsEntities) {
  EXPECT_EQ(EscapeHtml("<a href=\"x\" title='y'>&amp;"),
            "&lt;a href=&quot;x&quot; title=&#39;y&#39;&gt;&amp;amp;");
  EXPECT_EQ(EscapeHtml("caf\xE9 %20"), "caf\xE9 %20");
}

TEST(HtmlText, KeepsANameInItsPlaceOfAnAddress) {
  const struct {
    const char* name;
    const char* escaped;
  } cases[] = {{"a#b", "a%23b"},
               {"a?b", "a%3Fb"},
               {"100%25", "100%2525"},
               {"../a", "..%2Fa"},
               {"a\\b", "a%5Cb"},
               {"c:a", "c%3Aa"},
               {"javascript:alert(1)", "javascript%3Aalert(1)"},
               {"caf\xE9", "caf%E9"},
               {"caf\xC3\xA9", "caf%C3%A9"},
               {"a\tb\r\n", "a%09b%0D%0A"},
               {"\x7F", "%7F"},
               {" a b ", "%20a b%20"},
               {" ", "%20"},
               {"<&>'\"", "&lt;&amp;&gt;&#39;&quot;"}};
  for (const auto& each : cases) EXPECT_EQ(EscapePathComponent(each.name), each.escaped);
}

TEST(HtmlText, KeepsAnAddressWithinItsParameter) {
  EXPECT_EQ(EscapeQueryValue("http://a/?b&c#d+e%20\"f"), "http://a/?b%26c%23d%2Be%2520&quot;f");
}

}  // namespace
