// What is written to mailslots: the browser protocol (MS-BRWS), by which hosts make themselves known and elect who keeps
// the list, and the location of logon servers (MS-ADTS 6.3).
#pragma once
#include "decoders/smb/smb_transaction.h"

namespace qxview {

// smb_browser.cpp: \MAILSLOT\BROWSE, and the announcements of \MAILSLOT\LANMAN.
void BrowserData(SmbTransaction& t, const Place& in, Cursor& c);
void LanmanData(SmbTransaction& t, const Place& in, Cursor& c);
// smb_netlogon.cpp: \MAILSLOT\NET\NETLOGON and the mailslots that its answers go to.
void NetlogonData(SmbTransaction& t, const Place& in, Cursor& c);

}  // namespace qxview
