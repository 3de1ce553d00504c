#include "crashrpt/report_xml.h"

#include <gtest/gtest.h>

#include "crashrpt/crash_kind.h"

namespace {

ReportContents Example() {
  ReportContents report;
  report.guid = "6f9619ff-8b86-d011-b42d-00c04fc964ff";
  report.applicationName = "A & B";
  report.applicationVersion = "1.2";
  report.emailTo = "support@example.org";
  report.emailSubject = "<subject>";
  report.emailText = "two\r\nlines";
  report.crash = {5, 0xC0000409, 0x7FF612340000, 0x1000, 134'081'958'640'000'000, 4711, 815};
  report.properties = {{"image", "C:\\\"x\".tif"}};
  report.files = {"crashdump.dmp"};
  report.missing = {{"desktop.png", "no screen"}};
  return report;
}

TEST(ReportXml, TellsEverything) {
  EXPECT_EQ(ReportXml(Example()),
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
            "<report format=\"1\">\n"
            "  <guid>6f9619ff-8b86-d011-b42d-00c04fc964ff</guid>\n"
            "  <application>A &amp; B</application>\n"
            "  <version>1.2</version>\n"
            "  <time>2025-11-21T10:51:04Z</time>\n"
            "  <crash type=\"5\" name=\"buffer overrun\" code=\"0xC0000409\" address=\"0x00007FF612340000\""
            " process=\"4711\" thread=\"815\"/>\n"
            "  <email>support@example.org</email>\n"
            "  <subject>&lt;subject&gt;</subject>\n"
            "  <text>two&#13;&#10;lines</text>\n"
            "  <file name=\"crashdump.dmp\"/>\n"
            "  <missing what=\"desktop.png\" reason=\"no screen\"/>\n"
            "  <property name=\"image\" value=\"C:\\&quot;x&quot;.tif\"/>\n"
            "</report>\n");
}

TEST(ReportXml, GivesItsTextsBackForTheDelivery) {
  const DeliveryTexts texts = ReadDeliveryTexts(ReportXml(Example()));
  EXPECT_EQ(texts.guid, "6f9619ff-8b86-d011-b42d-00c04fc964ff");
  EXPECT_EQ(texts.applicationName, "A & B");
  EXPECT_EQ(texts.applicationVersion, "1.2");
  EXPECT_EQ(texts.emailTo, "support@example.org");
  EXPECT_EQ(texts.emailSubject, "<subject>");
  EXPECT_EQ(texts.emailText, "two\r\nlines");
}

TEST(ReportXml, DoesNotTakeTextsForMarkup) {
  ReportContents report = Example();
  report.applicationName = "</application><version>9</version>";
  const DeliveryTexts texts = ReadDeliveryTexts(ReportXml(report));
  EXPECT_EQ(texts.applicationName, report.applicationName);
  EXPECT_EQ(texts.applicationVersion, "1.2");
}

TEST(ReportXml, ListsWhatBelongsToIt) {
  const std::string xml = ReportXml(Example());
  EXPECT_TRUE(ListsFile(xml, "crashdump.dmp"));
  EXPECT_FALSE(ListsFile(xml, "desktop.png"));
  ReportContents report = Example();
  report.files.clear();
  report.properties = {{"<file name=\"crashdump.dmp\"/>", "<file name=\"crashdump.dmp\"/>"}};
  EXPECT_FALSE(ListsFile(ReportXml(report), "crashdump.dmp"));
}

TEST(ReportXml, CanDoWithoutAFile) {
  ReportContents report = Example();
  report.files = {"crashdump.dmp", "desktop.png"};
  report.missing = {};
  ReportContents without = report;
  without.files = {"crashdump.dmp"};
  without.missing = {{"desktop.png", "<no>"}};
  EXPECT_EQ(WithoutFile(ReportXml(report), "desktop.png", "<no>"), ReportXml(without));
  EXPECT_EQ(WithoutFile(ReportXml(without), "desktop.png", "again"), ReportXml(without));
}

TEST(CrashKind, HasANameForEachOfTheThirteen) {
  EXPECT_STREQ(CrashKindName(CrashKind::kStructuredException), "structured exception");
  EXPECT_STREQ(CrashKindName(CrashKind::kNewFault), "new operator fault");
  EXPECT_STREQ(CrashKindName(CrashKind::kSigTerm), "SIGTERM");
  EXPECT_STREQ(CrashKindName(static_cast<CrashKind>(13)), "unknown");
}

TEST(CrashKind, IsToldApartByTheExceptionCode) {
  EXPECT_EQ(KindOfException(0xC0000005), CrashKind::kStructuredException);
  EXPECT_EQ(KindOfException(0xC0000409), CrashKind::kBufferOverrun);
  EXPECT_EQ(KindOfException(0xC0000417), CrashKind::kInvalidParameter);
}

}  // namespace
