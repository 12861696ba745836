// The names of Diameter's registries (IANA, AAA Parameters; 3GPP TS 29.230): commands, applications, vendors, results that
// a vendor defines, masks of words.
#pragma once
#include "core/name_table.h"

namespace qxview {

inline constexpr auto kDiameterCommandNames = SortedNames({
    {257, "Capabilities-Exchange"}, {258, "Re-Auth"}, {260, "AA-Mobile-Node"}, {262, "Home-Agent-MIP"}, {265, "AA"},
    {268, "Diameter-EAP"}, {271, "Accounting"}, {272, "Credit-Control"}, {274, "Abort-Session"},
    {275, "Session-Termination"}, {280, "Device-Watchdog"}, {282, "Disconnect-Peer"}, {283, "User-Authorization"},
    {284, "Server-Assignment"}, {285, "Location-Info"}, {286, "Multimedia-Auth"}, {287, "Registration-Termination"},
    {288, "Push-Profile"}, {300, "User-Authorization"}, {301, "Server-Assignment"}, {302, "Location-Info"},
    {303, "Multimedia-Auth"}, {304, "Registration-Termination"}, {305, "Push-Profile"}, {306, "User-Data"},
    {307, "Profile-Update"}, {308, "Subscribe-Notifications"}, {309, "Push-Notification"},
    {310, "Bootstrapping-Info"}, {311, "Message-Process"}, {312, "GBAPush-Info"}, {314, "Policy-Data"},
    {315, "Policy-Install"}, {316, "Update-Location"}, {317, "Cancel-Location"}, {318, "Authentication-Information"},
    {319, "Insert-Subscriber-Data"}, {320, "Delete-Subscriber-Data"}, {321, "Purge-UE"}, {322, "Reset"},
    {323, "Notify"}, {324, "ME-Identity-Check"}, {325, "MIP6"}, {326, "QoS-Authorization"}, {327, "QoS-Install"},
    {328, "Capabilities-Update"}, {329, "IKEv2-SK"}, {330, "NAT-Control"}, {8388620, "Provide-Location"},
    {8388621, "Location-Report"}, {8388622, "LCS-Routing-Info"}, {8388635, "Spending-Limit"},
    {8388636, "Spending-Status-Notification"}, {8388637, "TDF-Session"}, {8388638, "Update-VCSG-Location"},
    {8388639, "Device-Action"}, {8388640, "Device-Notification"}, {8388641, "Subscriber-Information"},
    {8388642, "Cancel-VCSG-Location"}, {8388643, "Device-Trigger"}, {8388644, "Delivery-Report"},
    {8388645, "MO-Forward-Short-Message"}, {8388646, "MT-Forward-Short-Message"},
    {8388647, "Send-Routing-Info-for-SM"}, {8388648, "Alert-Service-Centre"}, {8388649, "Report-SM-Delivery-Status"},
    {8388656, "Trigger-Establishment"}, {8388662, "GCS-Action"}, {8388663, "GCS-Notification"},
    {8388664, "ProSe-Subscriber-Information"}, {8388665, "Update-ProSe-Subscriber-Data"}, {8388666, "ProSe-Notify"},
    {8388667, "ProSe-Reset"}, {8388713, "ProSe-Initial-Location-Information"}, {8388718, "Configuration-Information"},
    {8388719, "Reporting-Information"}, {8388720, "Non-Aggregated-RUCI-Report"}, {8388721, "Aggregated-RUCI-Report"},
    {8388722, "Modify-Uecontext"}, {8388726, "NIDD-Information"}, {8388732, "Connection-Management"},
    {8388733, "MO-Data"}, {8388734, "MT-Data"}});

inline constexpr auto kDiameterApplicationNames = SortedNames({
    {0, "Common Messages"}, {1, "NASREQ"}, {2, "Mobile IPv4"}, {3, "Base Accounting"}, {4, "Credit Control"},
    {5, "EAP"}, {6, "Session Initiation Protocol"}, {7, "Mobile IPv6 IKE"}, {8, "Mobile IPv6 Auth"}, {9, "QoS"},
    {10, "Capabilities Update"}, {11, "IKE SK"}, {12, "NAT Control"}, {13, "ERP"}, {16777216, "3GPP Cx/Dx"},
    {16777217, "3GPP Sh/Ph"}, {16777218, "3GPP Re"}, {16777219, "3GPP Wx"}, {16777220, "3GPP Zn"},
    {16777221, "3GPP Zh"}, {16777222, "3GPP Gq"}, {16777223, "3GPP Gmb"}, {16777224, "3GPP Gx"},
    {16777225, "3GPP Gx over Gy"}, {16777226, "3GPP MM10"}, {16777229, "3GPP Rx (Release 6)"}, {16777230, "3GPP Pr"},
    {16777231, "ETSI e4"}, {16777235, "ITU-T Rs"}, {16777236, "3GPP Rx"}, {16777237, "3GPP2 Ty"}, {16777238, "3GPP Gx"},
    {16777245, "ITU-T S-TC1"}, {16777247, "3GPP2 CAN Access"}, {16777248, "3GPP2 WLAN Interworking Access"},
    {16777249, "3GPP2 WLAN Interworking Accounting"}, {16777250, "3GPP STa"}, {16777251, "3GPP S6a/S6d"},
    {16777252, "3GPP S13/S13'"}, {16777253, "ETSI Re"}, {16777254, "ETSI GOCAP"}, {16777255, "3GPP SLg"},
    {16777256, "ITU-T Rw"}, {16777257, "ETSI a4"}, {16777258, "ITU-T Rt"}, {16777261, "Femtocell Extension to EAP"},
    {16777262, "ITU-T Ru"}, {16777263, "ITU-T Ng"}, {16777264, "3GPP SWm"}, {16777265, "3GPP SWx"},
    {16777266, "3GPP Gxx"}, {16777267, "3GPP S9"}, {16777268, "3GPP Zpn"}, {16777271, "ITU-T Ri"},
    {16777272, "3GPP S6b"}, {16777274, "ITU-T Rd"}, {16777278, "ETSI Rr Request Model"},
    {16777279, "ETSI Rr Delegated Model"}, {16777291, "3GPP SLh"}, {16777292, "3GPP SGmb"}, {16777302, "3GPP Sy"},
    {16777303, "3GPP Sd"}, {16777306, "ITU-T M9"}, {16777307, "ITU-T M13"}, {16777308, "3GPP S7a"},
    {16777309, "3GPP Tsp"}, {16777310, "3GPP S6m"}, {16777311, "3GPP T4"}, {16777312, "3GPP S6c"},
    {16777313, "3GPP SGd"}, {16777318, "3GPP S15"}, {16777319, "3GPP S9a"}, {16777320, "3GPP S9a*"},
    {16777323, "3GPP2 M1"}, {16777325, "ITU-T Nc"}, {16777326, "ITU-T Ne"}, {16777335, "3GPP MB2-C"},
    {16777336, "3GPP PC4a"}, {16777337, "3GPP PC2"}, {16777340, "3GPP PC6/PC7"}, {16777342, "3GPP Np"},
    {16777345, "3GPP S6t"}, {16777346, "3GPP T6a/T6b"}, {16777348, "3GPP Ns"}, {16777349, "3GPP Nt"},
    {16777350, "3GPP St"}, {16777358, "3GPP Diameter Data Management"}, {16777365, "3GPP V4"}, {0xFFFFFFFF, "Relay"}});

inline constexpr auto kDiameterVendorNames = SortedNames({
    {0, "IETF"}, {9, "ciscoSystems"}, {94, "Nokia"}, {193, "Ericsson"}, {311, "Microsoft"}, {529, "Ascend"},
    {2011, "Huawei"}, {2636, "Juniper Networks"}, {5535, "3GPP2"}, {5771, "Cisco Systems"}, {8164, "Starent Networks"},
    {8741, "freeDiameter"}, {10415, "3GPP"}, {11502, "ITU-T"}, {12645, "Vodafone"}, {13019, "ETSI"},
    {14501, "Bridgewater Systems"}, {18681, "Travelping"}, {20942, "ZTE"}, {25053, "Ruckus Wireless"},
    {28458, "Nokia Solutions and Networks"}, {30065, "Arista Networks"}});

// Values of Experimental-Result-Code under 3GPP.
inline constexpr auto kDiameterExperimentalNames = SortedNames({
    {2001, "DIAMETER_FIRST_REGISTRATION"}, {2002, "DIAMETER_SUBSEQUENT_REGISTRATION"},
    {2003, "DIAMETER_UNREGISTERED_SERVICE"}, {2004, "DIAMETER_SUCCESS_SERVER_NAME_NOT_STORED"},
    {2021, "DIAMETER_PDP_CONTEXT_DELETION_INDICATION"}, {4100, "DIAMETER_USER_DATA_NOT_AVAILABLE"},
    {4101, "DIAMETER_PRIOR_UPDATE_IN_PROGRESS"}, {4121, "DIAMETER_ERROR_OUT_OF_RESOURCES"},
    {4141, "DIAMETER_PCC_BEARER_EVENT"}, {4142, "DIAMETER_BEARER_EVENT"}, {4143, "DIAMETER_AN_GW_FAILED"},
    {4144, "DIAMETER_PENDING_TRANSACTION"}, {4181, "DIAMETER_AUTHENTICATION_DATA_UNAVAILABLE"},
    {4182, "DIAMETER_ERROR_CAMEL_SUBSCRIPTION_PRESENT"}, {4201, "DIAMETER_ERROR_ABSENT_USER"},
    {4221, "DIAMETER_ERROR_UNREACHABLE_USER"}, {4222, "DIAMETER_ERROR_SUSPENDED_USER"},
    {4223, "DIAMETER_ERROR_DETACHED_USER"}, {4224, "DIAMETER_ERROR_POSITIONING_DENIED"},
    {4225, "DIAMETER_ERROR_POSITIONING_FAILED"}, {4226, "DIAMETER_ERROR_UNKNOWN_UNREACHABLE_LCS_CLIENT"},
    {4241, "DIAMETER_ERROR_NO_AVAILABLE_POLICY_COUNTERS"}, {4261, "REQUESTED_SERVICE_TEMPORARILY_NOT_AUTHORIZED"},
    {5001, "DIAMETER_ERROR_USER_UNKNOWN"}, {5002, "DIAMETER_ERROR_IDENTITIES_DONT_MATCH"},
    {5003, "DIAMETER_ERROR_IDENTITY_NOT_REGISTERED"}, {5004, "DIAMETER_ERROR_ROAMING_NOT_ALLOWED"},
    {5005, "DIAMETER_ERROR_IDENTITY_ALREADY_REGISTERED"}, {5006, "DIAMETER_ERROR_AUTH_SCHEME_NOT_SUPPORTED"},
    {5007, "DIAMETER_ERROR_IN_ASSIGNMENT_TYPE"}, {5008, "DIAMETER_ERROR_TOO_MUCH_DATA"},
    {5009, "DIAMETER_ERROR_NOT_SUPPORTED_USER_DATA"}, {5010, "DIAMETER_MISSING_USER_ID"},
    {5011, "DIAMETER_ERROR_FEATURE_UNSUPPORTED"}, {5012, "DIAMETER_ERROR_SERVING_NODE_FEATURE_UNSUPPORTED"},
    {5041, "DIAMETER_ERROR_USER_NO_WLAN_SUBSCRIPTION"}, {5042, "DIAMETER_ERROR_W-APN_UNUSED_BY_USER"},
    {5043, "DIAMETER_ERROR_NO_ACCESS_INDEPENDENT_SUBSCRIPTION"}, {5044, "DIAMETER_ERROR_USER_NO_W-APN_SUBSCRIPTION"},
    {5045, "DIAMETER_ERROR_UNSUITABLE_NETWORK"}, {5061, "INVALID_SERVICE_INFORMATION"}, {5062, "FILTER_RESTRICTIONS"},
    {5063, "REQUESTED_SERVICE_NOT_AUTHORIZED"}, {5064, "DUPLICATED_AF_SESSION"},
    {5065, "IP-CAN_SESSION_NOT_AVAILABLE"}, {5066, "UNAUTHORIZED_NON_EMERGENCY_SESSION"},
    {5067, "UNAUTHORIZED_SPONSORED_DATA_CONNECTIVITY"}, {5068, "TEMPORARY_NETWORK_FAILURE"},
    {5100, "DIAMETER_ERROR_USER_DATA_NOT_RECOGNIZED"}, {5101, "DIAMETER_ERROR_OPERATION_NOT_ALLOWED"},
    {5102, "DIAMETER_ERROR_USER_DATA_CANNOT_BE_READ"}, {5103, "DIAMETER_ERROR_USER_DATA_CANNOT_BE_MODIFIED"},
    {5104, "DIAMETER_ERROR_USER_DATA_CANNOT_BE_NOTIFIED"}, {5105, "DIAMETER_ERROR_TRANSPARENT_DATA_OUT_OF_SYNC"},
    {5106, "DIAMETER_ERROR_SUBS_DATA_ABSENT"}, {5107, "DIAMETER_ERROR_NO_SUBSCRIPTION_TO_DATA"},
    {5108, "DIAMETER_ERROR_DSAI_NOT_AVAILABLE"}, {5120, "DIAMETER_ERROR_START_INDICATION"},
    {5121, "DIAMETER_ERROR_STOP_INDICATION"}, {5122, "DIAMETER_ERROR_UNKNOWN_MBMS_BEARER_SERVICE"},
    {5123, "DIAMETER_ERROR_SERVICE_AREA"}, {5140, "DIAMETER_ERROR_INITIAL_PARAMETERS"},
    {5141, "DIAMETER_ERROR_TRIGGER_EVENT"}, {5142, "DIAMETER_PCC_RULE_EVENT"},
    {5143, "DIAMETER_ERROR_BEARER_NOT_AUTHORIZED"}, {5144, "DIAMETER_ERROR_TRAFFIC_MAPPING_INFO_REJECTED"},
    {5145, "DIAMETER_QOS_RULE_EVENT"}, {5147, "DIAMETER_ERROR_CONFLICTING_REQUEST"}, {5148, "DIAMETER_ADC_RULE_EVENT"},
    {5149, "DIAMETER_ERROR_NBIFOM_NOT_AUTHORIZED"}, {5401, "DIAMETER_ERROR_IMPI_UNKNOWN"},
    {5402, "DIAMETER_ERROR_NOT_AUTHORIZED"}, {5403, "DIAMETER_ERROR_TRANSACTION_IDENTIFIER_INVALID"},
    {5420, "DIAMETER_ERROR_UNKNOWN_EPS_SUBSCRIPTION"}, {5421, "DIAMETER_ERROR_RAT_NOT_ALLOWED"},
    {5422, "DIAMETER_ERROR_EQUIPMENT_UNKNOWN"}, {5423, "DIAMETER_ERROR_UNKNOWN_SERVING_NODE"},
    {5450, "DIAMETER_ERROR_USER_NO_NON_3GPP_SUBSCRIPTION"}, {5451, "DIAMETER_ERROR_USER_NO_APN_SUBSCRIPTION"},
    {5452, "DIAMETER_ERROR_RAT_TYPE_NOT_ALLOWED"}, {5453, "DIAMETER_ERROR_LATE_OVERLAPPING_REQUEST"},
    {5454, "DIAMETER_ERROR_TIMED_OUT_REQUEST"}, {5470, "DIAMETER_ERROR_SUBSESSION"},
    {5471, "DIAMETER_ERROR_ONGOING_SESSION_ESTABLISHMENT"}, {5490, "DIAMETER_ERROR_UNAUTHORIZED_REQUESTING_NETWORK"},
    {5510, "DIAMETER_ERROR_UNAUTHORIZED_REQUESTING_ENTITY"}, {5511, "DIAMETER_ERROR_UNAUTHORIZED_SERVICE"},
    {5530, "DIAMETER_ERROR_INVALID_SME_ADDRESS"}, {5531, "DIAMETER_ERROR_SC_CONGESTION"},
    {5532, "DIAMETER_ERROR_SM_PROTOCOL"}, {5550, "DIAMETER_ERROR_ABSENT_USER"},
    {5551, "DIAMETER_ERROR_USER_BUSY_FOR_MT_SMS"}, {5552, "DIAMETER_ERROR_FACILITY_NOT_SUPPORTED"},
    {5553, "DIAMETER_ERROR_ILLEGAL_USER"}, {5554, "DIAMETER_ERROR_ILLEGAL_EQUIPMENT"},
    {5555, "DIAMETER_ERROR_SM_DELIVERY_FAILURE"}, {5556, "DIAMETER_ERROR_SERVICE_NOT_SUBSCRIBED"},
    {5557, "DIAMETER_ERROR_SERVICE_BARRED"}, {5558, "DIAMETER_ERROR_MWD_LIST_FULL"},
    {5570, "DIAMETER_ERROR_UNKNOWN_POLICY_COUNTERS"}});

// Words of flags (3GPP TS 29.272).
inline constexpr auto kUlrFlagNames = SortedNames({
    {0x01, "Single-Registration-Indication"}, {0x02, "S6a/S6d-Indicator"}, {0x04, "Skip Subscriber Data"},
    {0x08, "GPRS-Subscription-Data-Indicator"}, {0x10, "Node-Type-Indicator"}, {0x20, "Initial-Attach-Indicator"},
    {0x40, "PS-LCS-Not-Supported-By-UE"}, {0x80, "SMS-Only-Indication"}, {0x100, "Dual-Registration-5G-Indicator"}});
inline constexpr auto kUlaFlagNames = SortedNames({{0x01, "Separation Indication"}, {0x02, "MME Registered for SMS"}});
inline constexpr auto kDsrFlagNames = SortedNames({
    {0x01, "Regional Subscription Withdrawal"}, {0x02, "Complete APN Configuration Profile Withdrawal"},
    {0x04, "Subscribed Charging Characteristics Withdrawal"}, {0x08, "PDN Subscription Contexts Withdrawal"},
    {0x10, "STN-SR"}, {0x20, "Complete PDP Context List Withdrawal"}, {0x40, "PDP Contexts Withdrawal"},
    {0x80, "Roaming Restricted Due to Unsupported Feature"}, {0x100, "Trace Data Withdrawal"},
    {0x200, "CSG Deleted"}, {0x400, "APN-OI-Replacement"}, {0x800, "GMLC List Withdrawal"}, {0x1000, "LCS Withdrawal"},
    {0x2000, "SMS Withdrawal"}});
inline constexpr auto kDsaFlagNames = SortedNames({{0x01, "Network Node Area Restricted"}});
inline constexpr auto kIdaFlagNames = SortedNames({{0x01, "Network Node Area Restricted"}});
inline constexpr auto kPuaFlagNames = SortedNames({{0x01, "Freeze M-TMSI"}, {0x02, "Freeze P-TMSI"}});
inline constexpr auto kNorFlagNames = SortedNames({
    {0x01, "Single-Registration-Indication"}, {0x02, "SGSN Area Restricted"}, {0x04, "Ready for SM from SGSN"},
    {0x08, "UE Reachable from MME"}, {0x10, "Delete all APN and PDN GW Identity Pairs"},
    {0x20, "UE Reachable from SGSN"}, {0x40, "Ready for SM from MME"},
    {0x80, "Homogeneous Support of IMS Voice over PS"},
    {0x100, "S6a/S6d-Indicator"}, {0x200, "Removal of MME Registration for SMS"}});
inline constexpr auto kIdrFlagNames = SortedNames({
    {0x01, "UE Reachability Request"}, {0x02, "T-ADS Data Request"}, {0x04, "EPS User State Request"},
    {0x08, "EPS Location Information Request"}, {0x10, "Current Location Request"}, {0x20, "Local Time Zone Request"},
    {0x40, "Remove SMS Registration"}, {0x80, "RAT-Type Requested"}, {0x100, "P-CSCF Restoration Request"}});
inline constexpr auto kClrFlagNames = SortedNames({{0x01, "S6a/S6d-Indicator"}, {0x02, "Reattach-Required"}});

}  // namespace qxview
