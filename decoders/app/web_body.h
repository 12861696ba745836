// Bodies of HTTP, whatever version carries them, by their content type: JSON, XML, forms, text, parts, images, protocol buffers
// and the messages of gRPC.
#pragma once
#include "decoders/app/web_pieces.h"

namespace qxview {

enum class WebContent : uint8_t { kUnknown, kJson, kXml, kForm, kText, kParts, kImage, kProtobuf, kGrpc, kWebSocket, kCapsules,
                                  kSessionCapsules, kOther };

// What is known of a body, and how far it was shown.
struct WebBody {
  WebContent content;
  bool isCompressed;       // by a content coding
  bool isGzip, isDeflate;  // one that can be opened, where the body is whole; of gRPC: each message
  bool hasBegun;
  uint32_t messageLeft;    // bytes of a message of gRPC that are to come
  WebPieces pieces;        // of what is not whole
};

WebContent WebContentOf(const TextSlice& type);                     // a media type with its parameters
// All that is left; `ends`: the body ends behind it. With a key and Reassembly what comes in pieces is shown when it is whole.
void ShowWebBody(const Place& in, Cursor& c, WebBody& body, bool ends = false, const WebStreamKey* key = nullptr);
void ShowCapsules(const Place& in, Cursor& c, WebBody& body);       // capsules.cpp
// The parts of a body; `boundary` as its header says it, empty where that is not known.
void ShowWebParts(const Place& in, Cursor& c, const Field& boundary, int32_t depth);
void NoteContentCoding(const TextSlice& coding, WebBody& body);
void NoteBodyField(const TextSlice& name, const TextSlice& value, WebBody& body);   // what a header field says of it

void ShowImage(const Place& in, Cursor& c);                         // GIF, PNG, JPEG; a block of anything else
void ShowProtobuf(const Place& in, Cursor& c, int32_t depth = 0);   // fields by their numbers (protobuf.cpp)

}  // namespace qxview
