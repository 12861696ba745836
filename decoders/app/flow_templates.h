// Templates of flow records: what the data sets of an exporter hold, remembered from the sets that told it.
#pragma once
#include "core/decoder.h"

namespace qxview {

// Templates belong to an exporter and its observation domain (RFC 7011 8; the source ID of RFC 3954).
struct FlowTemplateKey {
  uint8_t exporter[16];
  uint32_t kind;
  uint32_t domain;
  uint16_t version;
  uint16_t templateId;
  uint32_t unused;
};

// Its bytes are the field specifiers as the set told them.
struct FlowTemplate {
  uint16_t fields, scopes;
  uint16_t leastLength;     // of a record; more than 65535 is no template
  bool isOptions;
};

// The messages of a payload, one after the other; version 9 and IPFIX. Result: 0 when the first is none.
int32_t DecodeFlowMessages(const Place& at, Cursor c);

}  // namespace qxview
