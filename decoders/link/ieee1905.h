// What the parts of the decoder of IEEE 1905.1 share.
#pragma once
#include "core/elements.h"

namespace qxview {

struct HomeNetwork {
  Field type, kind, count, inner, size, flags;
};

// The elements of networks of several access points; null for none of them.
const Choice<HomeNetwork>* FindMultiApElement(uint32_t type);

}  // namespace qxview
