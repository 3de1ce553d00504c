#include "crashrpt/report_xml.h"

#include <array>
#include <cinttypes>
#include <cstdio>

#include "crashrpt/crash_kind.h"
#include "crashrpt/report_name.h"
#include "crashrpt/xml_text.h"

namespace {

std::string Element(const char* name, const std::string& text) {
  return std::string("<") + name + ">" + XmlText(text) + "</" + name + ">";
}

std::string Attribute(const char* name, const std::string& value) {
  return std::string(" ") + name + "=\"" + XmlText(value) + "\"";
}

std::string Hexadecimal(uint64_t number, int digits) {
  std::array<char, 32> text = {};
  std::snprintf(text.data(), text.size(), "0x%0*" PRIX64, digits, number);
  return text.data();
}

std::string FileElement(const std::string& name) {
  return "<file" + Attribute("name", name) + "/>";
}

std::string MissingElement(const std::string& what, const std::string& reason) {
  return "<missing" + Attribute("what", what) + Attribute("reason", reason) + "/>";
}

std::string CrashElement(const CrashFacts& crash) {
  const auto kind = static_cast<CrashKind>(crash.kind);
  return "<crash" + Attribute("type", std::to_string(crash.kind)) + Attribute("name", CrashKindName(kind)) +
         Attribute("code", Hexadecimal(crash.exceptionCode, 8)) +
         Attribute("address", Hexadecimal(crash.exceptionAddress, 16)) +
         Attribute("process", std::to_string(crash.processId)) +
         Attribute("thread", std::to_string(crash.threadId)) + "/>";
}

}  // namespace

std::string ReportXml(const ReportContents& report) {
  std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<report format=\"1\">\n";
  const auto line = [&xml](const std::string& text) { xml += "  " + text + "\n"; };
  line(Element("guid", report.guid));
  line(Element("application", report.applicationName));
  line(Element("version", report.applicationVersion));
  line(Element("time", IsoTime(report.crash.fileTime)));
  line(CrashElement(report.crash));
  line(Element("email", report.emailTo));
  line(Element("subject", report.emailSubject));
  line(Element("text", report.emailText));
  for (const std::string& file : report.files) line(FileElement(file));
  for (const auto& [what, reason] : report.missing) line(MissingElement(what, reason));
  for (const Property& property : report.properties) {
    line("<property" + Attribute("name", property.name) + Attribute("value", property.value) + "/>");
  }
  return xml + "</report>\n";
}

bool ListsFile(const std::string& reportXml, const std::string& name) {
  return reportXml.find(FileElement(name)) != std::string::npos;
}

std::string WithoutFile(const std::string& reportXml, const std::string& name, const std::string& reason) {
  const std::string element = FileElement(name);
  const size_t found = reportXml.find(element);
  if (found == std::string::npos) return reportXml;
  return std::string(reportXml).replace(found, element.size(), MissingElement(name, reason));
}

DeliveryTexts ReadDeliveryTexts(const std::string& reportXml) {
  return {XmlElementText(reportXml, "guid"),    XmlElementText(reportXml, "application"),
          XmlElementText(reportXml, "version"), XmlElementText(reportXml, "email"),
          XmlElementText(reportXml, "subject"), XmlElementText(reportXml, "text")};
}
