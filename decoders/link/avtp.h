// What the parts of the decoder of AVTP share.
#pragma once
#include "core/elements.h"

namespace qxview {

struct Avtp {
  Field subtype, message, status, length, type, index, count, size, offset, flags;
};

// Discovery, enumeration, connections and control (IEEE 1722.1): what stands behind the subtype's octet. `line` is the top
// line. False for a subtype that is none of them.
bool ShowAvdecc(const Place& at, const Place& in, LineHandle line, Cursor& c, uint32_t subtype);

// What an entity can, in its announcement and its descriptor.
inline constexpr auto kAvdeccEntityMasks = SortedNames({
    {0x00000001, "EFU_MODE"}, {0x00000002, "ADDRESS_ACCESS_SUPPORTED"}, {0x00000004, "GATEWAY_ENTITY"},
    {0x00000008, "AEM_SUPPORTED"}, {0x00000010, "LEGACY_AVC"}, {0x00000020, "ASSOCIATION_ID_SUPPORTED"},
    {0x00000040, "ASSOCIATION_ID_VALID"}, {0x00000080, "VENDOR_UNIQUE_SUPPORTED"}, {0x00000100, "CLASS_A_SUPPORTED"},
    {0x00000200, "CLASS_B_SUPPORTED"}, {0x00000400, "GPTP_SUPPORTED"}, {0x00000800, "AEM_AUTHENTICATION_SUPPORTED"},
    {0x00001000, "AEM_AUTHENTICATION_REQUIRED"}, {0x00002000, "AEM_PERSISTENT_ACQUIRE_SUPPORTED"},
    {0x00004000, "AEM_IDENTIFY_CONTROL_INDEX_VALID"}, {0x00008000, "AEM_INTERFACE_INDEX_VALID"},
    {0x00010000, "GENERAL_CONTROLLER_IGNORE"}, {0x00020000, "ENTITY_NOT_READY"}, {0x00040000, "ACMP_ACQUIRE_WITH_AEM"},
    {0x00080000, "ACMP_AUTHENTICATE_WITH_AEM"}, {0x00100000, "SUPPORTS_UDPV4_ATDECC"},
    {0x00200000, "SUPPORTS_UDPV4_STREAMING"}, {0x00400000, "SUPPORTS_UDPV6_ATDECC"}, {0x00800000, "SUPPORTS_UDPV6_STREAMING"},
    {0x01000000, "MULTIPLE_PTP_INSTANCES"}, {0x02000000, "AEM_CONFIGURATION_INDEX_VALID"}});
inline constexpr auto kAvdeccStreamMasks = SortedNames({
    {0x0001, "IMPLEMENTED"}, {0x0200, "OTHER"}, {0x0400, "CONTROL"}, {0x0800, "MEDIA_CLOCK"}, {0x1000, "SMPTE"},
    {0x2000, "MIDI"}, {0x4000, "AUDIO"}, {0x8000, "VIDEO"}});
inline constexpr auto kAvdeccControllerMasks = SortedNames({{0x00000001, "IMPLEMENTED"}, {0x00000002, "LAYER3_PROXY"}});

// A descriptor of an entity model, to the cursor's end.
void ShowAvdeccDescriptor(const Place& in, Cursor& c);
const char* AvdeccDescriptorName(uint32_t type);

// A sampling rate: a base frequency and what it is multiplied with. A stream's format in eight octets.
void ShowAvdeccRate(const Place& in, const Field& field, const char* label);
void ShowAvdeccFormat(const Place& in, const Field& field, const char* label);
void ShowAvdeccMappings(const Place& in, Cursor& c, uint32_t count);
void ShowAvdeccOtherMappings(const Place& in, Cursor& c, uint32_t count, bool isVideo);   // or of sensors
// What a control may be set to, by the type of its values; what a cluster of video or of a sensor can.
void ShowAvdeccValues(const Place& in, Cursor& c, uint32_t type, uint32_t count);
void ShowAvdeccCluster(const Place& in, Cursor& c, bool isVideo);

}  // namespace qxview
