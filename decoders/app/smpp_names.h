// Names of SMPP's commands, codes and parameters (SMPP 5.0, 4.7 and 4.8), as the standard writes them.
#pragma once
#include "core/name_table.h"

namespace qxview {

inline constexpr auto kSmppCommandNames = SortedNames({
    {0x00000001, "bind_receiver"}, {0x00000002, "bind_transmitter"}, {0x00000003, "query_sm"},
    {0x00000004, "submit_sm"}, {0x00000005, "deliver_sm"}, {0x00000006, "unbind"}, {0x00000007, "replace_sm"},
    {0x00000008, "cancel_sm"}, {0x00000009, "bind_transceiver"}, {0x0000000B, "outbind"},
    {0x00000015, "enquire_link"}, {0x00000021, "submit_multi"}, {0x00000102, "alert_notification"},
    {0x00000103, "data_sm"}, {0x00000111, "broadcast_sm"}, {0x00000112, "query_broadcast_sm"},
    {0x00000113, "cancel_broadcast_sm"}, {0x80000000, "generic_nack"}, {0x80000001, "bind_receiver_resp"},
    {0x80000002, "bind_transmitter_resp"}, {0x80000003, "query_sm_resp"}, {0x80000004, "submit_sm_resp"},
    {0x80000005, "deliver_sm_resp"}, {0x80000006, "unbind_resp"}, {0x80000007, "replace_sm_resp"},
    {0x80000008, "cancel_sm_resp"}, {0x80000009, "bind_transceiver_resp"}, {0x80000015, "enquire_link_resp"},
    {0x80000021, "submit_multi_resp"}, {0x80000103, "data_sm_resp"}, {0x80000111, "broadcast_sm_resp"},
    {0x80000112, "query_broadcast_sm_resp"}, {0x80000113, "cancel_broadcast_sm_resp"}});

inline constexpr auto kSmppStatusNames = SortedNames({
    {0x0, "ESME_ROK"}, {0x1, "ESME_RINVMSGLEN"}, {0x2, "ESME_RINVCMDLEN"}, {0x3, "ESME_RINVCMDID"},
    {0x4, "ESME_RINVBNDSTS"}, {0x5, "ESME_RALYBND"}, {0x6, "ESME_RINVPRTFLG"}, {0x7, "ESME_RINVREGDLVFLG"},
    {0x8, "ESME_RSYSERR"}, {0xA, "ESME_RINVSRCADR"}, {0xB, "ESME_RINVDSTADR"}, {0xC, "ESME_RINVMSGID"},
    {0xD, "ESME_RBINDFAIL"}, {0xE, "ESME_RINVPASWD"}, {0xF, "ESME_RINVSYSID"}, {0x11, "ESME_RCANCELFAIL"},
    {0x13, "ESME_RREPLACEFAIL"}, {0x14, "ESME_RMSGQFUL"}, {0x15, "ESME_RINVSERTYP"}, {0x33, "ESME_RINVNUMDESTS"},
    {0x34, "ESME_RINVDLNAME"}, {0x40, "ESME_RINVDESTFLAG"}, {0x42, "ESME_RINVSUBREP"}, {0x43, "ESME_RINVESMCLASS"},
    {0x44, "ESME_RCNTSUBDL"}, {0x45, "ESME_RSUBMITFAIL"}, {0x48, "ESME_RINVSRCTON"}, {0x49, "ESME_RINVSRCNPI"},
    {0x50, "ESME_RINVDSTTON"}, {0x51, "ESME_RINVDSTNPI"}, {0x53, "ESME_RINVSYSTYP"}, {0x54, "ESME_RINVREPFLAG"},
    {0x55, "ESME_RINVNUMMSGS"}, {0x58, "ESME_RTHROTTLED"}, {0x61, "ESME_RINVSCHED"}, {0x62, "ESME_RINVEXPIRY"},
    {0x63, "ESME_RINVDFTMSGID"}, {0x64, "ESME_RX_T_APPN"}, {0x65, "ESME_RX_P_APPN"}, {0x66, "ESME_RX_R_APPN"},
    {0x67, "ESME_RQUERYFAIL"}, {0xC0, "ESME_RINVTLVSTREAM"}, {0xC1, "ESME_RTLVNOTALLWD"}, {0xC2, "ESME_RINVTLVLEN"},
    {0xC3, "ESME_RMISSINGTLV"}, {0xC4, "ESME_RINVTLVVAL"}, {0xFE, "ESME_RDELIVERYFAILURE"},
    {0xFF, "ESME_RUNKNOWNERR"}, {0x100, "ESME_RSERTYPUNAUTH"}, {0x101, "ESME_RPROHIBITED"},
    {0x102, "ESME_RSERTYPUNAVAIL"}, {0x103, "ESME_RSERTYPDENIED"}, {0x104, "ESME_RINVDCS"},
    {0x105, "ESME_RINVSRCADDRSUBUNIT"}, {0x106, "ESME_RINVDSTADDRSUBUNIT"}, {0x107, "ESME_RINVBCASTFREQINT"},
    {0x108, "ESME_RINVBCASTALIAS_NAME"}, {0x109, "ESME_RINVBCASTAREAFMT"}, {0x10A, "ESME_RINVNUMBCAST_AREAS"},
    {0x10B, "ESME_RINVBCASTCNTTYPE"}, {0x10C, "ESME_RINVBCASTMSGCLASS"}, {0x10D, "ESME_RBCASTFAIL"},
    {0x10E, "ESME_RBCASTQUERYFAIL"}, {0x10F, "ESME_RBCASTCANCELFAIL"}, {0x110, "ESME_RINVBCAST_REP"},
    {0x111, "ESME_RINVBCASTSRVGRP"}, {0x112, "ESME_RINVBCASTCHANIND"}});

inline constexpr auto kSmppParameterNames = SortedNames({
    {0x0005, "dest_addr_subunit"}, {0x0006, "dest_network_type"}, {0x0007, "dest_bearer_type"},
    {0x0008, "dest_telematics_id"}, {0x000D, "source_addr_subunit"}, {0x000E, "source_network_type"},
    {0x000F, "source_bearer_type"}, {0x0010, "source_telematics_id"}, {0x0017, "qos_time_to_live"},
    {0x0019, "payload_type"}, {0x001D, "additional_status_info_text"}, {0x001E, "receipted_message_id"},
    {0x0030, "ms_msg_wait_facilities"}, {0x0201, "privacy_indicator"}, {0x0202, "source_subaddress"},
    {0x0203, "dest_subaddress"}, {0x0204, "user_message_reference"}, {0x0205, "user_response_code"},
    {0x020A, "source_port"}, {0x020B, "destination_port"}, {0x020C, "sar_msg_ref_num"},
    {0x020D, "language_indicator"}, {0x020E, "sar_total_segments"}, {0x020F, "sar_segment_seqnum"},
    {0x0210, "sc_interface_version"}, {0x0302, "callback_num_pres_ind"}, {0x0303, "callback_num_atag"},
    {0x0304, "number_of_messages"}, {0x0381, "callback_num"}, {0x0420, "dpf_result"}, {0x0421, "set_dpf"},
    {0x0422, "ms_availability_status"}, {0x0423, "network_error_code"}, {0x0424, "message_payload"},
    {0x0425, "delivery_failure_reason"}, {0x0426, "more_messages_to_send"}, {0x0427, "message_state"},
    {0x0428, "congestion_state"}, {0x0501, "ussd_service_op"}, {0x0600, "broadcast_channel_indicator"},
    {0x0601, "broadcast_content_type"}, {0x0602, "broadcast_content_type_info"},
    {0x0603, "broadcast_message_class"}, {0x0604, "broadcast_rep_num"}, {0x0605, "broadcast_frequency_interval"},
    {0x0606, "broadcast_area_identifier"}, {0x0607, "broadcast_error_status"}, {0x0608, "broadcast_area_success"},
    {0x0609, "broadcast_end_time"}, {0x060A, "broadcast_service_group"}, {0x060B, "billing_identification"},
    {0x060D, "source_network_id"}, {0x060E, "dest_network_id"}, {0x060F, "source_node_id"},
    {0x0610, "dest_node_id"}, {0x0611, "dest_addr_np_resolution"}, {0x0612, "dest_addr_np_information"},
    {0x0613, "dest_addr_np_country"}, {0x1201, "display_time"}, {0x1203, "sms_signal"}, {0x1204, "ms_validity"},
    {0x130C, "alert_on_message_delivery"}, {0x1380, "its_reply_type"}, {0x1383, "its_session_info"}});

inline constexpr auto kSmppNumberTypeNames = SortedNames({
    {0, "Unknown"}, {1, "International"}, {2, "National"}, {3, "Network Specific"}, {4, "Subscriber Number"},
    {5, "Alphanumeric"}, {6, "Abbreviated"}});

inline constexpr auto kSmppPlanNames = SortedNames({
    {0, "Unknown"}, {1, "ISDN"}, {3, "Data"}, {4, "Telex"}, {6, "Land Mobile"}, {8, "National"}, {9, "Private"},
    {10, "ERMES"}, {14, "Internet"}, {18, "WAP Client ID"}});

inline constexpr auto kSmppFeatureNames = SortedNames({
    {0, "None"}, {1, "UDH Indicator"}, {2, "Reply Path"}, {3, "UDH Indicator and Reply Path"}});

inline constexpr auto kSmppTypeNames = SortedNames({
    {0, "Default"}, {1, "Delivery Receipt"}, {2, "Delivery Acknowledgement"}, {4, "User Acknowledgement"},
    {6, "Conversation Abort"}, {8, "Intermediate Delivery Notification"}});

inline constexpr auto kSmppModeNames = SortedNames({
    {0, "Default"}, {1, "Datagram"}, {2, "Forward"}, {3, "Store and Forward"}});

inline constexpr auto kSmppAckNames = SortedNames({
    {0, "None"}, {1, "Delivery"}, {2, "User"}, {3, "Delivery and User"}});

inline constexpr auto kSmppReceiptNames = SortedNames({
    {0, "None"}, {1, "Success or Failure"}, {2, "Failure"}, {3, "Success"}});

inline constexpr auto kSmppCodingNames = SortedNames({
    {0, "SMSC Default"}, {1, "ASCII"}, {2, "Octets"}, {3, "Latin 1"}, {4, "Octets"}, {5, "JIS"}, {6, "Cyrillic"},
    {7, "Latin and Hebrew"}, {8, "UCS-2"}, {9, "Pictogram"}, {10, "Music Codes"}, {13, "Extended Kanji"},
    {14, "KS C 5601"}});

inline constexpr auto kSmppStateNames = SortedNames({
    {0, "Scheduled"}, {1, "Enroute"}, {2, "Delivered"}, {3, "Expired"}, {4, "Deleted"}, {5, "Undeliverable"},
    {6, "Accepted"}, {7, "Unknown"}, {8, "Rejected"}, {9, "Skipped"}});

inline constexpr auto kSmppDestinationNames = SortedNames({
    {1, "SME Address"}, {2, "Distribution List"}});

}  // namespace qxview
