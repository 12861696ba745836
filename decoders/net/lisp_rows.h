// The rows of LISP's control messages and data header (RFC 9300, RFC 9301, RFC 8060).
#pragma once
#include "core/rows.h"

namespace qxview {

inline constexpr auto kLispTypeNames = SortedNames({
    {1, "Map-Request"}, {2, "Map-Reply"}, {3, "Map-Register"}, {4, "Map-Notify"}, {5, "Map-Notify-Ack"},
    {6, "Map-Referral"}, {7, "Info-Request or Info-Reply"}, {8, "Encapsulated Control Message"}});
inline constexpr auto kLispReliableNames = SortedNames({
    {16, "Error Notification"}, {17, "Registration"}, {18, "Registration Acknowledgement"}, {19,
    "Registration Refresh"},
    {20, "Registration Reject"}, {21, "Mapping Notification"}});
inline constexpr auto kLispFamilyNames = SortedNames({
    {0, "None"}, {1, "IPv4"}, {2, "IPv6"}, {17, "Distinguished Name"}, {16387, "LISP Canonical Address"}, {16389,
    "MAC"}});
inline constexpr auto kLispCanonicalNames = SortedNames({
    {0, "Null Body"}, {1, "AFI List"}, {2, "Instance ID"}, {3, "AS Number"}, {4, "Application Data"},
    {5, "Geo-Coordinates"}, {6, "Opaque Key"}, {7, "NAT Traversal"}, {8, "Nonce Locator"}, {9, "Multicast Information"},
    {10, "Explicit Locator Path"}, {11, "Security Key"}, {12, "Source/Destination Key"}, {13, "Replication List"},
    {14, "JSON Data Model"}, {15, "Key/Value Pair"}, {16, "Encapsulation Format"}, {17, "Data Model"}});
inline constexpr auto kLispActionNames = SortedNames({
    {0, "No Action"}, {1, "Natively Forward"}, {2, "Send Map-Request"}, {3, "Drop, No Reason"},
    {4, "Drop, Policy Denied"}, {5, "Drop, Authentication Failure"}});
inline constexpr auto kLispKeyNames = SortedNames({
    {0, "None"}, {1, "HMAC-SHA-1-96"}, {2, "HMAC-SHA-256-128"}, {3, "HMAC-SHA-256"}});

struct Lisp {
  Field type, count, locators, length, more;
};
inline constexpr auto kLispRequest = Rows<Lisp>({
    Word(4), Bits(0, 4, "Type", kLispTypeNames), Flag(4, "Authoritative"), Flag(5,
    "Map-Reply Record Present").Into(&Lisp::more),
    Flag(6, "Probe"), Flag(7, "Solicit-Map-Request"), Flag(8, "From Proxy ITR"), Flag(9, "SMR Invoked"),
    Bits(10, 9, "Reserved"), Bits(19, 5, "ITR Locator Count (less one)").Into(&Lisp::locators),
    Bits(24, 8, "Record Count").Into(&Lisp::count), Hex(8, "Nonce")});
inline constexpr auto kLispReply = Rows<Lisp>({
    Word(4), Bits(0, 4, "Type", kLispTypeNames), Flag(4, "Probe"), Flag(5, "Echo-Nonce Capable"), Flag(6, "Security"),
    Bits(7, 17, "Reserved"), Bits(24, 8, "Record Count").Into(&Lisp::count), Hex(8, "Nonce")});
inline constexpr auto kLispRegister = Rows<Lisp>({
    Word(4), Bits(0, 4, "Type", kLispTypeNames), Flag(4, "Proxy Map-Reply"), Flag(5, "Security"),
    Flag(6, "xTR-ID Present").Into(&Lisp::more), Flag(7, "Built for an RTR"), Bits(8, 11, "Reserved"), Flag(19,
    "EID Notify"),
    Flag(20, "Use TTL for Timeout"), Flag(21, "Merge Request"),
    Flag(22, "Mobile Node"), Flag(23, "Want Map-Notify"), Bits(24, 8, "Record Count").Into(&Lisp::count)});
inline constexpr auto kLispNotify = Rows<Lisp>({
    Word(4), Bits(0, 4, "Type", kLispTypeNames), Flag(4, "xTR-ID Present").Into(&Lisp::more), Flag(5,
    "Built by an RTR"),
    Bits(6, 18, "Reserved"), Bits(24, 8, "Record Count").Into(&Lisp::count)});
inline constexpr auto kLispNonce = Rows<Lisp>({Hex(8, "Nonce")});
inline constexpr auto kLispInformation = Rows<Lisp>({
    Word(4), Bits(0, 4, "Type", kLispTypeNames), Flag(4, "Reply"), Bits(5, 27, "Reserved"), Hex(8, "Nonce")});
inline constexpr auto kLispKey = Rows<Lisp>({
    Number(2, "Key ID", kLispKeyNames), Number(2, "Authentication Data Length").Into(&Lisp::length)});
inline constexpr auto kLispAuthentication = Rows<Lisp>({Bytes(0, "Authentication Data").SizedBy(&Lisp::length)});
inline constexpr auto kLispLifetime = Rows<Lisp>({Number(4, "TTL", " minutes")});
inline constexpr auto kLispIdentifierPrefix = Rows<Lisp>({Number(1, "Reserved"), Number(1, "EID Mask Length")});
inline constexpr auto kLispSite = Rows<Lisp>({Bytes(16, "xTR-ID"), Hex(8, "Site ID")});
inline constexpr auto kLispMapping = Rows<Lisp>({
    Number(4, "Record TTL", " minutes"), Number(1, "Locator Count").Into(&Lisp::count), Number(1,
    "EID Mask Length"), Word(2),
    Bits(0, 3, "Action", kLispActionNames), Flag(3, "Authoritative"), Bits(4, 12, "Reserved"), Word(2), Bits(0, 4,
    "Reserved"),
    Bits(4, 12, "Mapping Version")});
inline constexpr auto kLispLocator = Rows<Lisp>({
    Number(1, "Priority"), Number(1, "Weight"), Number(1, "Multicast Priority"), Number(1, "Multicast Weight"), Word(2),
    Bits(0, 13, "Unused"), Flag(13, "Local"), Flag(14, "Probed"), Flag(15, "Reachable")});
inline constexpr auto kLispEncapsulatedHeader = Rows<Lisp>({
    Word(4), Bits(0, 4, "Type", kLispTypeNames), Flag(4, "Security"), Flag(5, "DDT Originated"), Flag(6, "To an ETR"),
    Flag(7, "To a Map-Server"), Bits(8, 24, "Reserved")});

inline constexpr auto kLispCanonicalHeader = Rows<Lisp>({
    Hex(1, "Reserved 1"), Hex(1, "Flags"), Number(1, "Canonical Address Type", kLispCanonicalNames).Into(&Lisp::type),
    Number(1, "Reserved 2 or Mask Length"), Number(2, "Length").Into(&Lisp::length)});
inline constexpr auto kLispInstance = Rows<Lisp>({Number(4, "Instance ID").Note(" %u")});
inline constexpr auto kLispSystem = Rows<Lisp>({Number(4, "AS Number")});
inline constexpr auto kLispApplication = Rows<Lisp>({
    Hex(3, "IP TOS, IPv6 Traffic Class or Flow Label"), Number(1, "Protocol"), Number(2, "Local Port, Lower"),
    Number(2, "Local Port, Upper"), Number(2, "Remote Port, Lower"), Number(2, "Remote Port, Upper")});
inline constexpr auto kLispGeographic = Rows<Lisp>({
    Word(4), Flag(0, "North"), Bits(1, 15, "Latitude Degrees"), Bits(16, 8, "Latitude Minutes"), Bits(24, 8,
    "Latitude Seconds"),
    Word(4), Flag(0, "East"), Bits(1, 15, "Longitude Degrees"), Bits(16, 8, "Longitude Minutes"),
    Bits(24, 8, "Longitude Seconds"), Signed(4, "Altitude", " m")});
inline constexpr auto kLispTraversal = Rows<Lisp>({Number(2, "Map-Server UDP Port"), Number(2, "ETR UDP Port")});
inline constexpr auto kLispNonceLocator = Rows<Lisp>({Number(1, "Reserved"), Hex(3, "Nonce")});
inline constexpr auto kLispMulticast = Rows<Lisp>({
    Number(4, "Instance ID").Note(" %u"), Number(2, "Reserved"), Number(1, "Source Mask Length"), Number(1,
    "Group Mask Length")});
inline constexpr auto kLispHop = Rows<Lisp>({
    Word(2), Bits(0, 13, "Reserved"), Flag(13, "Lookup"), Flag(14, "Probe"), Flag(15, "Strict")});
inline constexpr auto kLispPair = Rows<Lisp>({
    Number(2, "Reserved"), Number(1, "Source Mask Length"), Number(1, "Destination Mask Length")});
inline constexpr auto kLispReplication = Rows<Lisp>({Number(2, "Reserved"), Number(1, "Reserved"), Number(1, "Level")});

inline constexpr auto kLispDataFlags = Rows<Lisp>({
    Hex(1, "Flags"), Flag(0, "Nonce Present (N)"), Flag(1, "Locator Status Bits (L)"), Flag(2,
    "Echo Nonce Request (E)"),
    Flag(3, "Map Versions (V)"), Flag(4, "Instance ID (I)"), Bits(5, 1, "Reserved"), Bits(6, 2, "Key ID")});
inline constexpr auto kLispDataNonce = Rows<Lisp>({Hex(3, "Nonce")});
inline constexpr auto kLispDataVersions = Rows<Lisp>({
    Word(3), Bits(0, 12, "Source Map Version"), Bits(12, 12, "Destination Map Version")});
inline constexpr auto kLispDataBits = Rows<Lisp>({Hex(4, "Locator Status")});
inline constexpr auto kLispDataInstance = Rows<Lisp>({Number(3, "Instance").Note(": Instance %u"), Hex(1,
    "Locator Status")});

inline constexpr auto kLispReliable = Rows<Lisp>({
    Number(2, "Message Type", kLispReliableNames).Into(&Lisp::type), Number(2, "Message Length").Into(&Lisp::length),
    Number(4, "Message ID")});

}  // namespace qxview
