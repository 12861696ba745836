// Hardware types of the ARP parameters registry, which ARP, DHCP and identifiers of DHCP clients share.
#pragma once
#include "core/name_table.h"

namespace qxview {

constexpr uint32_t kEthernetHardware = 1;

inline constexpr auto kHardwareNames = SortedNames({
    {1, "Ethernet"}, {2, "Experimental Ethernet"}, {3, "Amateur Radio AX.25"}, {4, "Proteon ProNET Token Ring"},
    {5, "Chaos"}, {6, "IEEE 802"}, {7, "ARCNET"}, {8, "Hyperchannel"}, {9, "Lanstar"}, {10, "Autonet"},
    {11, "LocalTalk"}, {12, "LocalNet"}, {13, "Ultra Link"}, {14, "SMDS"}, {15, "Frame Relay"}, {16, "ATM"},
    {17, "HDLC"}, {18, "Fibre Channel"}, {19, "ATM"}, {20, "Serial Line"}, {21, "ATM"}, {22, "MIL-STD-188-220"},
    {23, "Metricom"}, {24, "IEEE 1394"}, {25, "MAPOS"}, {26, "Twinaxial"}, {27, "EUI-64"}, {28, "HIPARP"},
    {29, "IP and ARP over ISO 7816-3"}, {30, "ARPSec"}, {31, "IPsec Tunnel"}, {32, "InfiniBand"},
    {33, "TIA-102 Project 25 Common Air Interface"}, {34, "Wiegand Interface"}, {35, "Pure IP"}, {36, "Experimental"},
    {37, "HFI"}, {38, "Unified Bus"}, {256, "Experimental"}, {257, "AEthernet"}});

}  // namespace qxview
