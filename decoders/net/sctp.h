// The Stream Control Transmission Protocol: what its files share.
#pragma once
#include "core/rows.h"

namespace qxview {

inline constexpr auto kSctpChunkNames = SortedNames({
    {0, "DATA"}, {1, "INIT"}, {2, "INIT ACK"}, {3, "SACK"}, {4, "HEARTBEAT"}, {5, "HEARTBEAT ACK"}, {6, "ABORT"},
    {7, "SHUTDOWN"}, {8, "SHUTDOWN ACK"}, {9, "ERROR"}, {10, "COOKIE ECHO"}, {11, "COOKIE ACK"}, {12, "ECNE"},
    {13, "CWR"}, {14, "SHUTDOWN COMPLETE"}, {15, "AUTH"}, {16, "NR-SACK"}, {63, "IETF-defined Extension"},
    {64, "I-DATA"}, {127, "IETF-defined Extension"}, {128, "ASCONF-ACK"}, {129, "PKTDROP"}, {130, "RE-CONFIG"},
    {132, "PAD"}, {191, "IETF-defined Extension"}, {192, "FORWARD-TSN"}, {193, "ASCONF"}, {194, "I-FORWARD-TSN"},
    {255, "IETF-defined Extension"}});

struct Sctp {
  Field type, length, protocol, count, second;
  int32_t nesting;   // of parameters within one another
};

// The parameters of INIT, of address changes and of stream resets; the causes of errors. They take all that is left.
void ShowSctpParameters(const Place& in, Cursor& c, Sctp& sctp);
void ShowSctpCauses(const Place& in, Cursor& c, Sctp& sctp);

}  // namespace qxview
