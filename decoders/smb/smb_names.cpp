// Names that several commands share.
#include "decoders/smb/smb_block.h"

namespace qxview {
namespace {

constexpr auto kAttributeBits = SortedNames({
    {0x0001, "Read Only"}, {0x0002, "Hidden"}, {0x0004, "System"}, {0x0008, "Volume"}, {0x0010, "Directory"},
    {0x0020, "Archive"}, {0x0040, "Device"}, {0x0080, "Normal"}, {0x0100, "Temporary"}, {0x0200, "Sparse"},
    {0x0400, "Reparse Point"}, {0x0800, "Compressed"}, {0x1000, "Offline"}, {0x2000, "Not Content Indexed"},
    {0x4000, "Encrypted"}});

constexpr auto kAccessMaskBits = SortedNames({
    {0x00000001, "Read Data"}, {0x00000002, "Write Data"}, {0x00000004, "Append Data"},
    {0x00000008, "Read Extended Attributes"}, {0x00000010, "Write Extended Attributes"}, {0x00000020, "Execute"},
    {0x00000040, "Delete Child"}, {0x00000080, "Read Attributes"}, {0x00000100, "Write Attributes"},
    {0x00010000, "Delete"}, {0x00020000, "Read Control"}, {0x00040000, "Write DAC"}, {0x00080000, "Write Owner"},
    {0x00100000, "Synchronize"}, {0x01000000, "System Security"}, {0x02000000, "Maximum Allowed"},
    {0x10000000, "Generic All"}, {0x20000000, "Generic Execute"}, {0x40000000, "Generic Write"},
    {0x80000000, "Generic Read"}});

constexpr auto kBufferFormats = SortedNames({
    {1, "Data Block"}, {2, "Dialect"}, {3, "Pathname"}, {4, "ASCII"}, {5, "Variable Block"}});

}  // namespace

const SmbNames kSmbAttributeBits = kAttributeBits;
const SmbNames kSmbAccessMaskBits = kAccessMaskBits;
const SmbNames kSmbBufferFormatNames = kBufferFormats;

}  // namespace qxview
