// Text in XML, as much of it as reports need. UTF-8. Portable.
#ifndef MOSAICON_CRASHRPT_XML_TEXT_H_
#define MOSAICON_CRASHRPT_XML_TEXT_H_

#include <string>
#include <string_view>

// The text for use in an element or in an attribute: escaped, without what XML 1.0 forbids and without
// bytes that are no UTF-8. Line breaks and tabs become references, so that every parser keeps them.
std::string XmlText(std::string_view utf8);

// The text of the first element of this name that holds nothing but text, as XmlText was given it;
// empty when there is none. Only for documents that this library wrote: it is no parser.
std::string XmlElementText(std::string_view document, std::string_view element);

#endif  // MOSAICON_CRASHRPT_XML_TEXT_H_
