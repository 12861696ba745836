// What documents of XML and JSON are, by the names that they use: SOAP with what it carries (UPnP, CWMP), XML-RPC, NETCONF,
// SyncML, WebDAV, descriptions of devices, JSON-RPC.
#pragma once
#include "core/decoder.h"

namespace qxview {

// A line that names the vocabulary and, under it, what the document asks or says in it; nothing for an unknown one.
void ShowXmlVocabulary(const Place& in, Cursor c);
void ShowJsonVocabulary(const Place& in, Cursor c);

}  // namespace qxview
