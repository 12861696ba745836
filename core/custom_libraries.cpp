#include "core/custom_libraries.h"

#include <cstddef>
#include <cstring>

#include "core/decoder.h"
#include "core/output_file.h"

namespace qxview {
namespace {

constexpr int32_t kNameSize = 128;   // a name that does not fit, with its terminator, is none
constexpr int32_t kDirectorySize = 4096;

// A name alone is that of a file beside the program; a path is one, from the working folder on where it is relative.
// So the folders that the platform would search are never asked.
void* LoadNamed(const Engine* engine, const char* directory, const char* name) {
  const LibraryLoader& loader = engine->libraries.loader;
  char path[kDirectorySize + kNameSize];
  if (loader.isPath && loader.isPath(name)) {
    CopyString(path, sizeof path, name);
  } else {
    FormatInto(path, sizeof path, "%s/%s", directory[0] ? directory : ".", name);
  }
  return loader.load(path);
}

}  // namespace

void LoadCustomLibraries(Engine* engine) {
  CustomLibraries& libraries = engine->libraries;
  libraries.count = 0;
  libraries.external = nullptr;
  const QxHost* host = engine->host;
  const auto readSetting = QXVIEW_HOST_FUNCTION(host, readSetting);
  const auto applicationDirectory = QXVIEW_HOST_FUNCTION(host, applicationDirectory);
  if (!readSetting || !libraries.loader.load) return;
  char directory[kDirectorySize] = "";
  if (applicationDirectory) applicationDirectory(host->user, directory, sizeof directory);
  for (int32_t n = 0; n < kMostCustomLibraries; ++n) {
    char name[32], value[kNameSize + 1] = "";
    FormatInto(name, sizeof name, "CustomLibrary%u", n);
    if (readSetting(host->user, name, value, sizeof value) != 1 || !value[0]) break;
    if (value[kNameSize - 1]) continue;
    if (void* loaded = LoadNamed(engine, directory, value)) libraries.handles[libraries.count++] = loaded;
  }
  if (engine->settings.externalDecoder[0]) {
    libraries.external = LoadNamed(engine, directory, engine->settings.externalDecoder);
  }
}

void UnloadCustomLibraries(Engine* engine) {
  CustomLibraries& libraries = engine->libraries;
  for (int32_t i = 0; i < libraries.count; ++i) libraries.loader.release(libraries.handles[i]);
  if (libraries.external) libraries.loader.release(libraries.external);
  libraries.count = 0;
  libraries.external = nullptr;
}

namespace {

// The tree's C functions, over the view that the record's data point to.
View* ViewOf(QxTree* tree) { return static_cast<View*>(tree->data[0]); }

QxLine TreeAppend(QxTree* tree, QxLine parent, const char* text, int32_t image, uint32_t tag) {
  return AddTaggedLine(ViewOf(tree), parent, text, image, tag);
}
int32_t TreeGetText(QxTree* tree, QxLine line, char* out, int32_t outSize) {
  return GetDecodeLineText(ViewOf(tree), ViewOf(tree)->tree, line, out, outSize);
}
void TreeSetText(QxTree* tree, QxLine line, const char* text) {
  SetDecodeLineText(ViewOf(tree), ViewOf(tree)->tree, line, text);
}
uint32_t TreeGetTag(QxTree* tree, QxLine line) { return ViewOf(tree)->tree->RangeIndex(line); }
void TreeSetTag(QxTree* tree, QxLine line, uint32_t tag) { ViewOf(tree)->tree->SetRangeIndex(line, tag); }
QxLine TreeFirstChild(QxTree* tree, QxLine line) { return ViewOf(tree)->tree->FirstChild(line); }
QxLine TreeNextSibling(QxTree* tree, QxLine line) { return ViewOf(tree)->tree->NextSibling(line); }
QxLine TreeParent(QxTree* tree, QxLine line) { return ViewOf(tree)->tree->Parent(line); }
void TreeDelete(QxTree* tree, QxLine line) { DeleteDecodeLine(ViewOf(tree), ViewOf(tree)->tree, line); }
QxLine TreeAddLine(QxTree* tree, QxLine parent, const char* text, int32_t image, uint64_t range) {
  return AddDecodeLine(ViewOf(tree), parent, text, image, ViewOf(tree)->tree, range);
}

QxTree TreeRecord(View* view) {
  return {sizeof(QxTree), TreeAppend, TreeGetText, TreeSetText, TreeGetTag, TreeSetTag, TreeFirstChild,
          TreeNextSibling, TreeParent, TreeDelete, TreeAddLine, {view, nullptr}};
}

CustomDecodeBlock FreshBlock(const DecodeContext* context) {
  const PacketState& packet = context->packet;
  CustomDecodeBlock block{};
  block.outputMode = static_cast<uint8_t>(context->outputMode);
  block.addressKinds = (packet.source.kind & 0xFFFF) | packet.destination.kind << 16;
  block.sourcePort = packet.sourcePort;
  block.freeWord = context->customWord;
  block.destinationPort = packet.destinationPort;
  if (context->outputFile) block.outputFile = static_cast<uint32_t>(context->outputFile->sink.descriptor);
  return block;
}

// Offers to each library in turn: `call` is given the entry point, the tree and the block.
template <class Function, class Call>
int32_t Offer(const Place& at, void* const* handles, int32_t count, const char* entryPoint, Call call) {
  const CustomLibraries& libraries = at.view->engine->libraries;
  if (count == 0) return 0;
  DecodeContext* context = at.view->context;
  QxTree record = TreeRecord(at.view);
  // A control shows lines and knows nothing of files and finds: for these there is the record.
  void* native = context->outputMode == kDisplayMode ? at.tree->NativeHandle() : nullptr;
  for (int32_t i = 0; i < count; ++i) {
    void* found = libraries.loader.find(handles[i], entryPoint);
    if (!found) continue;
    Function function;
    std::memcpy(&function, &found, sizeof function);
    CustomDecodeBlock block = FreshBlock(context);
    if (context->outputFile) FlushOutput(context->outputFile);   // the library may write to the file itself
    const int32_t taken = call(function, native ? native : &record, &block);
    if (context->rangeCount > context->rangeCapacity) context->rangeCount = context->rangeCapacity;
    if (taken != 0) {
      context->customWord = block.freeWord;
      return 1;
    }
  }
  return 0;
}

int32_t OfferMedia(const Place& at, const Cursor& c, const char* entryPoint, const void* extension) {
  DecodeContext* context = at.view->context;
  const CustomLibraries& libraries = at.view->engine->libraries;
  return Offer<CustomDecodeMediaFunction>(
      at, libraries.handles, libraries.count, entryPoint,
      [&](CustomDecodeMediaFunction function, void* tree, CustomDecodeBlock* block) {
        return function(c.at, extension, Left(c), 0, at.view->expansionMask, tree, &context->rangeCount,
                        &context->rangeCapacity, &context->rangeTable, block);
      });
}

static_assert(sizeof(QxWanLink) == sizeof(WanLink) && offsetof(QxWanLink, number) == offsetof(WanLink, number));

int32_t OfferPayloadTo(const Place& at, const Cursor& c, void* const* handles, int32_t count,
                       const char* entryPoint) {
  DecodeContext* context = at.view->context;
  return Offer<CustomDecodePayloadFunction>(
      at, handles, count, entryPoint,
      [&](CustomDecodePayloadFunction function, void* tree, CustomDecodeBlock* block) {
        return function(at.parent, c.at, Left(c), c.offset, at.level, at.view->expansionMask, tree,
                        &context->rangeCount, &context->rangeCapacity, &context->rangeTable, block);
      });
}

}  // namespace

int32_t OfferFrame(const Place& at, const Cursor& c) {
  DecodeContext* context = at.view->context;
  const CustomLibraries& libraries = at.view->engine->libraries;
  return Offer<CustomDecodeFrameFunction>(
      at, libraries.handles, libraries.count, "CustomDecodeFrame",
      [&](CustomDecodeFrameFunction function, void* tree, CustomDecodeBlock* block) {
        return function(c.at, context->packet.frame, Left(c), context->packet.userParam1, 0, at.view->expansionMask,
                        tree, &context->rangeCount, &context->rangeCapacity, &context->rangeTable, block);
      });
}

int32_t OfferWirelessFrame(const Place& at, const Cursor& c) {
  int32_t length;
  const uint8_t* extension = FindExtension(PacketOf(at).frame, kExtensionMedium, &length);
  return OfferMedia(at, c, "CustomDecodeFrameWireless", extension);
}

int32_t OfferWanFrame(const Place& at, const Cursor& c) {
  int32_t length;
  const void* extension = FindExtension(PacketOf(at).frame, kExtensionMedium, &length);
  // A record that tells the direction in its header alone is offered with the same words.
  const WanLink link = ReadWanLink(PacketOf(at).frame);
  if (!extension && link.direction != 0) extension = &link;
  return OfferMedia(at, c, "CustomDecodeFrameWan", extension);
}

int32_t OfferPayload(const Place& at, PayloadHook hook, const Cursor& c) {
  const CustomLibraries& libraries = at.view->engine->libraries;
  if (libraries.count == 0) return 0;
  const char* entryPoint = hook == PayloadHook::kIp    ? "CustomDecodeIP"
                           : hook == PayloadHook::kTcp ? "CustomDecodeTCP"
                                                       : "CustomDecodeUDP";
  return OfferPayloadTo(at, c, libraries.handles, libraries.count, entryPoint);
}

int32_t OfferExternal(const Place& at, const Cursor& c) {
  const CustomLibraries& libraries = at.view->engine->libraries;
  return OfferPayloadTo(at, c, &libraries.external, libraries.external ? 1 : 0, "ExternalDecode");
}

}  // namespace qxview
