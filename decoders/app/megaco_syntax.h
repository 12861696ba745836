// The types of H.248's messages (ITU-T H.248.1 Annex A, with automatic tags): what each holds, as tables. A member's tag is
// its place, of lists the element's type is told.
#pragma once
#include "core/name_table.h"
#include "core/rows.h"

namespace qxview {

enum MegacoType : uint8_t {
  // what has no members
  kMegacoNumber, kMegacoBoolean, kMegacoNull, kMegacoText, kMegacoOctets, kMegacoIPv4, kMegacoIPv6, kMegacoObject,
  kMegacoContextId, kMegacoErrorCode, kMegacoPackageName, kMegacoPropertyName, kMegacoEventName, kMegacoSignalName,
  kMegacoStatisticName, kMegacoEventParameterName, kMegacoSignalParameterName, kMegacoTerminationName,
  kMegacoWildcard, kMegacoValue, kMegacoAuditTokens, kMegacoCompletionBits, kMegacoTopologyDirection,
  kMegacoTopologyExtension, kMegacoStreamMode, kMegacoRelation, kMegacoEventBufferControl, kMegacoServiceState,
  kMegacoMuxType, kMegacoModemType, kMegacoSignalType, kMegacoSignalDirection, kMegacoServiceChangeMethod,
  // what has
  kMegacoMessage, kMegacoAuthenticationHeader, kMegacoMessageBody, kMegacoMId, kMegacoIp4Address, kMegacoIp6Address,
  kMegacoDomainName, kMegacoBody, kMegacoTransactions, kMegacoTransaction, kMegacoTransactionRequest,
  kMegacoTransactionPending, kMegacoTransactionReply, kMegacoTransactionResult, kMegacoSegmentReply,
  kMegacoTransactionAcks, kMegacoTransactionAck, kMegacoError, kMegacoActionRequests, kMegacoActionRequest,
  kMegacoActionReplies, kMegacoActionReply, kMegacoContextRequest, kMegacoContextIds, kMegacoContextAudit,
  kMegacoSelectLogic, kMegacoTopologies, kMegacoTopologyRequest, kMegacoCommandRequests, kMegacoCommandRequest,
  kMegacoCommand, kMegacoCommandReplies, kMegacoCommandReply, kMegacoAmm, kMegacoDescriptors, kMegacoDescriptor,
  kMegacoAmmReply, kMegacoSubtract, kMegacoAuditRequest, kMegacoAuditReply, kMegacoAuditResult,
  kMegacoAuditListResult, kMegacoTerminationAudit, kMegacoAuditReturn, kMegacoAudit, kMegacoAuditedItems,
  kMegacoAuditedItem, kMegacoAuditedMedia, kMegacoAuditedStreams, kMegacoAuditedStreamList,
  kMegacoAuditedStreamDescriptor, kMegacoAuditedStream, kMegacoAuditedLocalControl, kMegacoAuditedProperties,
  kMegacoAuditedProperty, kMegacoAuditedLocalRemote, kMegacoAuditedTerminationState, kMegacoAuditedEvents,
  kMegacoAuditedEvent, kMegacoAuditedSignals, kMegacoAuditedSignal, kMegacoAuditedSignalList, kMegacoAuditedDigitMap,
  kMegacoAuditedStatistics, kMegacoAuditedPackages, kMegacoNotifyRequest, kMegacoNotifyReply, kMegacoObservedEvents,
  kMegacoObservedEventList, kMegacoObservedEvent, kMegacoEventParameters, kMegacoEventParameter,
  kMegacoExtraInformation, kMegacoServiceChange, kMegacoServiceChangeReply, kMegacoServiceChangeResult,
  kMegacoServiceChangeParameters, kMegacoServiceChangeResultParameters, kMegacoServiceChangeAddress, kMegacoProfile,
  kMegacoTerminationIds, kMegacoTerminationId, kMegacoWildcards, kMegacoMedia, kMegacoStreams, kMegacoStreamList,
  kMegacoStreamDescriptor, kMegacoStream, kMegacoLocalControl, kMegacoProperties, kMegacoProperty, kMegacoLocalRemote,
  kMegacoPropertyGroups, kMegacoTerminationState, kMegacoMux, kMegacoModem, kMegacoModemTypes, kMegacoEvents,
  kMegacoRequestedEvents, kMegacoRequestedEvent, kMegacoRequestedActions, kMegacoEventDigitMap,
  kMegacoNotifyBehaviour, kMegacoRegulatedDescriptor, kMegacoSecondEvents, kMegacoSecondRequestedEvents,
  kMegacoSecondRequestedEvent, kMegacoSecondRequestedActions, kMegacoEventBuffer, kMegacoEventSpecification,
  kMegacoSignals, kMegacoSignalRequest, kMegacoSequentialSignals, kMegacoSignalList, kMegacoSignal,
  kMegacoSignalParameters, kMegacoSignalParameter, kMegacoDigitMap, kMegacoDigitMapValue, kMegacoPackages,
  kMegacoPackage, kMegacoStatistics, kMegacoStatistic, kMegacoValues, kMegacoNonStandard,
  kMegacoNonStandardIdentifier, kMegacoH221, kMegacoTimeNotation
};

enum class MegacoForm : uint8_t { kRecord, kChoice, kList };

struct MegacoMember {
  uint8_t tag;
  MegacoType type;
  const char* label;
};
struct MegacoTable {
  MegacoForm form;
  uint8_t count;
  const MegacoMember* members;
};

constexpr MegacoMember kMegacoMessageMembers[] = {
    {0, kMegacoAuthenticationHeader, "Authentication Header"}, {1, kMegacoMessageBody, "Message"}};
constexpr MegacoMember kMegacoAuthenticationHeaderMembers[] = {
    {0, kMegacoOctets, "Security Parameters Index"}, {1, kMegacoOctets, "Sequence Number"},
    {2, kMegacoOctets, "Authentication Data"}};
constexpr MegacoMember kMegacoMessageBodyMembers[] = {
    {0, kMegacoNumber, "Version"}, {1, kMegacoMId, "Message ID"}, {2, kMegacoBody, "Body"}};
constexpr MegacoMember kMegacoMIdMembers[] = {
    {0, kMegacoIp4Address, "IPv4 Address"}, {1, kMegacoIp6Address, "IPv6 Address"},
    {2, kMegacoDomainName, "Domain Name"}, {3, kMegacoText, "Device Name"}, {4, kMegacoOctets, "MTP Address"}};
constexpr MegacoMember kMegacoIp4AddressMembers[] = {{0, kMegacoIPv4, "Address"}, {1, kMegacoNumber, "Port"}};
constexpr MegacoMember kMegacoIp6AddressMembers[] = {{0, kMegacoIPv6, "Address"}, {1, kMegacoNumber, "Port"}};
constexpr MegacoMember kMegacoDomainNameMembers[] = {{0, kMegacoText, "Name"}, {1, kMegacoNumber, "Port"}};
constexpr MegacoMember kMegacoBodyMembers[] = {
    {0, kMegacoError, "Message Error"}, {1, kMegacoTransactions, "Transactions"}};
constexpr MegacoMember kMegacoTransactionsMembers[] = {{0, kMegacoTransaction, "Transaction"}};
constexpr MegacoMember kMegacoTransactionMembers[] = {
    {0, kMegacoTransactionRequest, "Transaction Request"}, {1, kMegacoTransactionPending, "Transaction Pending"},
    {2, kMegacoTransactionReply, "Transaction Reply"},
    {3, kMegacoTransactionAcks, "Transaction Response Acknowledgement"}, {4, kMegacoSegmentReply, "Segment Reply"}};
constexpr MegacoMember kMegacoTransactionRequestMembers[] = {
    {0, kMegacoNumber, "Transaction ID"}, {1, kMegacoActionRequests, "Actions"}};
constexpr MegacoMember kMegacoTransactionPendingMembers[] = {{0, kMegacoNumber, "Transaction ID"}};
constexpr MegacoMember kMegacoTransactionReplyMembers[] = {
    {0, kMegacoNumber, "Transaction ID"}, {1, kMegacoNull, "Immediate Acknowledgement Required"},
    {2, kMegacoTransactionResult, "Transaction Result"}, {3, kMegacoNumber, "Segment Number"},
    {4, kMegacoNull, "Segmentation Complete"}};
constexpr MegacoMember kMegacoTransactionResultMembers[] = {
    {0, kMegacoError, "Transaction Error"}, {1, kMegacoActionReplies, "Action Replies"}};
constexpr MegacoMember kMegacoSegmentReplyMembers[] = {
    {0, kMegacoNumber, "Transaction ID"}, {1, kMegacoNumber, "Segment Number"},
    {2, kMegacoNull, "Segmentation Complete"}};
constexpr MegacoMember kMegacoTransactionAcksMembers[] = {{0, kMegacoTransactionAck, "Transaction Acknowledgement"}};
constexpr MegacoMember kMegacoTransactionAckMembers[] = {
    {0, kMegacoNumber, "First Acknowledgement"}, {1, kMegacoNumber, "Last Acknowledgement"}};
constexpr MegacoMember kMegacoErrorMembers[] = {{0, kMegacoErrorCode, "Error Code"}, {1, kMegacoText, "Error Text"}};
constexpr MegacoMember kMegacoActionRequestsMembers[] = {{0, kMegacoActionRequest, "Action Request"}};
constexpr MegacoMember kMegacoActionRequestMembers[] = {
    {0, kMegacoContextId, "Context ID"}, {1, kMegacoContextRequest, "Context Request"},
    {2, kMegacoContextAudit, "Context Attribute Audit"}, {3, kMegacoCommandRequests, "Command Requests"}};
constexpr MegacoMember kMegacoActionRepliesMembers[] = {{0, kMegacoActionReply, "Action Reply"}};
constexpr MegacoMember kMegacoActionReplyMembers[] = {
    {0, kMegacoContextId, "Context ID"}, {1, kMegacoError, "Error"}, {2, kMegacoContextRequest, "Context Reply"},
    {3, kMegacoCommandReplies, "Command Replies"}};
constexpr MegacoMember kMegacoContextRequestMembers[] = {
    {0, kMegacoNumber, "Priority"}, {1, kMegacoBoolean, "Emergency"}, {2, kMegacoTopologies, "Topology"},
    {3, kMegacoBoolean, "IEPS Call Indicator"}, {4, kMegacoProperties, "Context Properties"},
    {5, kMegacoContextIds, "Context List"}};
constexpr MegacoMember kMegacoContextIdsMembers[] = {{0, kMegacoContextId, "Context ID"}};
constexpr MegacoMember kMegacoContextAuditMembers[] = {
    {0, kMegacoNull, "Topology"}, {1, kMegacoNull, "Emergency"}, {2, kMegacoNull, "Priority"},
    {3, kMegacoNull, "IEPS Call Indicator"}, {4, kMegacoAuditedProperties, "Context Properties"},
    {5, kMegacoNumber, "Select Priority"}, {6, kMegacoBoolean, "Select Emergency"},
    {7, kMegacoBoolean, "Select IEPS Call Indicator"}, {8, kMegacoSelectLogic, "Select Logic"}};
constexpr MegacoMember kMegacoSelectLogicMembers[] = {{0, kMegacoNull, "AND"}, {1, kMegacoNull, "OR"}};
constexpr MegacoMember kMegacoTopologiesMembers[] = {{0, kMegacoTopologyRequest, "Topology Request"}};
constexpr MegacoMember kMegacoTopologyRequestMembers[] = {
    {0, kMegacoTerminationId, "Termination From"}, {1, kMegacoTerminationId, "Termination To"},
    {2, kMegacoTopologyDirection, "Topology Direction"}, {3, kMegacoNumber, "Stream ID"},
    {4, kMegacoTopologyExtension, "Topology Direction Extension"}};
constexpr MegacoMember kMegacoCommandRequestsMembers[] = {{0, kMegacoCommandRequest, "Command Request"}};
constexpr MegacoMember kMegacoCommandRequestMembers[] = {
    {0, kMegacoCommand, "Command"}, {1, kMegacoNull, "Optional"}, {2, kMegacoNull, "Wildcard Return"}};
constexpr MegacoMember kMegacoCommandMembers[] = {
    {0, kMegacoAmm, "Add"}, {1, kMegacoAmm, "Move"}, {2, kMegacoAmm, "Modify"}, {3, kMegacoSubtract, "Subtract"},
    {4, kMegacoAuditRequest, "Audit Capability"}, {5, kMegacoAuditRequest, "Audit Value"},
    {6, kMegacoNotifyRequest, "Notify"}, {7, kMegacoServiceChange, "Service Change"}};
constexpr MegacoMember kMegacoCommandRepliesMembers[] = {{0, kMegacoCommandReply, "Command Reply"}};
constexpr MegacoMember kMegacoCommandReplyMembers[] = {
    {0, kMegacoAmmReply, "Add Reply"}, {1, kMegacoAmmReply, "Move Reply"}, {2, kMegacoAmmReply, "Modify Reply"},
    {3, kMegacoAmmReply, "Subtract Reply"}, {4, kMegacoAuditReply, "Audit Capability Reply"},
    {5, kMegacoAuditReply, "Audit Value Reply"}, {6, kMegacoNotifyReply, "Notify Reply"},
    {7, kMegacoServiceChangeReply, "Service Change Reply"}};
constexpr MegacoMember kMegacoAmmMembers[] = {
    {0, kMegacoTerminationIds, "Termination IDs"}, {1, kMegacoDescriptors, "Descriptors"}};
constexpr MegacoMember kMegacoDescriptorsMembers[] = {{0, kMegacoDescriptor, "Descriptor"}};
constexpr MegacoMember kMegacoDescriptorMembers[] = {
    {0, kMegacoMedia, "Media Descriptor"}, {1, kMegacoModem, "Modem Descriptor"}, {2, kMegacoMux, "Mux Descriptor"},
    {3, kMegacoEvents, "Events Descriptor"}, {4, kMegacoEventBuffer, "Event Buffer Descriptor"},
    {5, kMegacoSignals, "Signals Descriptor"}, {6, kMegacoDigitMap, "Digit Map Descriptor"},
    {7, kMegacoAudit, "Audit Descriptor"}, {8, kMegacoStatistics, "Statistics Descriptor"}};
constexpr MegacoMember kMegacoAmmReplyMembers[] = {
    {0, kMegacoTerminationIds, "Termination IDs"}, {1, kMegacoTerminationAudit, "Termination Audit"}};
constexpr MegacoMember kMegacoSubtractMembers[] = {
    {0, kMegacoTerminationIds, "Termination IDs"}, {1, kMegacoAudit, "Audit Descriptor"}};
constexpr MegacoMember kMegacoAuditRequestMembers[] = {
    {0, kMegacoTerminationId, "Termination ID"}, {1, kMegacoAudit, "Audit Descriptor"},
    {2, kMegacoTerminationIds, "Termination IDs"}};
constexpr MegacoMember kMegacoAuditReplyMembers[] = {
    {0, kMegacoTerminationIds, "Context Audit Result"}, {1, kMegacoError, "Error"},
    {2, kMegacoAuditResult, "Audit Result"}, {3, kMegacoAuditListResult, "Audit Result of a List"}};
constexpr MegacoMember kMegacoAuditResultMembers[] = {
    {0, kMegacoTerminationId, "Termination ID"}, {1, kMegacoTerminationAudit, "Termination Audit Result"}};
constexpr MegacoMember kMegacoAuditListResultMembers[] = {
    {0, kMegacoTerminationIds, "Termination IDs"}, {1, kMegacoTerminationAudit, "Termination Audit Result"}};
constexpr MegacoMember kMegacoTerminationAuditMembers[] = {{0, kMegacoAuditReturn, "Audit Return Parameter"}};
constexpr MegacoMember kMegacoAuditReturnMembers[] = {
    {0, kMegacoError, "Error"}, {1, kMegacoMedia, "Media Descriptor"}, {2, kMegacoModem, "Modem Descriptor"},
    {3, kMegacoMux, "Mux Descriptor"}, {4, kMegacoEvents, "Events Descriptor"},
    {5, kMegacoEventBuffer, "Event Buffer Descriptor"}, {6, kMegacoSignals, "Signals Descriptor"},
    {7, kMegacoDigitMap, "Digit Map Descriptor"}, {8, kMegacoObservedEvents, "Observed Events Descriptor"},
    {9, kMegacoStatistics, "Statistics Descriptor"}, {10, kMegacoPackages, "Packages Descriptor"},
    {11, kMegacoAudit, "Empty Descriptors"}};
constexpr MegacoMember kMegacoAuditMembers[] = {
    {0, kMegacoAuditTokens, "Audit Tokens"}, {1, kMegacoAuditedItems, "Audited Items"}};
constexpr MegacoMember kMegacoAuditedItemsMembers[] = {{0, kMegacoAuditedItem, "Audited Item"}};
constexpr MegacoMember kMegacoAuditedItemMembers[] = {
    {0, kMegacoAuditedMedia, "Media Descriptor"}, {1, kMegacoAuditedEvents, "Events Descriptor"},
    {2, kMegacoAuditedEvent, "Event Buffer Descriptor"}, {3, kMegacoAuditedSignals, "Signals Descriptor"},
    {4, kMegacoAuditedDigitMap, "Digit Map Descriptor"}, {5, kMegacoAuditedStatistics, "Statistics Descriptor"},
    {6, kMegacoAuditedPackages, "Packages Descriptor"}};
constexpr MegacoMember kMegacoAuditedMediaMembers[] = {
    {0, kMegacoAuditedTerminationState, "Termination State Descriptor"}, {1, kMegacoAuditedStreams, "Streams"}};
constexpr MegacoMember kMegacoAuditedStreamsMembers[] = {
    {0, kMegacoAuditedStream, "One Stream"}, {1, kMegacoAuditedStreamList, "Multiple Streams"}};
constexpr MegacoMember kMegacoAuditedStreamListMembers[] = {{0, kMegacoAuditedStreamDescriptor, "Stream Descriptor"}};
constexpr MegacoMember kMegacoAuditedStreamDescriptorMembers[] = {
    {0, kMegacoNumber, "Stream ID"}, {1, kMegacoAuditedStream, "Stream Parameters"}};
constexpr MegacoMember kMegacoAuditedStreamMembers[] = {
    {0, kMegacoAuditedLocalControl, "Local Control Descriptor"}, {1, kMegacoAuditedLocalRemote, "Local Descriptor"},
    {2, kMegacoAuditedLocalRemote, "Remote Descriptor"}, {3, kMegacoAuditedStatistics, "Statistics Descriptor"}};
constexpr MegacoMember kMegacoAuditedLocalControlMembers[] = {
    {0, kMegacoNull, "Stream Mode"}, {1, kMegacoNull, "Reserve Value"}, {2, kMegacoNull, "Reserve Group"},
    {3, kMegacoAuditedProperties, "Properties"}, {4, kMegacoStreamMode, "Stream Mode Selector"}};
constexpr MegacoMember kMegacoAuditedPropertiesMembers[] = {{0, kMegacoAuditedProperty, "Property"}};
constexpr MegacoMember kMegacoAuditedPropertyMembers[] = {
    {0, kMegacoPropertyName, "Property Name"}, {1, kMegacoProperty, "Property Value"}};
constexpr MegacoMember kMegacoAuditedLocalRemoteMembers[] = {
    {0, kMegacoNumber, "Property Group ID"}, {1, kMegacoAuditedProperties, "Property Group"}};
constexpr MegacoMember kMegacoAuditedTerminationStateMembers[] = {
    {0, kMegacoAuditedProperties, "Properties"}, {1, kMegacoNull, "Event Buffer Control"},
    {2, kMegacoNull, "Service State"}, {3, kMegacoServiceState, "Service State Selector"}};
constexpr MegacoMember kMegacoAuditedEventsMembers[] = {
    {0, kMegacoNumber, "Request ID"}, {1, kMegacoEventName, "Event Name"}, {2, kMegacoNumber, "Stream ID"}};
constexpr MegacoMember kMegacoAuditedEventMembers[] = {
    {0, kMegacoEventName, "Event Name"}, {1, kMegacoNumber, "Stream ID"}};
constexpr MegacoMember kMegacoAuditedSignalsMembers[] = {
    {0, kMegacoAuditedSignal, "Signal"}, {1, kMegacoAuditedSignalList, "Sequential Signal List"}};
constexpr MegacoMember kMegacoAuditedSignalMembers[] = {
    {0, kMegacoSignalName, "Signal Name"}, {1, kMegacoNumber, "Stream ID"}, {2, kMegacoNumber, "Request ID"}};
constexpr MegacoMember kMegacoAuditedSignalListMembers[] = {
    {0, kMegacoNumber, "Signal List ID"}, {1, kMegacoAuditedSignal, "Signal"}};
constexpr MegacoMember kMegacoAuditedDigitMapMembers[] = {{0, kMegacoOctets, "Digit Map Name"}};
constexpr MegacoMember kMegacoAuditedStatisticsMembers[] = {{0, kMegacoStatisticName, "Statistic Name"}};
constexpr MegacoMember kMegacoAuditedPackagesMembers[] = {
    {0, kMegacoPackageName, "Package Name"}, {1, kMegacoNumber, "Package Version"}};
constexpr MegacoMember kMegacoNotifyRequestMembers[] = {
    {0, kMegacoTerminationIds, "Termination IDs"}, {1, kMegacoObservedEvents, "Observed Events Descriptor"},
    {2, kMegacoError, "Error"}};
constexpr MegacoMember kMegacoNotifyReplyMembers[] = {
    {0, kMegacoTerminationIds, "Termination IDs"}, {1, kMegacoError, "Error"}};
constexpr MegacoMember kMegacoObservedEventsMembers[] = {
    {0, kMegacoNumber, "Request ID"}, {1, kMegacoObservedEventList, "Observed Events"}};
constexpr MegacoMember kMegacoObservedEventListMembers[] = {{0, kMegacoObservedEvent, "Observed Event"}};
constexpr MegacoMember kMegacoObservedEventMembers[] = {
    {0, kMegacoEventName, "Event Name"}, {1, kMegacoNumber, "Stream ID"},
    {2, kMegacoEventParameters, "Event Parameters"}, {3, kMegacoTimeNotation, "Time Notation"}};
constexpr MegacoMember kMegacoEventParametersMembers[] = {{0, kMegacoEventParameter, "Event Parameter"}};
constexpr MegacoMember kMegacoEventParameterMembers[] = {
    {0, kMegacoEventParameterName, "Parameter Name"}, {1, kMegacoValues, "Values"},
    {2, kMegacoExtraInformation, "Extra Information"}};
constexpr MegacoMember kMegacoExtraInformationMembers[] = {
    {0, kMegacoRelation, "Relation"}, {1, kMegacoBoolean, "Range"}, {2, kMegacoBoolean, "Sublist"}};
constexpr MegacoMember kMegacoServiceChangeMembers[] = {
    {0, kMegacoTerminationIds, "Termination IDs"}, {1, kMegacoServiceChangeParameters, "Service Change Parameters"}};
constexpr MegacoMember kMegacoServiceChangeReplyMembers[] = {
    {0, kMegacoTerminationIds, "Termination IDs"}, {1, kMegacoServiceChangeResult, "Service Change Result"}};
constexpr MegacoMember kMegacoServiceChangeResultMembers[] = {
    {0, kMegacoError, "Error"}, {1, kMegacoServiceChangeResultParameters, "Service Change Parameters"}};
constexpr MegacoMember kMegacoServiceChangeParametersMembers[] = {
    {0, kMegacoServiceChangeMethod, "Service Change Method"},
    {1, kMegacoServiceChangeAddress, "Service Change Address"}, {2, kMegacoNumber, "Service Change Version"},
    {3, kMegacoProfile, "Service Change Profile"}, {4, kMegacoValues, "Service Change Reason"},
    {5, kMegacoNumber, "Service Change Delay"}, {6, kMegacoMId, "Service Change Controller ID"},
    {7, kMegacoTimeNotation, "Time Stamp"}, {8, kMegacoNonStandard, "Nonstandard Data"},
    {9, kMegacoAudit, "Service Change Information"}, {10, kMegacoNull, "Service Change Incomplete"}};
constexpr MegacoMember kMegacoServiceChangeResultParametersMembers[] = {
    {0, kMegacoMId, "Service Change Controller ID"}, {1, kMegacoServiceChangeAddress, "Service Change Address"},
    {2, kMegacoNumber, "Service Change Version"}, {3, kMegacoProfile, "Service Change Profile"},
    {4, kMegacoTimeNotation, "Time Stamp"}};
constexpr MegacoMember kMegacoServiceChangeAddressMembers[] = {
    {0, kMegacoNumber, "Port"}, {1, kMegacoIp4Address, "IPv4 Address"}, {2, kMegacoIp6Address, "IPv6 Address"},
    {3, kMegacoDomainName, "Domain Name"}, {4, kMegacoText, "Device Name"}, {5, kMegacoOctets, "MTP Address"}};
constexpr MegacoMember kMegacoProfileMembers[] = {{0, kMegacoText, "Profile Name"}};
constexpr MegacoMember kMegacoTerminationIdsMembers[] = {{0, kMegacoTerminationId, "Termination ID"}};
constexpr MegacoMember kMegacoTerminationIdMembers[] = {
    {0, kMegacoWildcards, "Wildcards"}, {1, kMegacoTerminationName, "ID"}};
constexpr MegacoMember kMegacoWildcardsMembers[] = {{0, kMegacoWildcard, "Wildcard"}};
constexpr MegacoMember kMegacoMediaMembers[] = {
    {0, kMegacoTerminationState, "Termination State Descriptor"}, {1, kMegacoStreams, "Streams"}};
constexpr MegacoMember kMegacoStreamsMembers[] = {
    {0, kMegacoStream, "One Stream"}, {1, kMegacoStreamList, "Multiple Streams"}};
constexpr MegacoMember kMegacoStreamListMembers[] = {{0, kMegacoStreamDescriptor, "Stream Descriptor"}};
constexpr MegacoMember kMegacoStreamDescriptorMembers[] = {
    {0, kMegacoNumber, "Stream ID"}, {1, kMegacoStream, "Stream Parameters"}};
constexpr MegacoMember kMegacoStreamMembers[] = {
    {0, kMegacoLocalControl, "Local Control Descriptor"}, {1, kMegacoLocalRemote, "Local Descriptor"},
    {2, kMegacoLocalRemote, "Remote Descriptor"}, {3, kMegacoStatistics, "Statistics Descriptor"}};
constexpr MegacoMember kMegacoLocalControlMembers[] = {
    {0, kMegacoStreamMode, "Stream Mode"}, {1, kMegacoBoolean, "Reserve Value"}, {2, kMegacoBoolean, "Reserve Group"},
    {3, kMegacoProperties, "Properties"}};
constexpr MegacoMember kMegacoPropertiesMembers[] = {{0, kMegacoProperty, "Property"}};
constexpr MegacoMember kMegacoPropertyMembers[] = {
    {0, kMegacoPropertyName, "Property Name"}, {1, kMegacoValues, "Values"},
    {2, kMegacoExtraInformation, "Extra Information"}};
constexpr MegacoMember kMegacoLocalRemoteMembers[] = {{0, kMegacoPropertyGroups, "Property Groups"}};
constexpr MegacoMember kMegacoPropertyGroupsMembers[] = {{0, kMegacoProperties, "Property Group"}};
constexpr MegacoMember kMegacoTerminationStateMembers[] = {
    {0, kMegacoProperties, "Properties"}, {1, kMegacoEventBufferControl, "Event Buffer Control"},
    {2, kMegacoServiceState, "Service State"}};
constexpr MegacoMember kMegacoMuxMembers[] = {
    {0, kMegacoMuxType, "Mux Type"}, {1, kMegacoTerminationIds, "Termination List"},
    {2, kMegacoNonStandard, "Nonstandard Data"}};
constexpr MegacoMember kMegacoModemMembers[] = {
    {0, kMegacoModemTypes, "Modem Types"}, {1, kMegacoProperties, "Properties"},
    {2, kMegacoNonStandard, "Nonstandard Data"}};
constexpr MegacoMember kMegacoModemTypesMembers[] = {{0, kMegacoModemType, "Modem Type"}};
constexpr MegacoMember kMegacoEventsMembers[] = {
    {0, kMegacoNumber, "Request ID"}, {1, kMegacoRequestedEvents, "Event List"}};
constexpr MegacoMember kMegacoRequestedEventsMembers[] = {{0, kMegacoRequestedEvent, "Requested Event"}};
constexpr MegacoMember kMegacoRequestedEventMembers[] = {
    {0, kMegacoEventName, "Event Name"}, {1, kMegacoNumber, "Stream ID"},
    {2, kMegacoRequestedActions, "Event Action"}, {3, kMegacoEventParameters, "Event Parameters"}};
constexpr MegacoMember kMegacoRequestedActionsMembers[] = {
    {0, kMegacoBoolean, "Keep Active"}, {1, kMegacoEventDigitMap, "Digit Map"},
    {2, kMegacoSecondEvents, "Second Events Descriptor"}, {3, kMegacoSignals, "Signals Descriptor"},
    {4, kMegacoNotifyBehaviour, "Notify Behaviour"}, {5, kMegacoNull, "Reset Events Descriptor"}};
constexpr MegacoMember kMegacoEventDigitMapMembers[] = {
    {0, kMegacoOctets, "Digit Map Name"}, {1, kMegacoDigitMapValue, "Digit Map Value"}};
constexpr MegacoMember kMegacoNotifyBehaviourMembers[] = {
    {0, kMegacoNull, "Notify Immediately"}, {1, kMegacoRegulatedDescriptor, "Notify Regulated"},
    {2, kMegacoNull, "Never Notify"}};
constexpr MegacoMember kMegacoRegulatedDescriptorMembers[] = {
    {0, kMegacoSecondEvents, "Second Events Descriptor"}, {1, kMegacoSignals, "Signals Descriptor"}};
constexpr MegacoMember kMegacoSecondEventsMembers[] = {
    {0, kMegacoNumber, "Request ID"}, {1, kMegacoSecondRequestedEvents, "Event List"}};
constexpr MegacoMember kMegacoSecondRequestedEventsMembers[] = {{0, kMegacoSecondRequestedEvent, "Requested Event"}};
constexpr MegacoMember kMegacoSecondRequestedEventMembers[] = {
    {0, kMegacoEventName, "Event Name"}, {1, kMegacoNumber, "Stream ID"},
    {2, kMegacoSecondRequestedActions, "Event Action"}, {3, kMegacoEventParameters, "Event Parameters"}};
constexpr MegacoMember kMegacoSecondRequestedActionsMembers[] = {
    {0, kMegacoBoolean, "Keep Active"}, {1, kMegacoEventDigitMap, "Digit Map"},
    {2, kMegacoSignals, "Signals Descriptor"}, {3, kMegacoNotifyBehaviour, "Notify Behaviour"},
    {4, kMegacoNull, "Reset Events Descriptor"}};
constexpr MegacoMember kMegacoEventBufferMembers[] = {{0, kMegacoEventSpecification, "Event Specification"}};
constexpr MegacoMember kMegacoEventSpecificationMembers[] = {
    {0, kMegacoEventName, "Event Name"}, {1, kMegacoNumber, "Stream ID"},
    {2, kMegacoEventParameters, "Event Parameters"}};
constexpr MegacoMember kMegacoSignalsMembers[] = {{0, kMegacoSignalRequest, "Signal Request"}};
constexpr MegacoMember kMegacoSignalRequestMembers[] = {
    {0, kMegacoSignal, "Signal"}, {1, kMegacoSequentialSignals, "Sequential Signal List"}};
constexpr MegacoMember kMegacoSequentialSignalsMembers[] = {
    {0, kMegacoNumber, "Signal List ID"}, {1, kMegacoSignalList, "Signals"}};
constexpr MegacoMember kMegacoSignalListMembers[] = {{0, kMegacoSignal, "Signal"}};
constexpr MegacoMember kMegacoSignalMembers[] = {
    {0, kMegacoSignalName, "Signal Name"}, {1, kMegacoNumber, "Stream ID"}, {2, kMegacoSignalType, "Signal Type"},
    {3, kMegacoNumber, "Duration"}, {4, kMegacoCompletionBits, "Notify Completion"},
    {5, kMegacoBoolean, "Keep Active"}, {6, kMegacoSignalParameters, "Signal Parameters"},
    {7, kMegacoSignalDirection, "Direction"}, {8, kMegacoNumber, "Request ID"},
    {9, kMegacoNumber, "Inter-Signal Delay"}};
constexpr MegacoMember kMegacoSignalParametersMembers[] = {{0, kMegacoSignalParameter, "Signal Parameter"}};
constexpr MegacoMember kMegacoSignalParameterMembers[] = {
    {0, kMegacoSignalParameterName, "Parameter Name"}, {1, kMegacoValues, "Values"},
    {2, kMegacoExtraInformation, "Extra Information"}};
constexpr MegacoMember kMegacoDigitMapMembers[] = {
    {0, kMegacoOctets, "Digit Map Name"}, {1, kMegacoDigitMapValue, "Digit Map Value"}};
constexpr MegacoMember kMegacoDigitMapValueMembers[] = {
    {0, kMegacoNumber, "Start Timer"}, {1, kMegacoNumber, "Short Timer"}, {2, kMegacoNumber, "Long Timer"},
    {3, kMegacoText, "Digit Map Body"}, {4, kMegacoNumber, "Duration Timer"}};
constexpr MegacoMember kMegacoPackagesMembers[] = {{0, kMegacoPackage, "Package"}};
constexpr MegacoMember kMegacoPackageMembers[] = {
    {0, kMegacoPackageName, "Package Name"}, {1, kMegacoNumber, "Package Version"}};
constexpr MegacoMember kMegacoStatisticsMembers[] = {{0, kMegacoStatistic, "Statistic"}};
constexpr MegacoMember kMegacoStatisticMembers[] = {
    {0, kMegacoStatisticName, "Statistic Name"}, {1, kMegacoValues, "Values"}};
constexpr MegacoMember kMegacoValuesMembers[] = {{0, kMegacoValue, "Value"}};
constexpr MegacoMember kMegacoNonStandardMembers[] = {
    {0, kMegacoNonStandardIdentifier, "Identifier"}, {1, kMegacoOctets, "Data"}};
constexpr MegacoMember kMegacoNonStandardIdentifierMembers[] = {
    {0, kMegacoObject, "Object"}, {1, kMegacoH221, "H.221 Identifier"}, {2, kMegacoText, "Experimental"}};
constexpr MegacoMember kMegacoH221Members[] = {
    {0, kMegacoNumber, "Country Code 1"}, {1, kMegacoNumber, "Country Code 2"},
    {2, kMegacoNumber, "Country Extension"}, {3, kMegacoNumber, "Manufacturer Code"}};
constexpr MegacoMember kMegacoTimeNotationMembers[] = {{0, kMegacoText, "Date"}, {1, kMegacoText, "Time"}};

// In the order of the types from kMegacoMessage on.
template <size_t kCount>
constexpr MegacoTable TableOf(MegacoForm form, const MegacoMember (&members)[kCount]) {
  return {form, static_cast<uint8_t>(kCount), members};
}
constexpr MegacoTable kMegacoTables[] = {
    TableOf(MegacoForm::kRecord, kMegacoMessageMembers),
    TableOf(MegacoForm::kRecord, kMegacoAuthenticationHeaderMembers),
    TableOf(MegacoForm::kRecord, kMegacoMessageBodyMembers), TableOf(MegacoForm::kChoice, kMegacoMIdMembers),
    TableOf(MegacoForm::kRecord, kMegacoIp4AddressMembers), TableOf(MegacoForm::kRecord, kMegacoIp6AddressMembers),
    TableOf(MegacoForm::kRecord, kMegacoDomainNameMembers), TableOf(MegacoForm::kChoice, kMegacoBodyMembers),
    TableOf(MegacoForm::kList, kMegacoTransactionsMembers), TableOf(MegacoForm::kChoice, kMegacoTransactionMembers),
    TableOf(MegacoForm::kRecord, kMegacoTransactionRequestMembers),
    TableOf(MegacoForm::kRecord, kMegacoTransactionPendingMembers),
    TableOf(MegacoForm::kRecord, kMegacoTransactionReplyMembers),
    TableOf(MegacoForm::kChoice, kMegacoTransactionResultMembers),
    TableOf(MegacoForm::kRecord, kMegacoSegmentReplyMembers),
    TableOf(MegacoForm::kList, kMegacoTransactionAcksMembers),
    TableOf(MegacoForm::kRecord, kMegacoTransactionAckMembers), TableOf(MegacoForm::kRecord, kMegacoErrorMembers),
    TableOf(MegacoForm::kList, kMegacoActionRequestsMembers),
    TableOf(MegacoForm::kRecord, kMegacoActionRequestMembers),
    TableOf(MegacoForm::kList, kMegacoActionRepliesMembers), TableOf(MegacoForm::kRecord, kMegacoActionReplyMembers),
    TableOf(MegacoForm::kRecord, kMegacoContextRequestMembers), TableOf(MegacoForm::kList, kMegacoContextIdsMembers),
    TableOf(MegacoForm::kRecord, kMegacoContextAuditMembers), TableOf(MegacoForm::kChoice, kMegacoSelectLogicMembers),
    TableOf(MegacoForm::kList, kMegacoTopologiesMembers), TableOf(MegacoForm::kRecord, kMegacoTopologyRequestMembers),
    TableOf(MegacoForm::kList, kMegacoCommandRequestsMembers),
    TableOf(MegacoForm::kRecord, kMegacoCommandRequestMembers), TableOf(MegacoForm::kChoice, kMegacoCommandMembers),
    TableOf(MegacoForm::kList, kMegacoCommandRepliesMembers),
    TableOf(MegacoForm::kChoice, kMegacoCommandReplyMembers), TableOf(MegacoForm::kRecord, kMegacoAmmMembers),
    TableOf(MegacoForm::kList, kMegacoDescriptorsMembers), TableOf(MegacoForm::kChoice, kMegacoDescriptorMembers),
    TableOf(MegacoForm::kRecord, kMegacoAmmReplyMembers), TableOf(MegacoForm::kRecord, kMegacoSubtractMembers),
    TableOf(MegacoForm::kRecord, kMegacoAuditRequestMembers), TableOf(MegacoForm::kChoice, kMegacoAuditReplyMembers),
    TableOf(MegacoForm::kRecord, kMegacoAuditResultMembers),
    TableOf(MegacoForm::kRecord, kMegacoAuditListResultMembers),
    TableOf(MegacoForm::kList, kMegacoTerminationAuditMembers),
    TableOf(MegacoForm::kChoice, kMegacoAuditReturnMembers), TableOf(MegacoForm::kRecord, kMegacoAuditMembers),
    TableOf(MegacoForm::kList, kMegacoAuditedItemsMembers), TableOf(MegacoForm::kChoice, kMegacoAuditedItemMembers),
    TableOf(MegacoForm::kRecord, kMegacoAuditedMediaMembers),
    TableOf(MegacoForm::kChoice, kMegacoAuditedStreamsMembers),
    TableOf(MegacoForm::kList, kMegacoAuditedStreamListMembers),
    TableOf(MegacoForm::kRecord, kMegacoAuditedStreamDescriptorMembers),
    TableOf(MegacoForm::kRecord, kMegacoAuditedStreamMembers),
    TableOf(MegacoForm::kRecord, kMegacoAuditedLocalControlMembers),
    TableOf(MegacoForm::kList, kMegacoAuditedPropertiesMembers),
    TableOf(MegacoForm::kRecord, kMegacoAuditedPropertyMembers),
    TableOf(MegacoForm::kRecord, kMegacoAuditedLocalRemoteMembers),
    TableOf(MegacoForm::kRecord, kMegacoAuditedTerminationStateMembers),
    TableOf(MegacoForm::kRecord, kMegacoAuditedEventsMembers),
    TableOf(MegacoForm::kRecord, kMegacoAuditedEventMembers),
    TableOf(MegacoForm::kChoice, kMegacoAuditedSignalsMembers),
    TableOf(MegacoForm::kRecord, kMegacoAuditedSignalMembers),
    TableOf(MegacoForm::kRecord, kMegacoAuditedSignalListMembers),
    TableOf(MegacoForm::kRecord, kMegacoAuditedDigitMapMembers),
    TableOf(MegacoForm::kRecord, kMegacoAuditedStatisticsMembers),
    TableOf(MegacoForm::kRecord, kMegacoAuditedPackagesMembers),
    TableOf(MegacoForm::kRecord, kMegacoNotifyRequestMembers),
    TableOf(MegacoForm::kRecord, kMegacoNotifyReplyMembers),
    TableOf(MegacoForm::kRecord, kMegacoObservedEventsMembers),
    TableOf(MegacoForm::kList, kMegacoObservedEventListMembers),
    TableOf(MegacoForm::kRecord, kMegacoObservedEventMembers),
    TableOf(MegacoForm::kList, kMegacoEventParametersMembers),
    TableOf(MegacoForm::kRecord, kMegacoEventParameterMembers),
    TableOf(MegacoForm::kChoice, kMegacoExtraInformationMembers),
    TableOf(MegacoForm::kRecord, kMegacoServiceChangeMembers),
    TableOf(MegacoForm::kRecord, kMegacoServiceChangeReplyMembers),
    TableOf(MegacoForm::kChoice, kMegacoServiceChangeResultMembers),
    TableOf(MegacoForm::kRecord, kMegacoServiceChangeParametersMembers),
    TableOf(MegacoForm::kRecord, kMegacoServiceChangeResultParametersMembers),
    TableOf(MegacoForm::kChoice, kMegacoServiceChangeAddressMembers),
    TableOf(MegacoForm::kRecord, kMegacoProfileMembers), TableOf(MegacoForm::kList, kMegacoTerminationIdsMembers),
    TableOf(MegacoForm::kRecord, kMegacoTerminationIdMembers), TableOf(MegacoForm::kList, kMegacoWildcardsMembers),
    TableOf(MegacoForm::kRecord, kMegacoMediaMembers), TableOf(MegacoForm::kChoice, kMegacoStreamsMembers),
    TableOf(MegacoForm::kList, kMegacoStreamListMembers),
    TableOf(MegacoForm::kRecord, kMegacoStreamDescriptorMembers), TableOf(MegacoForm::kRecord, kMegacoStreamMembers),
    TableOf(MegacoForm::kRecord, kMegacoLocalControlMembers), TableOf(MegacoForm::kList, kMegacoPropertiesMembers),
    TableOf(MegacoForm::kRecord, kMegacoPropertyMembers), TableOf(MegacoForm::kRecord, kMegacoLocalRemoteMembers),
    TableOf(MegacoForm::kList, kMegacoPropertyGroupsMembers),
    TableOf(MegacoForm::kRecord, kMegacoTerminationStateMembers), TableOf(MegacoForm::kRecord, kMegacoMuxMembers),
    TableOf(MegacoForm::kRecord, kMegacoModemMembers), TableOf(MegacoForm::kList, kMegacoModemTypesMembers),
    TableOf(MegacoForm::kRecord, kMegacoEventsMembers), TableOf(MegacoForm::kList, kMegacoRequestedEventsMembers),
    TableOf(MegacoForm::kRecord, kMegacoRequestedEventMembers),
    TableOf(MegacoForm::kRecord, kMegacoRequestedActionsMembers),
    TableOf(MegacoForm::kChoice, kMegacoEventDigitMapMembers),
    TableOf(MegacoForm::kChoice, kMegacoNotifyBehaviourMembers),
    TableOf(MegacoForm::kRecord, kMegacoRegulatedDescriptorMembers),
    TableOf(MegacoForm::kRecord, kMegacoSecondEventsMembers),
    TableOf(MegacoForm::kList, kMegacoSecondRequestedEventsMembers),
    TableOf(MegacoForm::kRecord, kMegacoSecondRequestedEventMembers),
    TableOf(MegacoForm::kRecord, kMegacoSecondRequestedActionsMembers),
    TableOf(MegacoForm::kList, kMegacoEventBufferMembers),
    TableOf(MegacoForm::kRecord, kMegacoEventSpecificationMembers), TableOf(MegacoForm::kList, kMegacoSignalsMembers),
    TableOf(MegacoForm::kChoice, kMegacoSignalRequestMembers),
    TableOf(MegacoForm::kRecord, kMegacoSequentialSignalsMembers),
    TableOf(MegacoForm::kList, kMegacoSignalListMembers), TableOf(MegacoForm::kRecord, kMegacoSignalMembers),
    TableOf(MegacoForm::kList, kMegacoSignalParametersMembers),
    TableOf(MegacoForm::kRecord, kMegacoSignalParameterMembers), TableOf(MegacoForm::kRecord, kMegacoDigitMapMembers),
    TableOf(MegacoForm::kRecord, kMegacoDigitMapValueMembers), TableOf(MegacoForm::kList, kMegacoPackagesMembers),
    TableOf(MegacoForm::kRecord, kMegacoPackageMembers), TableOf(MegacoForm::kList, kMegacoStatisticsMembers),
    TableOf(MegacoForm::kRecord, kMegacoStatisticMembers), TableOf(MegacoForm::kList, kMegacoValuesMembers),
    TableOf(MegacoForm::kRecord, kMegacoNonStandardMembers),
    TableOf(MegacoForm::kChoice, kMegacoNonStandardIdentifierMembers),
    TableOf(MegacoForm::kRecord, kMegacoH221Members), TableOf(MegacoForm::kRecord, kMegacoTimeNotationMembers)};

// What the enumerated types name, in the order of the types from kMegacoTopologyDirection on.
constexpr auto kMegacoTopologyDirectionNames = SortedNames({{0, "Bothway"}, {1, "Isolate"}, {2, "Oneway"}});
constexpr auto kMegacoTopologyExtensionNames = SortedNames({{0, "Oneway External"}, {1, "Oneway Both"}});
constexpr auto kMegacoStreamModeNames = SortedNames({
    {0, "Send Only"}, {1, "Receive Only"}, {2, "Send Receive"}, {3, "Inactive"}, {4, "Loopback"}});
constexpr auto kMegacoRelationNames = SortedNames({{0, "Greater Than"}, {1, "Smaller Than"}, {2, "Unequal To"}});
constexpr auto kMegacoEventBufferControlNames = SortedNames({{0, "Off"}, {1, "Lock Step"}});
constexpr auto kMegacoServiceStateNames = SortedNames({{0, "Test"}, {1, "Out of Service"}, {2, "In Service"}});
constexpr auto kMegacoMuxTypeNames = SortedNames({{0, "H.221"}, {1, "H.223"}, {2, "H.226"}, {3, "V.76"}, {4, "Nx64k"}});
constexpr auto kMegacoModemTypeNames = SortedNames({
    {0, "V.18"}, {1, "V.22"}, {2, "V.22bis"}, {3, "V.32"}, {4, "V.32bis"}, {5, "V.34"}, {6, "V.90"}, {7, "V.91"},
    {8, "Synchronous ISDN"}});
constexpr auto kMegacoSignalTypeNames = SortedNames({{0, "Brief"}, {1, "On-Off"}, {2, "Time-Out"}});
constexpr auto kMegacoSignalDirectionNames = SortedNames({{0, "Internal"}, {1, "External"}, {2, "Both"}});
constexpr auto kMegacoServiceChangeMethodNames = SortedNames({
    {0, "Failover"}, {1, "Forced"}, {2, "Graceful"}, {3, "Restart"}, {4, "Disconnected"}, {5, "Handoff"}});
constexpr Names kMegacoEnumerations[] = {
    kMegacoTopologyDirectionNames, kMegacoTopologyExtensionNames, kMegacoStreamModeNames, kMegacoRelationNames,
    kMegacoEventBufferControlNames, kMegacoServiceStateNames, kMegacoMuxTypeNames, kMegacoModemTypeNames,
    kMegacoSignalTypeNames, kMegacoSignalDirectionNames, kMegacoServiceChangeMethodNames};

}  // namespace qxview
