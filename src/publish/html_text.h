// How names get into HTML. Portable; any thread.
#ifndef MOSAICON_PUBLISH_HTML_TEXT_H_
#define MOSAICON_PUBLISH_HTML_TEXT_H_

#include <string>

// Text between tags or in a quoted attribute: < > & " ' become entities.
std::string EscapeHtml(const std::string& text);

// One component of an address in a quoted attribute. What would end or change the path, and every byte
// that is no printable ASCII, is percent-encoded, and so is a blank at either end; then as EscapeHtml.
std::string EscapePathComponent(const std::string& name);

// An address that is itself a parameter of another one, in a quoted attribute.
std::string EscapeQueryValue(const std::string& value);

#endif  // MOSAICON_PUBLISH_HTML_TEXT_H_
