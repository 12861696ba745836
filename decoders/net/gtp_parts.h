// What the files of GTP's information elements share.
#pragma once
#include "core/elements.h"
#include "decoders/net/gtp.h"

namespace qxview {

struct GtpElement {
  Field type, length, kind, count;
};

// An address of 4 or 16 bytes, and labels of a length and so many characters; both to the end of the cursor.
void ShowGtpAddress(const Place& in, Cursor& c, GtpElement& element);
void ShowGtpName(const Place& in, Cursor& c, GtpElement& element);
// Options of the protocol configuration, and a template of traffic flows.
void ShowGtpOptions(const Place& in, Cursor& c, GtpElement& element);
void ShowGtpTemplate(const Place& at, Cursor& c, GtpElement& element);

// The elements of mobility, broadcast and later releases; null for another number.
const Choice<GtpElement>* FindGtpContext(uint32_t type);

// The extension headers in front of what a version 1 message carries, the first of this type.
void ShowGtpExtensions(const Place& at, Cursor& c, uint32_t type);
const char* GtpExtensionName(uint32_t type);

}  // namespace qxview
