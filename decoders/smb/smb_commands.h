// The parts of SMB's commands, by the file that has them. Their names say whose words or bytes they are.
#pragma once
#include "decoders/smb/smb_block.h"

namespace qxview {

// smb_files.cpp
void DirectoryRequestData(SmbBlock& block);
void FidWords(SmbBlock& block);
void CloseRequestWords(SmbBlock& block);
void SearchAttributesWords(SmbBlock& block);
void FileNameData(SmbBlock& block);
void RenameRequestData(SmbBlock& block);
void GetAttributesResponseWords(SmbBlock& block);
void SetAttributesRequestWords(SmbBlock& block);
void SetAttributesRequestData(SmbBlock& block);
void TemporaryNameData(SmbBlock& block);
void SeekRequestWords(SmbBlock& block);
void SeekResponseWords(SmbBlock& block);
void SetExpandedRequestWords(SmbBlock& block);
void GetExpandedResponseWords(SmbBlock& block);
void CopyRequestWords(SmbBlock& block);
void CopyRequestData(SmbBlock& block);
void CopyResponseWords(SmbBlock& block);
void CopyResponseData(SmbBlock& block);

// smb_open.cpp
void OpenRequestWords(SmbBlock& block);
void OpenResponseWords(SmbBlock& block);
void CreateRequestWords(SmbBlock& block);
void OpenAndXRequestWords(SmbBlock& block);
void OpenAndXRequestData(SmbBlock& block);
void OpenAndXResponseWords(SmbBlock& block);

// smb_nt_create.cpp
void NtCreateRequestWords(SmbBlock& block);
void NtCreateRequestData(SmbBlock& block);
void NtCreateResponseWords(SmbBlock& block);

// smb_read_write.cpp
// What is written or was read: the block "Data Bytes", or what a pipe carries.
void AddSmbFileData(SmbBlock& block, Cursor data);
// The same for what stands at an offset from the header; takes it from the data bytes with the padding before it.
void AddSmbFileDataAt(SmbBlock& block, uint32_t offset, uint32_t length);
void ReadRequestWords(SmbBlock& block);
void ReadResponseWords(SmbBlock& block);
void DataBlockData(SmbBlock& block);
void WriteRequestWords(SmbBlock& block);
void WriteCountWords(SmbBlock& block);
void WriteCloseRequestWords(SmbBlock& block);
void WriteCloseRequestData(SmbBlock& block);
void ReadAndXRequestWords(SmbBlock& block);
void ReadAndXResponseWords(SmbBlock& block);
void ReadAndXResponseData(SmbBlock& block);
void WriteAndXRequestWords(SmbBlock& block);
void WriteAndXRequestData(SmbBlock& block);
void WriteAndXResponseWords(SmbBlock& block);

// smb_raw.cpp
void ReadRawRequestWords(SmbBlock& block);
void ReadMpxRequestWords(SmbBlock& block);
void ReadMpxResponseWords(SmbBlock& block);
void ReadMpxResponseData(SmbBlock& block);
void WriteRawRequestWords(SmbBlock& block);
void WriteRawRequestData(SmbBlock& block);
void WriteRawResponseWords(SmbBlock& block);
void WriteMpxRequestWords(SmbBlock& block);
void WriteMpxResponseWords(SmbBlock& block);
void IoctlRequestWords(SmbBlock& block);
void IoctlRequestData(SmbBlock& block);
void IoctlCountsWords(SmbBlock& block);
void IoctlCountsData(SmbBlock& block);

// smb_locks.cpp
void LockRequestWords(SmbBlock& block);
void LockingRequestWords(SmbBlock& block);
void LockingRequestData(SmbBlock& block);

// smb_search.cpp
void SearchRequestWords(SmbBlock& block);
void SearchRequestData(SmbBlock& block);
void SearchResponseWords(SmbBlock& block);
void SearchResponseData(SmbBlock& block);
void FindCloseRequestWords(SmbBlock& block);
void DiskResponseWords(SmbBlock& block);

// smb_negotiate.cpp
void NegotiateRequestData(SmbBlock& block);
void NegotiateResponseWords(SmbBlock& block);
void NegotiateResponseData(SmbBlock& block);

// smb_session.cpp
void SessionSetupRequestWords(SmbBlock& block);
void SessionSetupRequestData(SmbBlock& block);
void SessionSetupResponseWords(SmbBlock& block);
void SessionSetupResponseData(SmbBlock& block);

// smb_tree.cpp
void EchoRequestWords(SmbBlock& block);
void EchoResponseWords(SmbBlock& block);
void EchoData(SmbBlock& block);
void TreeConnectRequestData(SmbBlock& block);
void TreeConnectResponseWords(SmbBlock& block);
void TreeConnectAndXRequestWords(SmbBlock& block);
void TreeConnectAndXRequestData(SmbBlock& block);
void TreeConnectAndXResponseWords(SmbBlock& block);
void TreeConnectAndXResponseData(SmbBlock& block);

// smb_print.cpp
void OpenPrintRequestWords(SmbBlock& block);
void OpenPrintRequestData(SmbBlock& block);
void PrintQueueRequestWords(SmbBlock& block);
void PrintQueueResponseWords(SmbBlock& block);
void PrintQueueResponseData(SmbBlock& block);

// smb_trans.cpp, smb_trans2.cpp, smb_nt_trans.cpp, smb_transaction.cpp
void TransRequestWords(SmbBlock& block);
void TransRequestData(SmbBlock& block);
void TransReplyData(SmbBlock& block);
void Trans2RequestWords(SmbBlock& block);
void Trans2RequestData(SmbBlock& block);
void Trans2ReplyData(SmbBlock& block);
void TransactionReplyWords(SmbBlock& block);
void TransactionSecondaryWords(SmbBlock& block);
void TransactionSecondaryData(SmbBlock& block);
void NtTransRequestWords(SmbBlock& block);
void NtTransRequestData(SmbBlock& block);
void NtTransReplyWords(SmbBlock& block);
void NtTransReplyData(SmbBlock& block);
void NtTransSecondaryWords(SmbBlock& block);
void NtTransSecondaryData(SmbBlock& block);

}  // namespace qxview
