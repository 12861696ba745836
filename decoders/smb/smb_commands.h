// The parts of SMB's commands, by the file that has them.
#pragma once
#include "decoders/smb/smb_block.h"

namespace qxview {

// smb_files.cpp
void CloseRequestWords(SmbBlock& block);

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
