// What the commands of IPMI hold (IPMI 2.0 chapters 18 to 35): the fields of requests and responses as rows, by network
// function and command. What stands behind the number of a parameter has a form for each parameter and is shown as bytes.
#include "decoders/app/ipmi_commands.h"

#include "decoders/app/ipmi_command_names.h"
#include "decoders/app/ipmi_names.h"

namespace qxview {
namespace {

constexpr auto kCapabilitiesResponse = LittleRows<NoValues>({
    Hex(1, "Capabilities Flags"), Flag(4, "Power Interlock"), Flag(5, "Diagnostic Interrupt"),
    Flag(6, "Front Panel Lockout"), Flag(7, "Intrusion Sensor"), Hex(1, "FRU Information Device Address"),
    Hex(1, "SDR Device Address"), Hex(1, "SEL Device Address"), Hex(1, "System Management Device Address"),
    Hex(1, "Bridge Device Address")});
constexpr auto kChassisStatusResponse = LittleRows<NoValues>({
    Hex(1, "Current Power State"), Bits(1, 2, "Power Restore Policy", kPowerPolicyNames),
    Flag(3, "Power Control Fault"), Flag(4, "Power Fault"), Flag(5, "Interlock"), Flag(6, "Power Overload"),
    Flag(7, "Power On"), Hex(1, "Last Power Event"), Flag(3, "Power On via IPMI"), Flag(4, "Power Fault"),
    Flag(5, "Interlock Activated"), Flag(6, "Power Overload"), Flag(7, "AC Failed"),
    Hex(1, "Miscellaneous Chassis State"), Bits(2, 2, "Identify State", kIdentifyNames), Flag(4, "Cooling Fault"),
    Flag(5, "Drive Fault"), Flag(6, "Front Panel Lockout"), Flag(7, "Chassis Intrusion"),
    Hex(1, "Front Panel Buttons")});
constexpr auto kChassisControlRequest = LittleRows<NoValues>({
    Word(1), Bits(0, 4, "Reserved"), Bits(4, 4, "Chassis Control", kChassisControlNames)});
constexpr auto kIdentifyRequest = LittleRows<NoValues>({
    Number(1, "Identify Interval", " seconds"), Word(1), Bits(0, 7, "Reserved"), Flag(7, "Force Identify On")});
constexpr auto kSetCapabilitiesRequest = LittleRows<NoValues>({
    Hex(1, "Capabilities Flags"), Flag(6, "Front Panel Lockout"), Flag(7, "Intrusion Sensor"),
    Hex(1, "FRU Information Device Address"), Hex(1, "SDR Device Address"), Hex(1, "SEL Device Address"),
    Hex(1, "System Management Device Address"), Hex(1, "Bridge Device Address")});
constexpr auto kRestorePolicyRequest = LittleRows<NoValues>({
    Word(1), Bits(0, 5, "Reserved"), Bits(5, 3, "Power Restore Policy", kSetPowerPolicyNames)});
constexpr auto kRestorePolicyResponse = LittleRows<NoValues>({
    Hex(1, "Policy Support"), Flag(5, "Always Power Up"), Flag(6, "Restore to Previous State"),
    Flag(7, "Always Stay Off")});
constexpr auto kRestartCauseResponse = LittleRows<NoValues>({
    Word(1), Bits(0, 4, "Reserved"), Bits(4, 4, "Restart Cause", kRestartCauseNames), Number(1, "Channel Number")});
constexpr auto kSetBootOptionsRequest = LittleRows<NoValues>({
    Word(1), Flag(0, "Parameter Invalid"), Bits(1, 7, "Boot Option Parameter", kBootOptionNames),
    Bytes(0, "Parameter Data")});
constexpr auto kGetBootOptionsRequest = LittleRows<NoValues>({
    Word(1), Bits(0, 1, "Reserved"), Bits(1, 7, "Boot Option Parameter", kBootOptionNames),
    Number(1, "Set Selector"), Number(1, "Block Selector")});
constexpr auto kGetBootOptionsResponse = LittleRows<NoValues>({
    Number(1, "Parameter Version"), Word(1), Flag(0, "Parameter Invalid"),
    Bits(1, 7, "Boot Option Parameter", kBootOptionNames), Bytes(0, "Parameter Data")});
constexpr auto kPanelEnablesRequest = LittleRows<NoValues>({
    Hex(1, "Front Panel Button Disables"), Flag(4, "Standby"), Flag(5, "Diagnostic Interrupt"), Flag(6, "Reset"),
    Flag(7, "Power Off")});
constexpr auto kPowerCycleRequest = LittleRows<NoValues>({
    Number(1, "Power Cycle Interval", " seconds")});
constexpr auto kPowerOnHoursResponse = LittleRows<NoValues>({
    Number(1, "Minutes per Count"), Number(4, "Counter Reading")});
constexpr auto kEventReceiverRequest = LittleRows<NoValues>({
    Hex(1, "Event Receiver Address"), Word(1), Bits(0, 6, "Reserved"), Bits(6, 2, "Event Receiver LUN")});
constexpr auto kPlatformEventRequest = LittleRows<NoValues>({
    Hex(1, "Event Message Revision"), Number(1, "Sensor Type", kSensorTypeNames), Number(1, "Sensor Number"),
    Word(1), Bits(0, 1, "Event Direction", kDirectionNames), Bits(1, 7, "Event Type"), Hex(1, "Event Data 1"),
    Hex(1, "Event Data 2"), Hex(1, "Event Data 3")});
constexpr auto kPefCapabilitiesResponse = LittleRows<NoValues>({
    Hex(1, "PEF Version"), Hex(1, "Action Support"), Flag(0, "OEM Event Record Filtering"),
    Flag(2, "Diagnostic Interrupt"), Flag(3, "OEM Action"), Flag(4, "Power Cycle"), Flag(5, "Reset"),
    Flag(6, "Power Down"), Flag(7, "Alert"), Number(1, "Event Filter Table Entries")});
constexpr auto kPostponeTimerRequest = LittleRows<NoValues>({
    Number(1, "PEF Postpone Timeout", " seconds")});
constexpr auto kPostponeTimerResponse = LittleRows<NoValues>({
    Number(1, "Present Timer Countdown", " seconds")});
constexpr auto kSetPefRequest = LittleRows<NoValues>({
    Word(1), Bits(0, 1, "Reserved"), Bits(1, 7, "PEF Parameter", kPefParameterNames), Bytes(0, "Parameter Data")});
constexpr auto kGetPefRequest = LittleRows<NoValues>({
    Word(1), Flag(0, "Get Revision Only"), Bits(1, 7, "PEF Parameter", kPefParameterNames),
    Number(1, "Set Selector"), Number(1, "Block Selector")});
constexpr auto kGetPefResponse = LittleRows<NoValues>({
    Hex(1, "Parameter Revision"), Bytes(0, "Parameter Data")});
constexpr auto kSetProcessedRequest = LittleRows<NoValues>({
    Word(1), Bits(0, 7, "Reserved"), Bits(7, 1, "Set By", kProcessorNames), Hex(2, "Record ID")});
constexpr auto kGetProcessedResponse = LittleRows<NoValues>({
    UnixTime(4, "Most Recent Addition"), Hex(2, "Last Record ID"), Hex(2, "Last Software Processed Event ID"),
    Hex(2, "Last BMC Processed Event ID")});
constexpr auto kAlertImmediateRequest = LittleRows<NoValues>({
    Word(1), Bits(0, 4, "Reserved"), Bits(4, 4, "Channel Number"), Word(1), Bits(0, 2, "Operation", kAlertNames),
    Bits(2, 2, "Reserved"), Bits(4, 4, "Destination Selector"), Word(1), Flag(0, "Send Alert String"),
    Bits(1, 7, "String Selector"), Bytes(0, "Platform Event Parameters")});
constexpr auto kAlertImmediateResponse = LittleRows<NoValues>({
    Number(1, "Alert Immediate Status", kAlertStatusNames)});
constexpr auto kPetAcknowledgeRequest = LittleRows<NoValues>({
    Number(2, "Sequence Number"), UnixTime(4, "Local Timestamp"), Hex(1, "Event Source Type"),
    Hex(1, "Sensor Device"), Number(1, "Sensor Number"), Hex(1, "Event Data 1"), Hex(1, "Event Data 2"),
    Hex(1, "Event Data 3")});
constexpr auto kDeviceSdrInfoRequest = LittleRows<NoValues>({
    Word(1), Bits(0, 7, "Reserved"), Bits(7, 1, "Operation", kSdrOperationNames)});
constexpr auto kDeviceSdrInfoResponse = LittleRows<NoValues>({
    Number(1, "Sensors or Records"), Hex(1, "Flags"), Flag(0, "Dynamic Population"), Flag(4, "LUN 3 Has Sensors"),
    Flag(5, "LUN 2 Has Sensors"), Flag(6, "LUN 1 Has Sensors"), Flag(7, "LUN 0 Has Sensors"),
    Hex(4, "Sensor Population Change Indicator")});
constexpr auto kReadingFactorsRequest = LittleRows<NoValues>({
    Number(1, "Sensor Number"), Hex(1, "Reading")});
constexpr auto kReadingFactorsResponse = LittleRows<NoValues>({
    Hex(1, "Next Reading"), Hex(1, "M (Low Bits)"), Word(1), Bits(0, 2, "M (High Bits)"), Bits(2, 6, "Tolerance"),
    Hex(1, "B (Low Bits)"), Word(1), Bits(0, 2, "B (High Bits)"), Bits(2, 6, "Accuracy (Low Bits)"), Word(1),
    Bits(0, 4, "Accuracy (High Bits)"), Bits(4, 2, "Accuracy Exponent"), Bits(6, 2, "Reserved"), Word(1),
    Bits(0, 4, "Result Exponent"), Bits(4, 4, "B Exponent")});
constexpr auto kSetHysteresisRequest = LittleRows<NoValues>({
    Number(1, "Sensor Number"), Hex(1, "Hysteresis Mask"), Number(1, "Positive-going Hysteresis"),
    Number(1, "Negative-going Hysteresis")});
constexpr auto kGetHysteresisRequest = LittleRows<NoValues>({
    Number(1, "Sensor Number"), Hex(1, "Hysteresis Mask")});
constexpr auto kGetHysteresisResponse = LittleRows<NoValues>({
    Number(1, "Positive-going Hysteresis"), Number(1, "Negative-going Hysteresis")});
constexpr auto kSetThresholdRequest = LittleRows<NoValues>({
    Number(1, "Sensor Number"), Hex(1, "Thresholds Set"), Number(1, "Lower Non-critical Threshold"),
    Number(1, "Lower Critical Threshold"), Number(1, "Lower Non-recoverable Threshold"),
    Number(1, "Upper Non-critical Threshold"), Number(1, "Upper Critical Threshold"),
    Number(1, "Upper Non-recoverable Threshold")});
constexpr auto kGetThresholdResponse = LittleRows<NoValues>({
    Hex(1, "Readable Thresholds"), Number(1, "Lower Non-critical Threshold"), Number(1, "Lower Critical Threshold"),
    Number(1, "Lower Non-recoverable Threshold"), Number(1, "Upper Non-critical Threshold"),
    Number(1, "Upper Critical Threshold"), Number(1, "Upper Non-recoverable Threshold")});
constexpr auto kSetEventEnableRequest = LittleRows<NoValues>({
    Number(1, "Sensor Number"), Hex(1, "Enables"), Flag(0, "Event Messages"), Flag(1, "Scanning"),
    Bits(2, 2, "Operation", kEnableNames), Hex(2, "Assertion Event Mask"), Hex(2, "Deassertion Event Mask")});
constexpr auto kGetEventEnableResponse = LittleRows<NoValues>({
    Hex(1, "Enables"), Flag(0, "Event Messages"), Flag(1, "Scanning"), Hex(2, "Assertion Event Mask"),
    Hex(2, "Deassertion Event Mask")});
constexpr auto kRearmRequest = LittleRows<NoValues>({
    Number(1, "Sensor Number"), Word(1), Flag(0, "Re-arm Selected Events"), Bits(1, 7, "Reserved"),
    Hex(2, "Assertion Event Mask"), Hex(2, "Deassertion Event Mask")});
constexpr auto kEventStatusResponse = LittleRows<NoValues>({
    Hex(1, "Sensor Status"), Flag(0, "Event Messages Enabled"), Flag(1, "Scanning Enabled"),
    Flag(2, "Reading Unavailable"), Hex(2, "Asserted Events"), Hex(2, "Deasserted Events")});
constexpr auto kReadingRequest = LittleRows<NoValues>({
    Number(1, "Sensor Number")});
constexpr auto kReadingResponse = LittleRows<NoValues>({
    Number(1, "Sensor Reading"), Hex(1, "Sensor Status"), Flag(0, "Event Messages Enabled"),
    Flag(1, "Scanning Enabled"), Flag(2, "Reading Unavailable"), Hex(1, "Present Thresholds or States"),
    Hex(1, "Present States (High Bits)")});
constexpr auto kSetSensorTypeRequest = LittleRows<NoValues>({
    Number(1, "Sensor Number"), Number(1, "Sensor Type", kSensorTypeNames), Word(1), Bits(0, 1, "Reserved"),
    Bits(1, 7, "Event Type")});
constexpr auto kGetSensorTypeResponse = LittleRows<NoValues>({
    Number(1, "Sensor Type", kSensorTypeNames), Word(1), Bits(0, 1, "Reserved"), Bits(1, 7, "Event Type")});
constexpr auto kSetReadingRequest = LittleRows<NoValues>({
    Number(1, "Sensor Number"), Hex(1, "Operation"), Number(1, "Sensor Reading"), Hex(2, "Assertion Event Mask"),
    Hex(2, "Deassertion Event Mask"), Hex(1, "Event Data 1"), Hex(1, "Event Data 2"), Hex(1, "Event Data 3")});
constexpr auto kDeviceIdResponse = LittleRows<NoValues>({
    Hex(1, "Device ID"), Hex(1, "Device Revision"), Flag(0, "Provides Device SDRs"), Bits(4, 4, "Revision"),
    Hex(1, "Firmware Revision 1"), Flag(0, "Update in Progress"), Bits(1, 7, "Major Firmware Revision"),
    Hex(1, "Firmware Revision 2"), Hex(1, "IPMI Version"), Hex(1, "Additional Device Support"),
    Flag(0, "Chassis Device"), Flag(1, "Bridge"), Flag(2, "IPMB Event Generator"), Flag(3, "IPMB Event Receiver"),
    Flag(4, "FRU Inventory Device"), Flag(5, "SEL Device"), Flag(6, "SDR Repository Device"),
    Flag(7, "Sensor Device"), Number(3, "Manufacturer ID"), Number(2, "Product ID"),
    Bytes(4, "Auxiliary Firmware Revision")});
constexpr auto kSelfTestResponse = LittleRows<NoValues>({
    Hex(1, "Self Test Result", kSelfTestNames), Hex(1, "Self Test Detail")});
constexpr auto kSetAcpiRequest = LittleRows<NoValues>({
    Word(1), Flag(0, "Set System Power State"), Bits(1, 7, "System Power State", kAcpiSystemNames), Word(1),
    Flag(0, "Set Device Power State"), Bits(1, 7, "Device Power State", kAcpiDeviceNames)});
constexpr auto kGetAcpiResponse = LittleRows<NoValues>({
    Word(1), Bits(0, 1, "Reserved"), Bits(1, 7, "System Power State", kAcpiSystemNames), Word(1),
    Bits(0, 1, "Reserved"), Bits(1, 7, "Device Power State", kAcpiDeviceNames)});
constexpr auto kGuidResponse = LittleRows<NoValues>({
    Bytes(16, "GUID")});
constexpr auto kFunctionSupportRequest = LittleRows<NoValues>({
    Word(1), Bits(0, 4, "Reserved"), Bits(4, 4, "Channel Number")});
constexpr auto kFunctionSupportResponse = LittleRows<NoValues>({
    Hex(1, "LUN Support"), Bytes(16, "Network Function Pairs")});
constexpr auto kCommandSupportRequest = LittleRows<NoValues>({
    Word(1), Bits(0, 4, "Reserved"), Bits(4, 4, "Channel Number"), Word(1), Bits(0, 2, "Commands"),
    Bits(2, 6, "Network Function"), Word(1), Bits(0, 6, "Reserved"), Bits(6, 2, "LUN")});
constexpr auto kCommandSupportResponse = LittleRows<NoValues>({
    Bytes(16, "Supported Commands")});
constexpr auto kSetWatchdogRequest = LittleRows<NoValues>({
    Word(1), Flag(0, "Do Not Log"), Flag(1, "Keep Running"), Bits(2, 3, "Reserved"),
    Bits(5, 3, "Timer Use", kTimerUseNames), Word(1), Bits(0, 1, "Reserved"),
    Bits(1, 3, "Pre-timeout Interrupt", kPretimeoutNames), Bits(4, 1, "Reserved"),
    Bits(5, 3, "Timeout Action", kTimeoutNames), Number(1, "Pre-timeout Interval", " seconds"),
    Hex(1, "Expiration Flags"), Number(2, "Initial Countdown", " x 100 ms")});
constexpr auto kGetWatchdogResponse = LittleRows<NoValues>({
    Word(1), Flag(0, "Do Not Log"), Flag(1, "Keep Running"), Bits(2, 3, "Reserved"),
    Bits(5, 3, "Timer Use", kTimerUseNames), Word(1), Bits(0, 1, "Reserved"),
    Bits(1, 3, "Pre-timeout Interrupt", kPretimeoutNames), Bits(4, 1, "Reserved"),
    Bits(5, 3, "Timeout Action", kTimeoutNames), Number(1, "Pre-timeout Interval", " seconds"),
    Hex(1, "Expiration Flags"), Number(2, "Initial Countdown", " x 100 ms"),
    Number(2, "Present Countdown", " x 100 ms")});
constexpr auto kGlobalEnablesRequest = LittleRows<NoValues>({
    Hex(1, "Global Enables"), Flag(0, "OEM 2"), Flag(1, "OEM 1"), Flag(2, "OEM 0"), Flag(4, "System Event Logging"),
    Flag(5, "Event Message Buffer"), Flag(6, "Event Message Buffer Full Interrupt"),
    Flag(7, "Receive Message Queue Interrupt")});
constexpr auto kMessageFlagsRequest = LittleRows<NoValues>({
    Hex(1, "Message Flags"), Flag(0, "OEM 2"), Flag(1, "OEM 1"), Flag(2, "OEM 0"),
    Flag(4, "Watchdog Pre-timeout Interrupt"), Flag(6, "Event Message Buffer Full"),
    Flag(7, "Receive Message Available")});
constexpr auto kEnableReceiveRequest = LittleRows<NoValues>({
    Word(1), Bits(0, 4, "Reserved"), Bits(4, 4, "Channel Number"), Number(1, "Channel State", kReceiveNames)});
constexpr auto kEnableReceiveResponse = LittleRows<NoValues>({
    Word(1), Bits(0, 4, "Reserved"), Bits(4, 4, "Channel Number"), Number(1, "Channel State", kReceiveNames)});
constexpr auto kGetMessageResponse = LittleRows<NoValues>({
    Word(1), Bits(0, 4, "Inferred Privilege Level", kIpmiPrivilegeNames), Bits(4, 4, "Channel Number"),
    Bytes(0, "Message Data")});
constexpr auto kSendMessageRequest = LittleRows<NoValues>({
    Word(1), Bits(0, 2, "Tracking", kTrackingNames), Flag(2, "Encrypted"), Flag(3, "Authenticated"),
    Bits(4, 4, "Channel Number"), Bytes(0, "Message Data")});
constexpr auto kSendMessageResponse = LittleRows<NoValues>({
    Bytes(0, "Response Data")});
constexpr auto kEventBufferResponse = LittleRows<NoValues>({
    Bytes(16, "Event Message")});
constexpr auto kBlockTransferResponse = LittleRows<NoValues>({
    Number(1, "Outstanding Requests"), Number(1, "Input Buffer Size"), Number(1, "Output Buffer Size"),
    Number(1, "Request-to-Response Time", " seconds"), Number(1, "Recommended Retries")});
constexpr auto kChannelRequest = LittleRows<NoValues>({
    Word(1), Flag(0, "IPMI 2.0 Data"), Bits(1, 3, "Reserved"), Bits(4, 4, "Channel Number"), Word(1),
    Bits(0, 4, "Reserved"), Bits(4, 4, "Requested Maximum Privilege Level", kIpmiPrivilegeNames)});
constexpr auto kChannelResponse = LittleRows<NoValues>({
    Number(1, "Channel Number"), Hex(1, "Authentication Types"), Flag(0, "IPMI 2.0 Capabilities"), Flag(2, "OEM"),
    Flag(3, "Straight Password"), Flag(5, "MD5"), Flag(6, "MD2"), Flag(7, "None"), Hex(1, "Authentication Status"),
    Flag(2, "KG Set"), Flag(3, "Per-message Authentication Disabled"),
    Flag(4, "User Level Authentication Disabled"), Flag(5, "Non-null User Names Enabled"),
    Flag(6, "Null User Names Enabled"), Flag(7, "Anonymous Login Enabled"), Hex(1, "Extended Capabilities"),
    Flag(6, "IPMI 2.0 Connections"), Flag(7, "IPMI 1.5 Connections"), Number(3, "OEM ID"),
    Hex(1, "OEM Auxiliary Data")});
constexpr auto kChallengeRequest = LittleRows<NoValues>({
    Number(1, "Authentication Type", kIpmiAuthenticationNames), Text(16, "User Name")});
constexpr auto kChallengeResponse = LittleRows<NoValues>({
    Hex(4, "Temporary Session ID"), Bytes(16, "Challenge String")});
constexpr auto kActivateRequest = LittleRows<NoValues>({
    Number(1, "Authentication Type", kIpmiAuthenticationNames),
    Number(1, "Maximum Privilege Level", kIpmiPrivilegeNames), Bytes(16, "Challenge String"),
    Hex(4, "Initial Outbound Sequence Number")});
constexpr auto kActivateResponse = LittleRows<NoValues>({
    Number(1, "Authentication Type", kIpmiAuthenticationNames), Hex(4, "Session ID"),
    Hex(4, "Initial Inbound Sequence Number"), Number(1, "Maximum Privilege Level", kIpmiPrivilegeNames)});
constexpr auto kPrivilegeRequest = LittleRows<NoValues>({
    Number(1, "Privilege Level", kIpmiPrivilegeNames)});
constexpr auto kCloseSessionRequest = LittleRows<NoValues>({
    Hex(4, "Session ID")});
constexpr auto kSessionInfoRequest = LittleRows<NoValues>({
    Hex(1, "Session Index"), Bytes(0, "Session Handle or ID")});
constexpr auto kSessionInfoResponse = LittleRows<NoValues>({
    Hex(1, "Session Handle"), Number(1, "Possible Active Sessions"), Number(1, "Active Sessions"),
    Number(1, "User ID"), Word(1), Bits(0, 4, "Reserved"), Bits(4, 4, "Privilege Level", kIpmiPrivilegeNames),
    Word(1), Bits(0, 4, "Session Protocol", kSessionProtocolNames), Bits(4, 4, "Channel Number"),
    IPv4("Remote Address"), Mac("Remote MAC Address"), Number(2, "Remote Port")});
constexpr auto kAuthCodeRequest = LittleRows<NoValues>({
    Word(1), Bits(0, 2, "Authentication Type"), Bits(2, 2, "Reserved"), Bits(4, 4, "Channel Number"),
    Number(1, "User ID"), Bytes(16, "Data to Hash")});
constexpr auto kAuthCodeResponse = LittleRows<NoValues>({
    Bytes(0, "Authentication Code")});
constexpr auto kSetAccessRequest = LittleRows<NoValues>({
    Word(1), Bits(0, 4, "Reserved"), Bits(4, 4, "Channel Number"), Word(1), Bits(0, 2, "Access Kept", kKeptNames),
    Flag(2, "PEF Alerting Disabled"), Flag(3, "Per-message Authentication Disabled"),
    Flag(4, "User Level Authentication Disabled"), Bits(5, 3, "Access Mode", kAccessNames), Word(1),
    Bits(0, 2, "Set Privilege Limit"), Bits(2, 2, "Reserved"),
    Bits(4, 4, "Privilege Level Limit", kIpmiPrivilegeNames)});
constexpr auto kGetAccessRequest = LittleRows<NoValues>({
    Word(1), Bits(0, 4, "Reserved"), Bits(4, 4, "Channel Number"), Word(1), Bits(0, 2, "Access Kept", kKeptNames),
    Bits(2, 6, "Reserved")});
constexpr auto kGetAccessResponse = LittleRows<NoValues>({
    Word(1), Bits(0, 2, "Access Kept", kKeptNames), Flag(2, "PEF Alerting Disabled"),
    Flag(3, "Per-message Authentication Disabled"), Flag(4, "User Level Authentication Disabled"),
    Bits(5, 3, "Access Mode", kAccessNames), Word(1), Bits(0, 4, "Reserved"),
    Bits(4, 4, "Privilege Level Limit", kIpmiPrivilegeNames)});
constexpr auto kChannelInfoRequest = LittleRows<NoValues>({
    Word(1), Bits(0, 4, "Reserved"), Bits(4, 4, "Channel Number")});
constexpr auto kChannelInfoResponse = LittleRows<NoValues>({
    Word(1), Bits(0, 4, "Reserved"), Bits(4, 4, "Channel Number"), Word(1), Bits(0, 1, "Reserved"),
    Bits(1, 7, "Channel Medium Type", kMediumNames), Word(1), Bits(0, 3, "Reserved"),
    Bits(3, 5, "Channel Protocol Type", kChannelProtocolNames), Word(1),
    Bits(0, 2, "Session Support", kSessionSupportNames), Bits(2, 6, "Active Sessions"),
    Number(3, "Protocol Vendor ID"), Hex(2, "Auxiliary Channel Information")});
constexpr auto kSetUserAccessRequest = LittleRows<NoValues>({
    Word(1), Flag(0, "Change Bits"), Flag(1, "Callback Only"), Flag(2, "Link Authentication"),
    Flag(3, "IPMI Messaging"), Bits(4, 4, "Channel Number"), Word(1), Bits(0, 2, "Reserved"), Bits(2, 6, "User ID"),
    Word(1), Bits(0, 4, "Reserved"), Bits(4, 4, "Privilege Level Limit", kIpmiPrivilegeNames),
    Number(1, "Session Limit")});
constexpr auto kGetUserAccessRequest = LittleRows<NoValues>({
    Word(1), Bits(0, 4, "Reserved"), Bits(4, 4, "Channel Number"), Word(1), Bits(0, 2, "Reserved"),
    Bits(2, 6, "User ID")});
constexpr auto kGetUserAccessResponse = LittleRows<NoValues>({
    Number(1, "Maximum User IDs"), Word(1), Bits(0, 2, "User ID Status", kUserStatusNames),
    Bits(2, 6, "Enabled User IDs"), Number(1, "Fixed Names"), Word(1), Flag(1, "Callback Only"),
    Flag(2, "Link Authentication"), Flag(3, "IPMI Messaging"),
    Bits(4, 4, "Privilege Level Limit", kIpmiPrivilegeNames)});
constexpr auto kSetUserNameRequest = LittleRows<NoValues>({
    Number(1, "User ID"), Text(16, "User Name")});
constexpr auto kGetUserNameRequest = LittleRows<NoValues>({
    Number(1, "User ID")});
constexpr auto kGetUserNameResponse = LittleRows<NoValues>({
    Text(16, "User Name")});
constexpr auto kSetPasswordRequest = LittleRows<NoValues>({
    Word(1), Flag(0, "20-byte Password"), Bits(2, 6, "User ID"), Word(1), Bits(0, 6, "Reserved"),
    Bits(6, 2, "Operation", kPasswordNames), Text(0, "Password")});
constexpr auto kActivatePayloadRequest = LittleRows<NoValues>({
    Hex(1, "Payload Type", kIpmiPayloadNames), Number(1, "Payload Instance"), Bytes(4, "Auxiliary Request Data")});
constexpr auto kActivatePayloadResponse = LittleRows<NoValues>({
    Bytes(4, "Auxiliary Response Data"), Number(2, "Inbound Payload Size"), Number(2, "Outbound Payload Size"),
    Number(2, "Payload Port"), Hex(2, "Payload VLAN")});
constexpr auto kDeactivatePayloadRequest = LittleRows<NoValues>({
    Hex(1, "Payload Type", kIpmiPayloadNames), Number(1, "Payload Instance"), Bytes(4, "Auxiliary Request Data")});
constexpr auto kPayloadStatusRequest = LittleRows<NoValues>({
    Hex(1, "Payload Type", kIpmiPayloadNames)});
constexpr auto kPayloadStatusResponse = LittleRows<NoValues>({
    Word(1), Bits(0, 4, "Reserved"), Bits(4, 4, "Instance Capacity"), Hex(2, "Active Instances")});
constexpr auto kPayloadInstanceRequest = LittleRows<NoValues>({
    Hex(1, "Payload Type", kIpmiPayloadNames), Number(1, "Payload Instance")});
constexpr auto kPayloadInstanceResponse = LittleRows<NoValues>({
    Hex(4, "Session ID"), Bytes(8, "Payload Information")});
constexpr auto kSetUserPayloadRequest = LittleRows<NoValues>({
    Word(1), Bits(0, 4, "Reserved"), Bits(4, 4, "Channel Number"), Word(1), Bits(0, 2, "Operation"),
    Bits(2, 6, "User ID"), Hex(1, "Standard Payload Enables 1"), Hex(1, "Standard Payload Enables 2"),
    Hex(1, "OEM Payload Enables 1"), Hex(1, "OEM Payload Enables 2")});
constexpr auto kGetUserPayloadResponse = LittleRows<NoValues>({
    Hex(1, "Standard Payload Enables 1"), Hex(1, "Standard Payload Enables 2"), Hex(1, "OEM Payload Enables 1"),
    Hex(1, "OEM Payload Enables 2")});
constexpr auto kPayloadSupportResponse = LittleRows<NoValues>({
    Hex(2, "Standard Payload Types"), Hex(2, "Session Setup Payload Types"), Hex(2, "OEM Payload Types"),
    Hex(2, "Reserved")});
constexpr auto kPayloadVersionRequest = LittleRows<NoValues>({
    Word(1), Bits(0, 4, "Reserved"), Bits(4, 4, "Channel Number"), Hex(1, "Payload Type", kIpmiPayloadNames)});
constexpr auto kPayloadVersionResponse = LittleRows<NoValues>({
    Hex(1, "Format Version")});
constexpr auto kMasterWriteReadRequest = LittleRows<NoValues>({
    Hex(1, "Bus ID"), Hex(1, "Slave Address"), Number(1, "Read Count"), Bytes(0, "Write Data")});
constexpr auto kMasterWriteReadResponse = LittleRows<NoValues>({
    Bytes(0, "Read Data")});
constexpr auto kCipherSuitesRequest = LittleRows<NoValues>({
    Word(1), Bits(0, 4, "Reserved"), Bits(4, 4, "Channel Number"), Hex(1, "Payload Type", kIpmiPayloadNames),
    Word(1), Flag(0, "By Cipher Suite"), Bits(1, 1, "Reserved"), Bits(2, 6, "List Index")});
constexpr auto kCipherSuitesResponse = LittleRows<NoValues>({
    Number(1, "Channel Number"), Bytes(0, "Cipher Suite Records")});
constexpr auto kEncryptionRequest = LittleRows<NoValues>({
    Hex(1, "Payload Type", kIpmiPayloadNames), Word(1), Bits(0, 3, "Reserved"),
    Bits(3, 5, "Operation", kEncryptionNames)});
constexpr auto kSecurityKeysRequest = LittleRows<NoValues>({
    Word(1), Bits(0, 4, "Reserved"), Bits(4, 4, "Channel Number"), Word(1), Bits(0, 6, "Reserved"),
    Bits(6, 2, "Operation", kKeyOperationNames), Number(1, "Key ID"), Bytes(0, "Key")});
constexpr auto kSecurityKeysResponse = LittleRows<NoValues>({
    Word(1), Bits(0, 6, "Reserved"), Bits(6, 2, "Lock Status"), Bytes(0, "Key")});
constexpr auto kInterfaceCapabilitiesRequest = LittleRows<NoValues>({
    Word(1), Bits(0, 4, "Reserved"), Bits(4, 4, "System Interface", kInterfaceNames)});
constexpr auto kInterfaceCapabilitiesResponse = LittleRows<NoValues>({
    Number(1, "Reserved"), Hex(1, "Interface Version"), Number(1, "Maximum Message Size")});
constexpr auto kSetSystemInfoRequest = LittleRows<NoValues>({
    Number(1, "System Info Parameter", kSystemInfoNames), Bytes(0, "Parameter Data")});
constexpr auto kGetSystemInfoRequest = LittleRows<NoValues>({
    Word(1), Flag(0, "Get Revision Only"), Bits(1, 7, "Reserved"),
    Number(1, "System Info Parameter", kSystemInfoNames), Number(1, "Set Selector"), Number(1, "Block Selector")});
constexpr auto kFruInfoRequest = LittleRows<NoValues>({
    Number(1, "FRU Device ID")});
constexpr auto kFruInfoResponse = LittleRows<NoValues>({
    Number(2, "FRU Inventory Area Size"), Word(1), Bits(0, 7, "Reserved"), Flag(7, "Accessed by Words")});
constexpr auto kReadFruRequest = LittleRows<NoValues>({
    Number(1, "FRU Device ID"), Number(2, "Offset"), Number(1, "Count to Read")});
constexpr auto kReadFruResponse = LittleRows<NoValues>({
    Number(1, "Count Returned"), Bytes(0, "Data")});
constexpr auto kWriteFruRequest = LittleRows<NoValues>({
    Number(1, "FRU Device ID"), Number(2, "Offset"), Bytes(0, "Data")});
constexpr auto kWriteFruResponse = LittleRows<NoValues>({
    Number(1, "Count Written")});
constexpr auto kRepositoryInfoResponse = LittleRows<NoValues>({
    Hex(1, "Version"), Number(2, "Records"), Number(2, "Free Space", " bytes"), UnixTime(4, "Most Recent Addition"),
    UnixTime(4, "Most Recent Erase"), Hex(1, "Operation Support")});
constexpr auto kAllocationInfoResponse = LittleRows<NoValues>({
    Number(2, "Possible Allocation Units"), Number(2, "Allocation Unit Size"), Number(2, "Free Allocation Units"),
    Number(2, "Largest Free Block"), Number(1, "Maximum Record Size")});
constexpr auto kReservationResponse = LittleRows<NoValues>({
    Hex(2, "Reservation ID")});
constexpr auto kGetRecordRequest = LittleRows<NoValues>({
    Hex(2, "Reservation ID"), Hex(2, "Record ID"), Number(1, "Offset"), Number(1, "Bytes to Read")});
constexpr auto kGetRecordResponse = LittleRows<NoValues>({
    Hex(2, "Next Record ID"), Bytes(0, "Record Data")});
constexpr auto kAddRecordRequest = LittleRows<NoValues>({
    Bytes(0, "Record Data")});
constexpr auto kAddRecordResponse = LittleRows<NoValues>({
    Hex(2, "Record ID")});
constexpr auto kPartialAddRequest = LittleRows<NoValues>({
    Hex(2, "Reservation ID"), Hex(2, "Record ID"), Number(1, "Offset"), Number(1, "Progress", kProgressNames),
    Bytes(0, "Record Data")});
constexpr auto kDeleteRecordRequest = LittleRows<NoValues>({
    Hex(2, "Reservation ID"), Hex(2, "Record ID")});
constexpr auto kClearRequest = LittleRows<NoValues>({
    Hex(2, "Reservation ID"), Text(3, "Confirmation"), Hex(1, "Action", kClearNames)});
constexpr auto kClearResponse = LittleRows<NoValues>({
    Word(1), Bits(0, 4, "Reserved"), Bits(4, 4, "Erasure Progress", kErasureNames)});
constexpr auto kClockResponse = LittleRows<NoValues>({
    UnixTime(4, "Time")});
constexpr auto kInitializationRequest = LittleRows<NoValues>({
    Word(1), Bits(0, 7, "Reserved"), Flag(7, "Run Initialization Agent")});
constexpr auto kInitializationResponse = LittleRows<NoValues>({
    Word(1), Bits(0, 7, "Reserved"), Flag(7, "Initialization Completed")});
constexpr auto kGetEntryResponse = LittleRows<NoValues>({
    Hex(2, "Next Record ID"), Hex(2, "Record ID"), Hex(1, "Record Type", kRecordTypeNames),
    UnixTime(4, "Timestamp"), Hex(2, "Generator ID"), Hex(1, "Event Message Revision"),
    Number(1, "Sensor Type", kSensorTypeNames), Number(1, "Sensor Number"), Word(1),
    Bits(0, 1, "Event Direction", kDirectionNames), Bits(1, 7, "Event Type"), Hex(1, "Event Data 1"),
    Hex(1, "Event Data 2"), Hex(1, "Event Data 3")});
constexpr auto kAddEntryRequest = LittleRows<NoValues>({
    Hex(2, "Record ID"), Hex(1, "Record Type", kRecordTypeNames), UnixTime(4, "Timestamp"), Hex(2, "Generator ID"),
    Hex(1, "Event Message Revision"), Number(1, "Sensor Type", kSensorTypeNames), Number(1, "Sensor Number"),
    Word(1), Bits(0, 1, "Event Direction", kDirectionNames), Bits(1, 7, "Event Type"), Hex(1, "Event Data 1"),
    Hex(1, "Event Data 2"), Hex(1, "Event Data 3")});
constexpr auto kLogStatusRequest = LittleRows<NoValues>({
    Number(1, "Log Type", kLogNames)});
constexpr auto kLogStatusResponse = LittleRows<NoValues>({
    UnixTime(4, "Log Time"), Bytes(0, "Log Information")});
constexpr auto kSetLogStatusRequest = LittleRows<NoValues>({
    Number(1, "Log Type", kLogNames), Bytes(0, "Log Information")});
constexpr auto kUtcOffsetResponse = LittleRows<NoValues>({
    Signed(2, "UTC Offset", " minutes")});
constexpr auto kSetLanRequest = LittleRows<NoValues>({
    Word(1), Bits(0, 4, "Reserved"), Bits(4, 4, "Channel Number"), Number(1, "LAN Parameter", kLanParameterNames),
    Bytes(0, "Parameter Data")});
constexpr auto kGetLanRequest = LittleRows<NoValues>({
    Word(1), Flag(0, "Get Revision Only"), Bits(1, 3, "Reserved"), Bits(4, 4, "Channel Number"),
    Number(1, "LAN Parameter", kLanParameterNames), Number(1, "Set Selector"), Number(1, "Block Selector")});
constexpr auto kSuspendArpRequest = LittleRows<NoValues>({
    Word(1), Bits(0, 4, "Reserved"), Bits(4, 4, "Channel Number"), Word(1), Bits(0, 6, "Reserved"),
    Flag(6, "Suspend ARP Responses"), Flag(7, "Suspend Gratuitous ARPs")});
constexpr auto kSuspendArpResponse = LittleRows<NoValues>({
    Word(1), Bits(0, 6, "Reserved"), Flag(6, "ARP Responses Occurring"), Flag(7, "Gratuitous ARPs Occurring")});
constexpr auto kLanStatisticsRequest = LittleRows<NoValues>({
    Word(1), Bits(0, 4, "Reserved"), Bits(4, 4, "Channel Number"), Word(1), Bits(0, 7, "Reserved"),
    Flag(7, "Clear Statistics")});
constexpr auto kLanStatisticsResponse = LittleRows<NoValues>({
    Number(2, "IP Packets Received"), Number(2, "IP Header Errors"), Number(2, "IP Address Errors"),
    Number(2, "IP Fragments Received"), Number(2, "IP Packets Sent"), Number(2, "UDP Packets Received"),
    Number(2, "RMCP Packets Received"), Number(2, "UDP Proxy Packets Received"),
    Number(2, "UDP Proxy Packets Dropped")});
constexpr auto kSetSerialRequest = LittleRows<NoValues>({
    Word(1), Bits(0, 4, "Reserved"), Bits(4, 4, "Channel Number"), Number(1, "Serial Parameter"),
    Bytes(0, "Parameter Data")});
constexpr auto kGetSerialRequest = LittleRows<NoValues>({
    Word(1), Flag(0, "Get Revision Only"), Bits(1, 3, "Reserved"), Bits(4, 4, "Channel Number"),
    Number(1, "Serial Parameter"), Number(1, "Set Selector"), Number(1, "Block Selector")});
constexpr auto kSolActivatingRequest = LittleRows<NoValues>({
    Hex(1, "Session State"), Number(1, "Payload Instance"), Hex(2, "Format Version")});
constexpr auto kSetSolRequest = LittleRows<NoValues>({
    Word(1), Bits(0, 4, "Reserved"), Bits(4, 4, "Channel Number"), Number(1, "SOL Parameter", kSolParameterNames),
    Bytes(0, "Parameter Data")});
constexpr auto kGetSolRequest = LittleRows<NoValues>({
    Word(1), Flag(0, "Get Revision Only"), Bits(1, 3, "Reserved"), Bits(4, 4, "Channel Number"),
    Number(1, "SOL Parameter", kSolParameterNames), Number(1, "Set Selector"), Number(1, "Block Selector")});

struct Command {
  uint32_t key;
  RowSpan<NoValues> request, response;
};
constexpr Command kCommands[] = {
    {0x0000, {}, kCapabilitiesResponse}, {0x0001, {}, kChassisStatusResponse}, {0x0002, kChassisControlRequest, {}},
    {0x0004, kIdentifyRequest, {}}, {0x0005, kSetCapabilitiesRequest, {}},
    {0x0006, kRestorePolicyRequest, kRestorePolicyResponse}, {0x0007, {}, kRestartCauseResponse}, {0x0008,
    kSetBootOptionsRequest, {}}, {0x0009, kGetBootOptionsRequest, kGetBootOptionsResponse}, {0x000A,
    kPanelEnablesRequest, {}}, {0x000B, kPowerCycleRequest, {}}, {0x000F, {}, kPowerOnHoursResponse}, {0x0400,
    kEventReceiverRequest, {}}, {0x0401, {}, kEventReceiverRequest}, {0x0402, kPlatformEventRequest, {}}, {0x0410,
    {}, kPefCapabilitiesResponse}, {0x0411, kPostponeTimerRequest, kPostponeTimerResponse}, {0x0412, kSetPefRequest,
    {}}, {0x0413, kGetPefRequest, kGetPefResponse}, {0x0414, kSetProcessedRequest, {}}, {0x0415, {},
    kGetProcessedResponse}, {0x0416, kAlertImmediateRequest, kAlertImmediateResponse}, {0x0417,
    kPetAcknowledgeRequest, {}}, {0x0420, kDeviceSdrInfoRequest, kDeviceSdrInfoResponse},
    {0x0421, kGetRecordRequest, kGetRecordResponse}, {0x0422, {}, kReservationResponse},
    {0x0423, kReadingFactorsRequest, kReadingFactorsResponse}, {0x0424, kSetHysteresisRequest, {}},
    {0x0425, kGetHysteresisRequest, kGetHysteresisResponse}, {0x0426, kSetThresholdRequest, {}},
    {0x0427, kReadingRequest, kGetThresholdResponse}, {0x0428, kSetEventEnableRequest, {}},
    {0x0429, kReadingRequest, kGetEventEnableResponse}, {0x042A, kRearmRequest, {}},
    {0x042B, kReadingRequest, kEventStatusResponse}, {0x042D, kReadingRequest, kReadingResponse}, {0x042E,
    kSetSensorTypeRequest, {}}, {0x042F, kReadingRequest, kGetSensorTypeResponse}, {0x0430, kSetReadingRequest, {}},
    {0x0601, {}, kDeviceIdResponse}, {0x0604, {}, kSelfTestResponse}, {0x0606, kSetAcpiRequest, {}}, {0x0607, {},
    kGetAcpiResponse}, {0x0608, {}, kGuidResponse}, {0x0609, kFunctionSupportRequest, kFunctionSupportResponse},
    {0x060A, kCommandSupportRequest, kCommandSupportResponse}, {0x0624, kSetWatchdogRequest, {}}, {0x0625, {},
    kGetWatchdogResponse}, {0x062E, kGlobalEnablesRequest, {}}, {0x062F, {}, kGlobalEnablesRequest}, {0x0630,
    kMessageFlagsRequest, {}}, {0x0631, {}, kMessageFlagsRequest},
    {0x0632, kEnableReceiveRequest, kEnableReceiveResponse}, {0x0633, {}, kGetMessageResponse},
    {0x0634, kSendMessageRequest, kSendMessageResponse}, {0x0635, {}, kEventBufferResponse}, {0x0636, {},
    kBlockTransferResponse}, {0x0637, {}, kGuidResponse}, {0x0638, kChannelRequest, kChannelResponse},
    {0x0639, kChallengeRequest, kChallengeResponse}, {0x063A, kActivateRequest, kActivateResponse},
    {0x063B, kPrivilegeRequest, kPrivilegeRequest}, {0x063C, kCloseSessionRequest, {}},
    {0x063D, kSessionInfoRequest, kSessionInfoResponse}, {0x063F, kAuthCodeRequest, kAuthCodeResponse}, {0x0640,
    kSetAccessRequest, {}}, {0x0641, kGetAccessRequest, kGetAccessResponse},
    {0x0642, kChannelInfoRequest, kChannelInfoResponse}, {0x0643, kSetUserAccessRequest, {}},
    {0x0644, kGetUserAccessRequest, kGetUserAccessResponse}, {0x0645, kSetUserNameRequest, {}},
    {0x0646, kGetUserNameRequest, kGetUserNameResponse}, {0x0647, kSetPasswordRequest, {}},
    {0x0648, kActivatePayloadRequest, kActivatePayloadResponse}, {0x0649, kDeactivatePayloadRequest, {}},
    {0x064A, kPayloadStatusRequest, kPayloadStatusResponse},
    {0x064B, kPayloadInstanceRequest, kPayloadInstanceResponse}, {0x064C, kSetUserPayloadRequest, {}},
    {0x064D, kGetUserAccessRequest, kGetUserPayloadResponse},
    {0x064E, kFunctionSupportRequest, kPayloadSupportResponse},
    {0x064F, kPayloadVersionRequest, kPayloadVersionResponse},
    {0x0652, kMasterWriteReadRequest, kMasterWriteReadResponse},
    {0x0654, kCipherSuitesRequest, kCipherSuitesResponse}, {0x0655, kEncryptionRequest, {}},
    {0x0656, kSecurityKeysRequest, kSecurityKeysResponse},
    {0x0657, kInterfaceCapabilitiesRequest, kInterfaceCapabilitiesResponse}, {0x0658, kSetSystemInfoRequest, {}},
    {0x0659, kGetSystemInfoRequest, kGetPefResponse}, {0x0A10, kFruInfoRequest, kFruInfoResponse},
    {0x0A11, kReadFruRequest, kReadFruResponse}, {0x0A12, kWriteFruRequest, kWriteFruResponse}, {0x0A20, {},
    kRepositoryInfoResponse}, {0x0A21, {}, kAllocationInfoResponse}, {0x0A22, {}, kReservationResponse},
    {0x0A23, kGetRecordRequest, kGetRecordResponse}, {0x0A24, kAddRecordRequest, kAddRecordResponse},
    {0x0A25, kPartialAddRequest, kAddRecordResponse}, {0x0A26, kDeleteRecordRequest, kAddRecordResponse},
    {0x0A27, kClearRequest, kClearResponse}, {0x0A28, {}, kClockResponse}, {0x0A29, kClockResponse, {}},
    {0x0A2C, kInitializationRequest, kInitializationResponse}, {0x0A40, {}, kRepositoryInfoResponse}, {0x0A41, {},
    kAllocationInfoResponse}, {0x0A42, {}, kReservationResponse}, {0x0A43, kGetRecordRequest, kGetEntryResponse},
    {0x0A44, kAddEntryRequest, kAddRecordResponse}, {0x0A45, kPartialAddRequest, kAddRecordResponse},
    {0x0A46, kDeleteRecordRequest, kAddRecordResponse}, {0x0A47, kClearRequest, kClearResponse}, {0x0A48, {},
    kClockResponse}, {0x0A49, kClockResponse, {}}, {0x0A5A, kLogStatusRequest, kLogStatusResponse}, {0x0A5B,
    kSetLogStatusRequest, {}}, {0x0A5C, {}, kUtcOffsetResponse}, {0x0A5D, kUtcOffsetResponse, {}}, {0x0C01,
    kSetLanRequest, {}}, {0x0C02, kGetLanRequest, kGetPefResponse},
    {0x0C03, kSuspendArpRequest, kSuspendArpResponse}, {0x0C04, kLanStatisticsRequest, kLanStatisticsResponse},
    {0x0C10, kSetSerialRequest, {}}, {0x0C11, kGetSerialRequest, kGetPefResponse}, {0x0C20, kSolActivatingRequest,
    {}}, {0x0C21, kSetSolRequest, {}}, {0x0C22, kGetSolRequest, kGetPefResponse}};

}  // namespace

RowSpan<NoValues> IpmiDataRows(uint32_t key, bool isResponse) {
  for (const Command& row : kCommands) {
    if (row.key == key) return isResponse ? row.response : row.request;
  }
  return {};
}

}  // namespace qxview
