// Numbers that Linux gives kinds of interfaces (ARPHRD) and the packets on them; cooked captures, netlink and others
// share
// them.
#pragma once
#include "core/name_table.h"

namespace qxview {

inline constexpr auto kInterfaceKindNames = SortedNames({
    {0, "NET/ROM"}, {1, "Ethernet"}, {2, "Experimental Ethernet"}, {3, "AX.25"}, {4, "ProNET Token Ring"}, {5, "Chaos"},
    {6, "IEEE 802.2 Ethernet, Token Ring or Token Bus"}, {7, "ARCNET"}, {8, "AppleTalk"}, {15, "Frame Relay DLCI"},
    {19, "ATM"}, {23, "Metricom"}, {24, "IEEE 1394"}, {27, "EUI-64"}, {32, "InfiniBand"}, {256, "SLIP"}, {257, "CSLIP"},
    {258, "SLIP6"}, {259, "CSLIP6"}, {260, "Reserved"}, {264, "Adaptive SLIP"}, {270, "ROSE"}, {271, "X.25"}, {272,
    "HWX25"},
    {280, "CAN"}, {290, "MCTP"}, {512, "PPP"}, {513, "Cisco HDLC"}, {516, "LAPB"}, {517, "DDCMP"}, {518, "Raw HDLC"},
    {519, "Raw IP"}, {530, "Raw IP"}, {768, "IP-in-IP Tunnel"}, {769, "IPv6 Tunnel"}, {770,
    "Frame Relay Access Device"}, {771, "SKIP Tunnel"},
    {772, "Loopback"}, {773, "LocalTalk"}, {774, "FDDI"}, {775, "AP1000 BIF"}, {776, "IPv6-in-IPv4 Tunnel"},
    {777, "IP over DDP Tunnel"}, {778, "GRE over IP"}, {779, "PIM Register"}, {780, "HIPPI"}, {781, "Ash"}, {782,
    "Econet"},
    {783, "IrDA"}, {784, "Fibre Channel Point-to-Point"}, {785, "Fibre Channel Arbitrated Loop"},
    {786, "Fibre Channel Public Loop"}, {787, "Fibre Channel Fabric"}, {800, "IEEE 802.2 Token Ring"}, {801,
    "IEEE 802.11"},
    {802, "IEEE 802.11 with Prism Header"}, {803, "IEEE 802.11 with Radiotap Header"}, {804, "IEEE 802.15.4"},
    {805, "IEEE 802.15.4 Monitor"}, {820, "PhoNet"}, {821, "PhoNet Pipe"}, {822, "CAIF"}, {823, "GRE over IPv6"},
    {824, "Netlink"}, {825, "6LoWPAN"}, {826, "Vsock Monitor"}, {0xFFFE, "None"}, {0xFFFF, "Void"}});

// Address families of Linux.
inline constexpr auto kLinuxFamilyNames = SortedNames({
    {0, "Unspecified"}, {1, "Unix"}, {2, "IPv4"}, {3, "AX.25"}, {4, "IPX"}, {5, "AppleTalk"}, {6, "NET/ROM"}, {7,
    "Bridge"},
    {8, "ATM PVC"}, {9, "X.25"}, {10, "IPv6"}, {11, "ROSE"}, {12, "DECnet"}, {13, "NETBEUI"}, {14, "Security"}, {15,
    "Key"},
    {16, "Netlink"}, {17, "Packet"}, {18, "Ash"}, {19, "Econet"}, {20, "ATM SVC"}, {21, "RDS"}, {22, "SNA"}, {23,
    "IrDA"},
    {24, "PPPoX"}, {25, "Wanpipe"}, {26, "LLC"}, {27, "InfiniBand"}, {28, "MPLS"}, {29, "CAN"}, {30, "TIPC"},
    {31, "Bluetooth"}, {32, "IUCV"}, {33, "RxRPC"}, {34, "ISDN"}, {35, "Phonet"}, {36, "IEEE 802.15.4"}, {37, "CAIF"},
    {38, "Crypto"}, {39, "NFC"}, {40, "Vsock"}, {41, "KCM"}, {42, "Qualcomm IPC Router"}, {43, "SMC"}, {44, "XDP"},
    {45, "MCTP"}, {128, "IPMR"}, {129, "IP6MR"}});

}  // namespace qxview
