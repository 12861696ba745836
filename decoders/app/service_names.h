// The names of services that are known by their port alone: what IANA assigns to protocols without a decoder, and where
// common implementations listen.
#pragma once
#include "core/name_table.h"

namespace qxview {

inline constexpr auto kTcpServiceNames = SortedNames({
    {7, "Echo"}, {13, "Daytime"}, {19, "Chargen"}, {22, "SSH"}, {37, "Time"}, {43, "Whois"}, {49, "TACACS+"},
    {70, "Gopher"}, {79, "Finger"}, {88, "Kerberos"}, {102, "ISO-TSAP"}, {104, "DICOM"}, {113, "Ident"},
    {119, "NNTP"}, {143, "IMAP"}, {179, "BGP"}, {194, "IRC"}, {264, "BGMP"}, {427, "SLP"}, {446, "DRDA"}, {502, "Modbus"},
    {512, "Rexec"}, {513, "Rlogin"}, {514, "Rsh"}, {540, "UUCP"}, {543, "Klogin"}, {544, "Kshell"}, {548, "AFP"},
    {554, "RTSP"}, {587, "Submission"}, {593, "RPC over HTTP"}, {631, "IPP"}, {639, "MSDP"}, {646, "LDP"},
    {655, "Tinc"}, {830, "NETCONF"}, {860, "iSCSI"}, {873, "Rsync"}, {902, "VMware"}, {1080, "SOCKS"},
    {1194, "OpenVPN"}, {1344, "ICAP"}, {1414, "MQ"}, {1723, "PPTP"}, {1812, "RADIUS"}, {1883, "MQTT"},
    {1935, "RTMP"}, {2049, "NFS"}, {2404, "IEC 60870-5-104"}, {2628, "DICT"}, {3128, "Squid"}, {3205, "iSNS"},
    {3260, "iSCSI"}, {3306, "MySQL"}, {3389, "RDP"}, {3690, "Subversion"}, {3868, "Diameter"}, {4321, "Rwhois"},
    {4369, "EPMD"}, {4420, "NVMe over TCP"}, {5000, "iperf"}, {5050, "YMSG"}, {5094, "HART-IP"}, {5190, "AIM"}, {5222, "XMPP"},
    {5269, "XMPP Server"}, {5432, "PostgreSQL"}, {5672, "AMQP"}, {5900, "VNC"}, {5901, "VNC"}, {6000, "X11"},
    {6379, "Redis"}, {6633, "OpenFlow"}, {6653, "OpenFlow"}, {6667, "IRC"}, {6789, "Ceph"}, {7687, "Bolt"}, {8291, "Winbox"},
    {8728, "RouterOS API"}, {9042, "Cassandra"}, {9092, "Kafka"}, {9100, "JetDirect"}, {9418, "Git"},
    {10050, "Zabbix"}, {11211, "Memcached"}, {20000, "DNP3"}, {27017, "MongoDB"}, {44818, "EtherNet/IP"},
    {50000, "DRDA"}, {50051, "gRPC"},
});

inline constexpr auto kUdpServiceNames = SortedNames({
    {7, "Echo"}, {13, "Daytime"}, {17, "QOTD"}, {19, "Chargen"}, {37, "Time"}, {49, "TACACS"}, {67, "DHCP"},
    {68, "DHCP"}, {69, "TFTP"}, {88, "Kerberos"}, {123, "NTP"}, {177, "XDMCP"}, {319, "PTP"}, {320, "PTP"},
    {427, "SLP"}, {443, "QUIC"}, {464, "Kpasswd"}, {496, "Auto-RP"}, {500, "ISAKMP"}, {512, "Biff"}, {513, "Who"},
    {514, "Syslog"}, {520, "RIP"}, {521, "RIPng"}, {546, "DHCPv6"}, {547, "DHCPv6"}, {623, "IPMI"}, {646, "LDP"},
    {698, "OLSR"}, {784, "QUIC"}, {1194, "OpenVPN"}, {1434, "MS-SQL Monitor"}, {1645, "RADIUS"}, {1646, "RADIUS"},
    {1701, "L2TP"}, {1812, "RADIUS"}, {1813, "RADIUS"}, {1900, "SSDP"}, {1985, "HSRP"}, {2029, "HSRP"}, {2055, "NetFlow"},
    {2123, "GTP-C"}, {2152, "GTP-U"}, {2222, "EtherNet/IP I/O"}, {3289, "ENPC"}, {3386, "GTP'"}, {3389, "RDP"},
    {3478, "STUN"}, {3544, "Teredo"}, {3702, "WS-Discovery"}, {3784, "BFD"}, {3785, "BFD Echo"},
    {3799, "RADIUS CoA"}, {4341, "LISP Data"}, {4342, "LISP"}, {4500, "IPsec NAT-T"}, {4739, "IPFIX"},
    {4784, "BFD Multihop"}, {4789, "VXLAN"}, {4790, "VXLAN-GPE"}, {5094, "HART-IP"}, {5246, "CAPWAP"}, {5247, "CAPWAP Data"},
    {5350, "NAT-PMP"}, {5351, "NAT-PMP"}, {5683, "CoAP"}, {5684, "CoAPS"}, {6081, "Geneve"}, {6343, "sFlow"},
    {6635, "MPLS"}, {6771, "Local Service Discovery"}, {8472, "OTV"}, {9600, "OMRON FINS"}, {9995, "NetFlow"},
    {17500, "Dropbox LAN Sync"}, {20000, "DNP3"}, {25826, "collectd"}, {27015, "Game Query"}, {34962, "PROFINET"},
    {34963, "PROFINET"}, {34964, "PROFINET"}, {44818, "EtherNet/IP"}, {47808, "BACnet"}, {51820, "WireGuard"},
});

// Null for a port without a name.
inline const char* ServiceName(uint32_t port, bool isUdp) {
  return isUdp ? LookupName(kUdpServiceNames, port, nullptr) : LookupName(kTcpServiceNames, port, nullptr);
}

}  // namespace qxview
