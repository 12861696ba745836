// Playlists of HTTP Live Streaming (RFC 8216): what a body of text tells a player to fetch.
#pragma once
#include "core/decoder.h"

namespace qxview {

// Whether "#EXTM3U" stands there.
bool StartsPlaylist(const Cursor& c);
// All that is left, a line each; tags with their attributes.
void ShowPlaylist(const Place& in, Cursor& c);

}  // namespace qxview
