// report.xml: what happened, in a form for people and programs. UTF-8. Portable.
#ifndef MOSAICON_CRASHRPT_REPORT_XML_H_
#define MOSAICON_CRASHRPT_REPORT_XML_H_

#include <string>
#include <utility>
#include <vector>

#include "crashrpt/hand_over.h"
#include "crashrpt/property_area.h"

// All texts in UTF-8. What an upload tells beside the files.
struct DeliveryTexts {
  std::string guid;
  std::string applicationName;
  std::string applicationVersion;
  std::string emailTo;
  std::string emailSubject;
  std::string emailText;
};

struct ReportContents : DeliveryTexts {
  CrashFacts crash = {};
  std::vector<Property> properties;
  std::vector<std::string> files;  // beside report.xml, those that are there
  // What should be there and is not, with the reason.
  std::vector<std::pair<std::string, std::string>> missing;
};

// The whole document.
std::string ReportXml(const ReportContents& report);

// Whether a document of ReportXml names this file as one that belongs to it.
bool ListsFile(const std::string& reportXml, const std::string& name);

// The same document, but with this file as one that is missing.
std::string WithoutFile(const std::string& reportXml, const std::string& name, const std::string& reason);

// Reads back a document of ReportXml.
DeliveryTexts ReadDeliveryTexts(const std::string& reportXml);

#endif  // MOSAICON_CRASHRPT_REPORT_XML_H_
