// libpcap, looked up when it is asked for: a program that neither filters nor captures starts without it, and one on a machine
// that does not have it says so.
#pragma once
#include <pcap/pcap.h>

#include <string>

#define QXVIEW_PCAP_FUNCTIONS(X)                                                                                          \
  X(open_dead) X(compile) X(geterr) X(close) X(freecode) X(offline_filter) X(create) X(set_snaplen) X(set_promisc)        \
  X(set_timeout) X(set_buffer_size) X(set_tstamp_precision) X(get_tstamp_precision) X(activate) X(statustostr)            \
  X(setnonblock) X(setfilter) X(datalink) X(get_selectable_fd) X(next_ex) X(stats) X(findalldevs) X(freealldevs)          \
  X(snapshot)

namespace qxview {

struct PcapLibrary {
#define QXVIEW_MEMBER(name) decltype(&pcap_##name) name;
  QXVIEW_PCAP_FUNCTIONS(QXVIEW_MEMBER)
#undef QXVIEW_MEMBER

  // Null with a reason.
  static const PcapLibrary* Load(std::string* why);
};

}  // namespace qxview
