// What the parts of 802.1X's frames are shown by.
#pragma once
#include "core/decoder.h"

namespace qxview {

// A key descriptor's body and MACsec key agreement's parameter sets, from behind the EAPOL header on.
void ShowEapolKey(const Place& in, Cursor& c);
void ShowKeyAgreement(const Place& in, Cursor& c);
// The elements of an announcement.
void ShowAnnouncement(const Place& in, Cursor& c);

}  // namespace qxview
