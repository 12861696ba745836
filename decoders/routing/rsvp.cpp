// Resource Reservation Protocol (RFC 2205; refreshes and bundles: RFC 2961, label switched paths: RFC 3209, GMPLS:
// RFC 3473, fast reroute: RFC 4090, restarts: RFC 5063): which path shall this flow or this tunnel take, and with
// what guarantees?
//
//   version and flags (1)   type (1)   checksum (2)   TTL (1)   reserved (1)   length (2)
//   objects: length of all (2)   class (1)   C-Type (1)   what they hold
#include "decoders/routing/rsvp.h"

#include "core/internet_checksum.h"
#include "decoders/common/checksum_line.h"

namespace qxview {
namespace {

constexpr int32_t kHeaderSize = 8, kObjectHeader = 4;
constexpr uint32_t kBundle = 12;

constexpr auto kTypeNames = SortedNames({
    {1, "Path"}, {2, "Resv"}, {3, "PathErr"}, {4, "ResvErr"}, {5, "PathTear"}, {6, "ResvTear"}, {7, "ResvConf"},
    {8, "DREQ"}, {9, "DREP"}, {10, "ResvTearConfirm"}, {11, "Unassigned"}, {12, "Bundle"}, {13, "Ack"},
    {15, "Srefresh"},
    {20, "Hello"}, {21, "Notify"}, {25, "Integrity Challenge"}, {26, "Integrity Response"}, {30, "RecoveryPath"},
    {66, "DSBM_willing"}, {67, "I_AM_DSBM"}});
constexpr auto kClassNames = SortedNames({
    {0, "NULL"}, {1, "SESSION"}, {3, "RSVP_HOP"}, {4, "INTEGRITY"}, {5, "TIME_VALUES"}, {6, "ERROR_SPEC"}, {7, "SCOPE"},
    {8, "STYLE"}, {9, "FLOWSPEC"}, {10, "FILTER_SPEC"}, {11, "SENDER_TEMPLATE"}, {12, "SENDER_TSPEC"}, {13, "ADSPEC"},
    {14, "POLICY_DATA"}, {15, "RESV_CONFIRM"}, {16, "LABEL"}, {17, "HOP_COUNT"}, {18, "STRICT_SOURCE_ROUTE"},
    {19, "LABEL_REQUEST"}, {20, "EXPLICIT_ROUTE"}, {21, "RECORD_ROUTE"}, {22, "HELLO"}, {23, "MESSAGE_ID"},
    {24, "MESSAGE_ID_ACK"}, {25, "MESSAGE_ID_LIST"}, {30, "DIAGNOSTIC"}, {31, "ROUTE"}, {32, "DIAG_RESPONSE"},
    {33, "DIAG_SELECT"}, {34, "RECOVERY_LABEL"}, {35, "UPSTREAM_LABEL"}, {36, "LABEL_SET"}, {37, "PROTECTION"},
    {38, "PRIMARY_PATH_ROUTE"}, {42, "DSBM_IP_ADDRESS"}, {43, "SBM_PRIORITY"}, {44, "DSBM_TIMER_INTERVALS"},
    {45, "SBM_INFO"}, {50, "S2L_SUB_LSP"}, {63, "DETOUR"}, {64, "CHALLENGE"}, {65, "DIFFSERV"}, {66, "CLASSTYPE"},
    {67, "LSP_REQUIRED_ATTRIBUTES"}, {124, "PRIVATE"}, {125, "PRIVATE"}, {126, "PRIVATE"}, {127, "PRIVATE"},
    {128, "NODE_CHAR"}, {129, "SUGGESTED_LABEL"}, {130, "ACCEPTABLE_LABEL_SET"},
    {131, "RESTART_CAP"}, {132, "SESSION_OF_INTEREST"}, {133, "LINK_CAPABILITY"}, {134, "CAPABILITY"},
    {161, "RSVP_HOP_L2"}, {162, "LAN_NHOP_L2"}, {163, "LAN_NHOP_L3"}, {164, "LAN_LOOPBACK"}, {165, "TCLASS"},
    {188, "PRIVATE"}, {189, "PRIVATE"}, {190, "PRIVATE"}, {191, "PRIVATE"}, {192, "SESSION_ASSOC"},
    {193, "LSP_TUNNEL_INTERFACE_ID"}, {194, "USER_ERROR_SPEC"}, {195, "NOTIFY_REQUEST"},
    {196, "ADMIN_STATUS"}, {197, "LSP_ATTRIBUTES"}, {198, "ALARM_SPEC"}, {199, "ASSOCIATION"},
    {200, "SECONDARY_EXPLICIT_ROUTE"}, {201, "SECONDARY_RECORD_ROUTE"}, {202, "CALL_ATTRIBUTES"}, {205, "FAST_REROUTE"},
    {207, "SESSION_ATTRIBUTE"},
    {225, "DCLASS"}, {226, "PACKETCABLE_EXTENSIONS"}, {227, "ATM_SERVICECLASS"}, {228, "CALL_OPS"},
    {229, "GENERALIZED_UNI"}, {230, "CALL_ID"}, {231, "3GPP2_OBJECT"}, {232, "EXCLUDE_ROUTE"}, {252, "PRIVATE"},
    {253, "PRIVATE"}, {254, "PRIVATE"}, {255, "PRIVATE"}});

constexpr auto kFirst = Rows<Rsvp>({
    Word(1), Bits(0, 4, "Version"), Bits(4, 3, "Reserved Flags"), Flag(7, "Refresh Reduction Capable"),
    Number(1, "Message Type", kTypeNames).Into(&Rsvp::type)});
constexpr auto kRest = Rows<Rsvp>({
    Number(1, "Sending TTL"), Number(1, "Reserved"), Number(2, "Message Length").Into(&Rsvp::length)});
constexpr auto kObjectHead = Rows<Rsvp>({
    Number(2, "Object Length"), Number(1, "Object Class", kClassNames), Number(1, "C-Type")});

}  // namespace

void ShowRsvpObjects(const Place& in, Cursor& c) {
  Rsvp rsvp{};
  Loop loop;
  while (Left(c) >= kObjectHeader && PeekU16(c) >= kObjectHeader && MoreAt(in, c, loop)) {
    Cursor object = TakeCursor(c, PeekU16(c));
    const Choice<Rsvp>* choice = FindRsvpObject(PeekU16(object, 2));
    const Place under = Under(in, AddLine(in, Ahead(object, Left(object)), "Object: %s",
                                          LookupName(kClassNames, PeekU8(object, 2))));
    ShowRows<Rsvp>(under, object, kObjectHead, rsvp);
    ShowChoice<Rsvp>(under, object, choice, rsvp);   // keys: none Data
  }
}

namespace {

// A bundle holds messages of its own; none of them is a bundle (RFC 2961 3.2).
bool ShowMessage(const Place& at, Cursor& c, bool isOuter) {
  if (Left(c) < kHeaderSize || PeekU8(c) >> 4 != 1 || PeekU16(c, 6) < kHeaderSize) return false;
  const int32_t length = static_cast<int32_t>(PeekU16(c, 6));
  const bool whole = length <= Left(c) && !PacketOf(at).network.fragmented;
  Cursor message = TakeCursor(c, length);
  const Field all = Ahead(message, Left(message));
  const Place in = Under(at, AddLine(at, all, "RSVP: %s Message", LookupName(kTypeNames, PeekU8(message, 1))));
  Rsvp rsvp = ShowRows(in, message, kFirst);
  const Field checksum = TakeU16(message);
  const char* why = checksum.value == 0 ? "Not Used" : whole ? nullptr : "Not Checked - Partial Capture";
  AddChecksumLine(in, checksum, "Checksum:", why, why ? 0 : SumWords(0, all.bytes, all.length), BadChecksum::kAlone);
  ShowRows<Rsvp>(in, message, kRest, rsvp);
  if (isOuter && rsvp.type.value == kBundle) {
    Loop loop;
    while (MoreAt(in, message, loop) && ShowMessage(in, message, false)) {
    }
  } else {
    ShowRsvpObjects(in, message);
  }
  message.ranShort = false;   // what is left of a message that is cut
  AddBlock(in, Rest(message), "RSVP Data");
  return true;
}

}  // namespace

int32_t DecodeRsvp(const Place& at, Cursor c) {
  if (!ShowMessage(at, c, true)) return 0;
  AddRawRest(at, c, "RSVP Data");
  return 1;
}

}  // namespace qxview
