// Feeds arbitrary bytes to the backup reader, as a damaged or foreign file in the backup folder
// would. Whatever it accepts must write back to a backup that reads the same.
#include "ShaderEditComponent/DocumentBackup.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t uiSize)
{
    const QByteArray Bytes(reinterpret_cast<const char*>(pData), static_cast<qsizetype>(uiSize));
    const SBackupDecodeResult Read = DecodeBackup(Bytes);
    if (Read.bOk == !Read.Error.isEmpty())
        __builtin_trap(); // a refusal always says why, an accepted file never does
    if (!Read.bOk)
        return 0;
    const SBackupDecodeResult Again = DecodeBackup(EncodeBackup(Read.Backup));
    const SDocumentBackup& A = Read.Backup;
    const SDocumentBackup& B = Again.Backup;
    if (!Again.bOk || A.Path != B.Path || A.Title != B.Title || A.eType != B.eType || A.Text != B.Text
        || A.DiskChecksum != B.DiskChecksum || A.Format.bUtf8 != B.Format.bUtf8 || A.Format.bBom != B.Format.bBom
        || A.Format.bCrlf != B.Format.bCrlf)
        __builtin_trap();
    return 0;
}
