// The names of H.323's messages: Q.931 (ITU-T Q.931 and Q.850), RAS (ITU-T H.225.0) and H.245.
#pragma once
#include "core/name_table.h"

namespace qxview {

inline constexpr auto kQ931MessageNames = SortedNames({
    {0x01, "ALERTING"}, {0x02, "CALL PROCEEDING"}, {0x03, "PROGRESS"}, {0x05, "SETUP"}, {0x07, "CONNECT"},
    {0x0D, "SETUP ACKNOWLEDGE"}, {0x0F, "CONNECT ACKNOWLEDGE"}, {0x20, "USER INFORMATION"}, {0x21, "SUSPEND REJECT"},
    {0x22, "RESUME REJECT"}, {0x24, "HOLD"}, {0x25, "SUSPEND"}, {0x26, "RESUME"}, {0x28, "HOLD ACKNOWLEDGE"},
    {0x2D, "SUSPEND ACKNOWLEDGE"}, {0x2E, "RESUME ACKNOWLEDGE"}, {0x30, "HOLD REJECT"}, {0x31, "RETRIEVE"},
    {0x33, "RETRIEVE ACKNOWLEDGE"}, {0x37, "RETRIEVE REJECT"}, {0x45, "DISCONNECT"}, {0x46, "RESTART"},
    {0x4D, "RELEASE"}, {0x4E, "RESTART ACKNOWLEDGE"}, {0x5A, "RELEASE COMPLETE"}, {0x60, "SEGMENT"},
    {0x62, "FACILITY"}, {0x64, "REGISTER"}, {0x6E, "NOTIFY"}, {0x75, "STATUS ENQUIRY"}, {0x79, "CONGESTION CONTROL"},
    {0x7B, "INFORMATION"}, {0x7D, "STATUS"},
});

inline constexpr auto kQ931CauseNames = SortedNames({
    {1, "Unallocated number"}, {2, "No route to transit network"}, {3, "No route to destination"},
    {4, "Send special information tone"}, {5, "Misdialled trunk prefix"}, {6, "Channel unacceptable"},
    {7, "Call awarded in an established channel"}, {8, "Preemption"}, {9, "Preemption, circuit reserved"},
    {16, "Normal call clearing"}, {17, "User busy"}, {18, "No user responding"}, {19, "No answer from user"},
    {20, "Subscriber absent"}, {21, "Call rejected"}, {22, "Number changed"}, {26, "Non-selected user clearing"},
    {27, "Destination out of order"}, {28, "Invalid number format"}, {29, "Facility rejected"},
    {30, "Response to status enquiry"}, {31, "Normal, unspecified"}, {34, "No circuit available"},
    {38, "Network out of order"}, {41, "Temporary failure"}, {42, "Switching equipment congestion"},
    {43, "Access information discarded"}, {44, "Requested circuit not available"}, {46, "Precedence call blocked"},
    {47, "Resource unavailable, unspecified"}, {49, "Quality of service not available"},
    {50, "Requested facility not subscribed"}, {53, "Outgoing calls barred within CUG"},
    {55, "Incoming calls barred within CUG"}, {57, "Bearer capability not authorized"},
    {58, "Bearer capability not presently available"}, {63, "Service not available, unspecified"},
    {65, "Bearer capability not implemented"}, {66, "Channel type not implemented"},
    {69, "Requested facility not implemented"}, {70, "Only restricted digital bearer available"},
    {79, "Service not implemented, unspecified"}, {81, "Invalid call reference"}, {82, "Channel does not exist"},
    {83, "No such suspended call"}, {84, "Call identity in use"}, {85, "No call suspended"},
    {86, "Suspended call has been cleared"}, {87, "User not member of CUG"}, {88, "Incompatible destination"},
    {90, "Non-existent CUG"}, {91, "Invalid transit network selection"}, {95, "Invalid message, unspecified"},
    {96, "Mandatory information element missing"}, {97, "Message type not implemented"},
    {98, "Message not compatible with call state"}, {99, "Information element not implemented"},
    {100, "Invalid information element contents"}, {101, "Message not compatible with call state"},
    {102, "Recovery on timer expiry"}, {103, "Parameter not implemented, passed on"},
    {110, "Message with unrecognized parameter discarded"}, {111, "Protocol error, unspecified"},
    {127, "Interworking, unspecified"},
});

// RasMessage, by choice index; those from requestInProgress on are extensions.
inline constexpr const char* kRasMessageNames[] = {
    "gatekeeperRequest", "gatekeeperConfirm", "gatekeeperReject", "registrationRequest", "registrationConfirm",
    "registrationReject", "unregistrationRequest", "unregistrationConfirm", "unregistrationReject",
    "admissionRequest", "admissionConfirm", "admissionReject", "bandwidthRequest", "bandwidthConfirm",
    "bandwidthReject", "disengageRequest", "disengageConfirm", "disengageReject", "locationRequest",
    "locationConfirm", "locationReject", "infoRequest", "infoRequestResponse", "nonStandardMessage",
    "unknownMessageResponse", "requestInProgress", "resourcesAvailableIndicate", "resourcesAvailableConfirm",
    "infoRequestAck", "infoRequestNak", "serviceControlIndication", "serviceControlResponse",
    "admissionConfirmSequence",
};

// How many optional root fields each of the messages above begins with, extensions left out: their bits stand between
// the choice and the request number.
inline constexpr int32_t kRasOptionalFields[] = {
    4, 2, 2, 3, 3, 2, 3, 1, 1, 7, 2, 1, 2, 1, 1, 1, 1, 1, 2, 1, 1, 2, 3, 0, 0,
};

// The messages of the four kinds of MultimediaSystemControlMessage, by choice index.
inline constexpr const char* kH245RequestNames[] = {
    "nonStandard", "masterSlaveDetermination", "terminalCapabilitySet", "openLogicalChannel",
    "closeLogicalChannel", "requestChannelClose", "multiplexEntrySend", "requestMultiplexEntry", "requestMode",
    "roundTripDelayRequest", "maintenanceLoopRequest", "communicationModeRequest", "conferenceRequest",
    "multilinkRequest", "logicalChannelRateRequest", "genericRequest",
};
inline constexpr const char* kH245ResponseNames[] = {
    "nonStandard", "masterSlaveDeterminationAck", "masterSlaveDeterminationReject", "terminalCapabilitySetAck",
    "terminalCapabilitySetReject", "openLogicalChannelAck", "openLogicalChannelReject",
    "closeLogicalChannelAck", "requestChannelCloseAck", "requestChannelCloseReject", "multiplexEntrySendAck",
    "multiplexEntrySendReject", "requestMultiplexEntryAck", "requestMultiplexEntryReject", "requestModeAck",
    "requestModeReject", "roundTripDelayResponse", "maintenanceLoopAck", "maintenanceLoopReject",
    "communicationModeResponse", "conferenceResponse", "multilinkResponse", "logicalChannelRateAcknowledge",
    "logicalChannelRateReject", "genericResponse",
};
inline constexpr const char* kH245CommandNames[] = {
    "nonStandard", "maintenanceLoopOffCommand", "sendTerminalCapabilitySet", "encryptionCommand",
    "flowControlCommand", "endSessionCommand", "miscellaneousCommand", "communicationModeCommand",
    "conferenceCommand", "h223MultiplexReconfiguration", "newATMVCCommand",
    "mobileMultilinkReconfigurationCommand", "genericCommand",
};
inline constexpr const char* kH245IndicationNames[] = {
    "nonStandard", "functionNotUnderstood", "masterSlaveDeterminationRelease", "terminalCapabilitySetRelease",
    "openLogicalChannelConfirm", "requestChannelCloseRelease", "multiplexEntrySendRelease",
    "requestMultiplexEntryRelease", "requestModeRelease", "miscellaneousIndication", "jitterIndication",
    "h223SkewIndication", "newATMVCIndication", "userInput", "h2250MaximumSkewIndication",
    "mcLocationIndication", "conferenceIndication", "vendorIdentification", "functionNotSupported",
    "multilinkIndication", "logicalChannelRateRelease", "flowControlIndication",
    "mobileMultilinkReconfigurationIndication", "genericIndication",
};

}  // namespace qxview
