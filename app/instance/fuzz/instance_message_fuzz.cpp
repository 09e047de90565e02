// Feeds arbitrary bytes to the reader of single-instance messages, as any process of the same
// user could send them. A message taken must be exactly the bytes sent, as text.
#include "app/instance/InstanceMessage.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t uiSize)
{
    const QByteArray Bytes(reinterpret_cast<const char*>(pData), static_cast<qsizetype>(uiSize));
    const SInstanceMessage Message = DecodeInstanceMessage(Bytes);
    if (Message.Text.isEmpty() == Message.Error.isEmpty())
        __builtin_trap(); // taken or refused with a reason, never both or neither
    if (!Message.Text.isEmpty()
        && (Message.Text.toUtf8() != Bytes || Bytes.size() > MaxInstanceMessageBytes || Bytes.contains('\0')))
        __builtin_trap();
    return 0;
}
