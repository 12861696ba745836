// What the parts of the decoder of IEEE 1905.1 share.
#pragma once
#include "core/elements.h"

namespace qxview {

struct HomeNetwork {
  Field type, kind, count, inner, size, flags;
};

// As many as a number says.
inline void ShowCounted(const Place& in, Cursor& c, uint32_t count, RowSpan<HomeNetwork> rows, HomeNetwork& home) {
  Loop loop;
  for (uint32_t i = 0; i < count && MoreAt(in, c, loop); ++i) ShowRows<HomeNetwork>(in, c, rows, home);
}

// The same, with another number of lists within each.
inline void ShowNested(const Place& in, Cursor& c, RowSpan<HomeNetwork> outer, RowSpan<HomeNetwork> inner, HomeNetwork& home) {
  const uint32_t count = home.count.value;
  Loop loop;
  for (uint32_t i = 0; i < count && MoreAt(in, c, loop); ++i) {
    ShowRows<HomeNetwork>(in, c, outer, home);
    ShowCounted(in, c, home.inner.value, inner, home);
  }
}

// The elements of networks of several access points; null for none of them.
const Choice<HomeNetwork>* FindMultiApElement(uint32_t type);
const Choice<HomeNetwork>* FindProfileElement(uint32_t type);   // of its later profiles

}  // namespace qxview
