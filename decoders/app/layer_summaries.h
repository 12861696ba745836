// One line for a frame whose uppermost protocol has no summary of its own: from the layer that the decode reached, in
// the manner of the application summaries.
#pragma once
#include "core/context.h"
#include "decoders/app/summary_text.h"

namespace qxview {

// A layer's header and payload as one line. What is cut is left out.
using LayerSummary = void (*)(SummaryText& text, Cursor c, const PacketState& packet);

// Writes the line for what `packet` reached into `out` of `size` bytes, always terminated; the name of the protocol and
// its length when there is no more to tell. size >= 1.
void DescribeLayers(const PacketState& packet, char* out, int32_t size);

// Whether the reached layer has a line here that tells more than its name.
bool HasLayerLine(const PacketState& packet);

// Behind the line of an ICMP error: what it quotes, ", Quoted: UDP 10.0.0.1 port 53 -> 10.0.0.2 port 40000".
void AppendQuotedDatagram(const PacketState& packet, char* out, int32_t size);

// ---- The families, for the tables of DescribeLayers.

// Links (link_layer_summary.cpp).
void DescribeEapol(SummaryText& text, Cursor c, const PacketState& packet);
void DescribeLldp(SummaryText& text, Cursor c, const PacketState& packet);
void DescribeCdp(SummaryText& text, Cursor c, const PacketState& packet);
void DescribeSlowProtocol(SummaryText& text, Cursor c, const PacketState& packet);
void DescribePppoe(SummaryText& text, Cursor c, const PacketState& packet);
void DescribePause(SummaryText& text, Cursor c, const PacketState& packet);
void DescribeSpanningTree(SummaryText& text, Cursor c, const PacketState& packet);
void DescribeIsIs(SummaryText& text, Cursor c, const PacketState& packet);
void DescribePppControl(SummaryText& text, Cursor c, const PacketState& packet);

// 802.11 frames that carry no data (wireless_summary.cpp).
void DescribeWireless(SummaryText& text, Cursor frame, const PacketState& packet);

// Internet protocols (internet_summary.cpp, routing_summary.cpp, transport_summary.cpp).
void DescribeGre(SummaryText& text, Cursor c, const PacketState& packet);
void DescribeEsp(SummaryText& text, Cursor c, const PacketState& packet);
void DescribeMobility(SummaryText& text, Cursor c, const PacketState& packet);
void DescribeOspf(SummaryText& text, Cursor c, const PacketState& packet);
void DescribeEigrp(SummaryText& text, Cursor c, const PacketState& packet);
void DescribePim(SummaryText& text, Cursor c, const PacketState& packet);
void DescribeRsvp(SummaryText& text, Cursor c, const PacketState& packet);
void DescribeTcp(SummaryText& text, Cursor c, const PacketState& packet);
void DescribeUdp(SummaryText& text, Cursor c, const PacketState& packet);
void DescribeSctp(SummaryText& text, Cursor c, const PacketState& packet);

}  // namespace qxview
