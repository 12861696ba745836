// Setup packets and descriptors of USB, as all its captures hold them.
#pragma once
#include "core/decoder.h"

namespace qxview {

// The eight bytes of a control transfer's setup packet; the place's line is given the request's name.
void ShowUsbSetup(const Place& in, Cursor& c);

// Descriptors one after the other, as far as lengths lead.
// The wrappers of mass storage, where they fill the data; nothing otherwise.
void ShowUsbStorage(const Place& in, Cursor& c);
void ShowUsbDescriptors(const Place& in, Cursor& c);

}  // namespace qxview
