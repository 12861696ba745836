// XML (W3C, fifth edition) as lines: each element "name: text" over its bytes from the start tag to the end tag, its
// attributes "name = value", its text and its elements under it.
#pragma once
#include "core/decoder.h"

namespace qxview {

// Whether markup begins here, behind blanks and a byte order mark.
bool StartsXml(const Cursor& c);

// What a vocabulary makes of an attribute's value and of the text of an element that holds nothing else, under their lines.
struct XmlVocabulary {
  void (*showAttribute)(const Place& under, const Field& name, const Field& value);
  void (*showText)(const Place& under, const Field& element, const Field& text);
};

// Shows all that is left under `in`. Tags that do not match, and ends that are missing, are shown as far as they go.
void ShowXml(const Place& in, Cursor& c, const XmlVocabulary* vocabulary = nullptr);

// For those who look for elements without lines: the next tag, whatever stands in front passed over. The text is that of an
// element that holds nothing else. False where none follows.
struct XmlTag {
  Field whole, name, attributes, text;
  bool isEnd, isEmpty;
};
bool TakeXmlTag(Cursor& c, XmlTag& out);
bool TakeXmlAttribute(Cursor& c, Field& name, Field& value);

}  // namespace qxview
