// I/O and file system controls carried in NT Transaction (MS-FSCC 2.3, MS-SMB 2.2.7.2).
#include "decoders/common/guid.h"
#include "decoders/smb/smb_info_levels.h"

namespace qxview {
namespace {

enum Control : uint32_t {
  kObjectIdGet = 0x0009009C, kObjectIdMake = 0x000900C0, kResumeKey = 0x00140078, kCopyChunk = 0x001440F2,
  kSnapshots = 0x00144064, kSetSparse = 0x000900C4, kZeroData = 0x000980C8, kAllocatedRanges = 0x000940CF,
  kCopyChunkWrite = 0x001480F2,
};

constexpr auto kControlNames = SortedNames({
    {0x00060194, "FSCTL_DFS_GET_REFERRALS"}, {0x00090000, "FSCTL_REQUEST_OPLOCK_LEVEL_1"},
    {0x00090004, "FSCTL_REQUEST_OPLOCK_LEVEL_2"}, {0x00090008, "FSCTL_REQUEST_BATCH_OPLOCK"},
    {0x0009000C, "FSCTL_OPLOCK_BREAK_ACKNOWLEDGE"}, {0x00090018, "FSCTL_LOCK_VOLUME"},
    {0x0009001C, "FSCTL_UNLOCK_VOLUME"}, {0x00090020, "FSCTL_DISMOUNT_VOLUME"},
    {0x00090028, "FSCTL_IS_VOLUME_MOUNTED"}, {0x0009002C, "FSCTL_IS_PATHNAME_VALID"},
    {0x0009003C, "FSCTL_GET_COMPRESSION"}, {0x00090058, "FSCTL_QUERY_FAT_BPB"},
    {0x00090060, "FSCTL_FILESYSTEM_GET_STATISTICS"}, {0x00090064, "FSCTL_GET_NTFS_VOLUME_DATA"},
    {0x0009006F, "FSCTL_GET_VOLUME_BITMAP"}, {0x00090073, "FSCTL_GET_RETRIEVAL_POINTERS"},
    {0x00090098, "FSCTL_SET_OBJECT_ID"}, {kObjectIdGet, "FSCTL_GET_OBJECT_ID"},
    {0x000900A0, "FSCTL_DELETE_OBJECT_ID"}, {0x000900A4, "FSCTL_SET_REPARSE_POINT"},
    {0x000900A8, "FSCTL_GET_REPARSE_POINT"}, {0x000900AC, "FSCTL_DELETE_REPARSE_POINT"},
    {0x000900BB, "FSCTL_READ_FILE_USN_DATA"}, {0x000900BC, "FSCTL_SET_OBJECT_ID_EXTENDED"},
    {kObjectIdMake, "FSCTL_CREATE_OR_GET_OBJECT_ID"}, {kSetSparse, "FSCTL_SET_SPARSE"},
    {0x000900D7, "FSCTL_SET_ENCRYPTION"}, {0x000940B3, "FSCTL_ENUM_USN_DATA"},
    {kAllocatedRanges, "FSCTL_QUERY_ALLOCATED_RANGES"}, {kZeroData, "FSCTL_SET_ZERO_DATA"},
    {0x0009C040, "FSCTL_SET_COMPRESSION"}, {0x00110018, "FSCTL_PIPE_WAIT"},
    {0x0011400C, "FSCTL_PIPE_PEEK"}, {0x0011C017, "FSCTL_PIPE_TRANSCEIVE"},
    {kResumeKey, "FSCTL_SRV_REQUEST_RESUME_KEY"}, {0x001400EC, "FSCTL_LMR_GET_LINK_TRACKING_INFORMATION"},
    {kSnapshots, "FSCTL_SRV_ENUMERATE_SNAPSHOTS"}, {kCopyChunk, "FSCTL_SRV_COPYCHUNK"},
    {kCopyChunkWrite, "FSCTL_SRV_COPYCHUNK_WRITE"}});

constexpr auto kFsctlNames = SortedNames({{0, "Device IOCTL"}, {1, "FSCTL"}});
constexpr auto kFlagBits = SortedNames({{0x01, "Root Of DFS"}});

constexpr auto kSetup = LittleRows<Smb>({
    Number(4, "Function Code", NamesOr(kControlNames, kUndefined)).Told("Function Code: [0x%.08X] = %s"), Hex(2, "FID"),
    Coded(1, "Is FSCTL", kFsctlNames), Flags(1, "Is Flags", kFlagBits)});
constexpr auto kChunk = LittleRows<Smb>({
    Number(8, "Source Offset"), Number(8, "Destination Offset"), Number(4, "Copy Length"), Number(4, "Reserved")});
constexpr auto kChunks = LittleRows<Smb>({
    Bytes(24, "Source Resume Key"), Number(4, "Chunk Count"), Number(4, "Reserved"), SmbRecords<kChunk, 24>("Chunk")});
constexpr auto kChunkReply = LittleRows<Smb>({
    Number(4, "Chunks Written"), Number(4, "Chunk Bytes Written"), Number(4, "Total Bytes Written")});
constexpr auto kKeyReply = LittleRows<Smb>({Bytes(24, "Resume Key"), Number(4, "Context Length")});
constexpr auto kSnapshotReply = LittleRows<Smb>({
    Number(4, "Number Of Snapshots"), Number(4, "Number Of Snapshots Returned"), Number(4, "Snapshot Array Size")});
constexpr auto kRange = LittleRows<Smb>({Number(8, "File Offset"), Number(8, "Length")});
constexpr auto kZeroRange = LittleRows<Smb>({Number(8, "File Offset"), Number(8, "Beyond Final Zero")});
constexpr auto kSparse = LittleRows<Smb>({Number(1, "Set Sparse")});
constexpr auto kObjectId = LittleRows<Smb>({
    LittleGuid("Object ID"), LittleGuid("Birth Volume ID"), LittleGuid("Birth Object ID"), LittleGuid("Domain ID")});

}  // namespace

void AddSmbIoctlSetup(const SmbMessage& message, const Place& in, Cursor& c) {
  ShowSmbRows(message, in, c, kSetup);
}

void SmbIoctlRequest(SmbTransaction& t, const Place& in, Cursor& c) {
  switch (t.request.level) {
    case kCopyChunk:
    case kCopyChunkWrite: ShowSmbRows(t.message, in, c, kChunks); break;
    case kAllocatedRanges: ShowSmbRows(t.message, in, c, kRange); break;
    case kZeroData: ShowSmbRows(t.message, in, c, kZeroRange); break;
    case kSetSparse: ShowSmbRows(t.message, in, c, kSparse); break;
    default: break;
  }
}

void SmbIoctlReply(SmbTransaction& t, const Place& in, Cursor& c) {
  switch (t.request.level) {
    case kCopyChunk:
    case kCopyChunkWrite: ShowSmbRows(t.message, in, c, kChunkReply); break;
    case kResumeKey: ShowSmbRows(t.message, in, c, kKeyReply); break;
    case kSnapshots:
      ShowSmbRows(t.message, in, c, kSnapshotReply);
      for (Loop loop; MoreAt(in, c, loop) && Left(c) > 2;) {
        AddSmbString(t.message, in, c, "Snapshot", SmbCharacters::kUnicode);
      }
      AddSmbFiller(in, c);
      break;
    case kAllocatedRanges:
      for (Loop loop; MoreAt(in, c, loop) && Left(c) >= 16;) ShowSmbRows(t.message, in, c, kRange);
      break;
    case kObjectIdGet:
    case kObjectIdMake: ShowSmbRows(t.message, in, c, kObjectId); break;
    default: break;
  }
}

}  // namespace qxview
