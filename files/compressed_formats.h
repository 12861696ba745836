// The makers of sources for compressed captures: inside files/ only. Each gives null with a reason. QXVIEW_HAS_ZSTD and
// QXVIEW_HAS_LZ4 are set by the build where it finds the libraries.
#pragma once
#include "files/byte_source.h"

namespace qxview {

using SourceMaker = std::unique_ptr<ByteSource> (*)(std::unique_ptr<ByteSource> compressed, std::string* reason);

// A gzip stream of one or more members.
std::unique_ptr<ByteSource> MakeGzipSource(std::unique_ptr<ByteSource> compressed, std::string* reason);
std::unique_ptr<ByteSource> MakeZstdSource(std::unique_ptr<ByteSource> compressed, std::string* reason);
std::unique_ptr<ByteSource> MakeLz4Source(std::unique_ptr<ByteSource> compressed, std::string* reason);

#ifdef QXVIEW_HAS_ZSTD
constexpr SourceMaker kZstdMaker = MakeZstdSource;
#else
constexpr SourceMaker kZstdMaker = nullptr;
#endif
#ifdef QXVIEW_HAS_LZ4
constexpr SourceMaker kLz4Maker = MakeLz4Source;
#else
constexpr SourceMaker kLz4Maker = nullptr;
#endif

}  // namespace qxview
