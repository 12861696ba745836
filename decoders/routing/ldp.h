// Label Distribution Protocol: what its files share.
#pragma once
#include "core/elements.h"

namespace qxview {

struct Ldp {
  Field type, length, family, bits, size, count, status;
};

// The elements of a FEC; LSP ping has some of them in other forms.
void ShowLdpFecs(const Place& in, Cursor& c, Ldp& ldp);

// The interface parameters of a pseudowire, and the provider edges that it is switched by.
void ShowLdpParameters(const Place& in, Cursor& c, Ldp& ldp);
void ShowLdpSwitchingPoints(const Place& in, Cursor& c, Ldp& ldp);

const char* PseudowireTypeName(uint32_t type);

}  // namespace qxview
