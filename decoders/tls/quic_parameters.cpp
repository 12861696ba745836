// QUIC's transport parameters (RFC 9000 18, and extensions of IANA's registry), in a hello's extension: identifiers,
// lengths and many values are numbers of variable length.
#include "decoders/tls/tls.h"

namespace qxview {
namespace {

enum class ParameterForm : uint8_t { kNumber, kBytes, kAddress, kVersions, kNothing };
struct Parameter {
  uint64_t id;
  const char* name;
  ParameterForm form;
};
constexpr Parameter kParameters[] = {
    {0x00, "original_destination_connection_id", ParameterForm::kBytes},
    {0x01, "max_idle_timeout", ParameterForm::kNumber},
    {0x02, "stateless_reset_token", ParameterForm::kBytes},
    {0x03, "max_udp_payload_size", ParameterForm::kNumber},
    {0x04, "initial_max_data", ParameterForm::kNumber},
    {0x05, "initial_max_stream_data_bidi_local", ParameterForm::kNumber},
    {0x06, "initial_max_stream_data_bidi_remote", ParameterForm::kNumber},
    {0x07, "initial_max_stream_data_uni", ParameterForm::kNumber},
    {0x08, "initial_max_streams_bidi", ParameterForm::kNumber},
    {0x09, "initial_max_streams_uni", ParameterForm::kNumber},
    {0x0A, "ack_delay_exponent", ParameterForm::kNumber},
    {0x0B, "max_ack_delay", ParameterForm::kNumber},
    {0x0C, "disable_active_migration", ParameterForm::kNothing},
    {0x0D, "preferred_address", ParameterForm::kAddress},
    {0x0E, "active_connection_id_limit", ParameterForm::kNumber},
    {0x0F, "initial_source_connection_id", ParameterForm::kBytes},
    {0x10, "retry_source_connection_id", ParameterForm::kBytes},
    {0x11, "version_information", ParameterForm::kVersions},
    {0x20, "max_datagram_frame_size", ParameterForm::kNumber},
    {0x173E, "discard", ParameterForm::kBytes},
    {0x26AB, "google_handshake_message", ParameterForm::kBytes},
    {0x2AB2, "grease_quic_bit", ParameterForm::kNothing},
    {0x3127, "initial_rtt", ParameterForm::kNumber},
    {0x3128, "google_connection_options", ParameterForm::kBytes},
    {0x3129, "user_agent", ParameterForm::kBytes},
    {0x4752, "google_version", ParameterForm::kBytes},
    {0x7157, "enable_time_stamp", ParameterForm::kNothing},
    {0x7158, "enable_time_stamp_v2", ParameterForm::kNumber},
    {0xDE1A, "min_ack_delay (draft)", ParameterForm::kNumber},
    {0x0F739BBC1B666D05, "enable_multipath (draft 05)", ParameterForm::kNumber},
    {0x0F739BBC1B666D06, "enable_multipath (draft 06)", ParameterForm::kNumber},
    {0xFF03DE1A, "min_ack_delay (draft 03)", ParameterForm::kNumber},
    {0xFF04DE1B, "min_ack_delay (draft 04)", ParameterForm::kNumber},
    {0xFF73DB, "version_information (draft)", ParameterForm::kVersions},
};

// The first two bits tell of 1, 2, 4 or 8 octets.
WideField TakeVariable(Cursor& c) {
  const int32_t size = 1 << (PeekU8(c) >> 6);
  WideField field{TakeBytes(c, size), 0};
  Cursor octets = CursorOver(field);
  for (int32_t i = 0; i < size && field.here; ++i) {
    const uint32_t octet = TakeU8(octets).value;
    field.wide = field.wide << 8 | (i == 0 ? octet & 0x3F : octet);
  }
  field.value = static_cast<uint32_t>(field.wide);
  return field;
}

// Reserved identifiers are 27 behind multiples of 31 (RFC 9000 18.1).
const Parameter* FindParameter(uint64_t id) {
  static constexpr Parameter kReserved{0, "GREASE", ParameterForm::kBytes}, kOther{0, kUnknown, ParameterForm::kBytes};
  for (const Parameter& known : kParameters) {
    if (known.id == id) return &known;
  }
  return id >= 27 && (id - 27) % 31 == 0 ? &kReserved : &kOther;
}

void ShowVersions(const Place& in, Cursor& c) {
  const Field chosen = TakeU32(c);
  AddLine(in, chosen, "Chosen Version: 0x%.08X", chosen.value);
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const Field version = TakeU32(c);
    AddLine(in, version, "Available Version: 0x%.08X", version.value);
  }
}

void ShowPreferredAddress(const Place& in, Cursor& c) {
  const Field address4 = TakeBytes(c, 4), port4 = TakeU16(c);
  AddLine(in, address4, "IPv4 Address: %s", IPv4Text(address4.bytes));
  AddLine(in, port4, "IPv4 Port: %u", port4.value);
  const Field address6 = TakeBytes(c, 16), port6 = TakeU16(c);
  AddLine(in, address6, "IPv6 Address: %s", IPv6Text(address6.bytes));
  AddLine(in, port6, "IPv6 Port: %u", port6.value);
  const Field length = TakeU8(c), id = TakeBytes(c, length.value), token = TakeBytes(c, 16);
  AddLine(in, length, "Connection ID Length: %u", length.value);
  AddLine(in, id, "Connection ID: %s", HexDigits(id));
  AddLine(in, token, "Stateless Reset Token: %s", HexDigits(token));
}

void ShowValue(const Place& in, Cursor& c, ParameterForm form) {
  if (form == ParameterForm::kVersions) ShowVersions(in, c);
  if (form == ParameterForm::kAddress) ShowPreferredAddress(in, c);
  if (form == ParameterForm::kNumber) {
    const WideField number = TakeVariable(c);
    AddLine(in, number, "Value: %I64u", number.wide);
    AppendToParent(in, number, " = %I64u", number.wide);
  }
  c.ranShort = false;
  const Field rest = Rest(c);
  AddLine(in, rest, "Value: %s", HexDigits(rest));
}

}  // namespace

void ShowQuicTransportParameters(const Place& in, Cursor& c) {
  if (NobodyWants(in)) return static_cast<void>(Rest(c));
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const Cursor start = c;
    const WideField id = TakeVariable(c), length = TakeVariable(c);
    if (!length.here) break;
    Cursor value = TakeCursor(c, length.wide < INT32_MAX ? static_cast<int64_t>(length.wide) : INT32_MAX);
    const Parameter* parameter = FindParameter(id.wide);
    const Place under = Under(in, AddLine(in, Ahead(start, c.offset - start.offset), "Parameter: %s", parameter->name));
    AddLine(under, id, "Parameter Type: 0x%I64X = %s", id.wide, parameter->name);
    AddLine(under, length, "Parameter Length: %I64u", length.wide);
    ShowValue(under, value, parameter->form);
  }
}

}  // namespace qxview
