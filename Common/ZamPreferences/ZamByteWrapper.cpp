#include "ZamByteWrapper_p.h"

namespace
{
const char acAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// 0..63 for alphabet characters, -1 for whitespace, -2 for '=', -3 for everything else.
int ClassifyBase64(unsigned char uiChar)
{
    if (uiChar >= 'A' && uiChar <= 'Z')
        return uiChar - 'A';
    if (uiChar >= 'a' && uiChar <= 'z')
        return uiChar - 'a' + 26;
    if (uiChar >= '0' && uiChar <= '9')
        return uiChar - '0' + 52;
    if (uiChar == '+')
        return 62;
    if (uiChar == '/')
        return 63;
    if (uiChar == ' ' || uiChar == '\t' || uiChar == '\n' || uiChar == '\r')
        return -1;
    if (uiChar == '=')
        return -2;
    return -3;
}
} // namespace

CImmutableByteWrapper::CImmutableByteWrapper(const void* pData, size_t uiSize)
    : m_pData(static_cast<const unsigned char*>(pData))
    , m_uiSize(pData ? uiSize : 0)
{
}

CImmutableByteWrapper::CImmutableByteWrapper(const QByteArray& Bytes)
    : CImmutableByteWrapper(Bytes.constData(), static_cast<size_t>(Bytes.size()))
{
}

CImmutableByteWrapper::CImmutableByteWrapper(const std::string& Bytes)
    : CImmutableByteWrapper(Bytes.data(), Bytes.size())
{
}

QByteArray CVectorByteWrapper::ToByteArray() const
{
    return QByteArray(reinterpret_cast<const char*>(m_Bytes.data()), static_cast<qsizetype>(m_Bytes.size()));
}

std::string EncodeBase64(const CImmutableByteWrapper& Bytes)
{
    const unsigned char* pIn = Bytes.Data();
    const size_t uiSize = Bytes.Size();
    std::string Out;
    Out.reserve((uiSize + 2) / 3 * 4);
    size_t i = 0;
    for (; i + 3 <= uiSize; i += 3)
    {
        const unsigned uiGroup = (pIn[i] << 16) | (pIn[i + 1] << 8) | pIn[i + 2];
        Out += acAlphabet[(uiGroup >> 18) & 63];
        Out += acAlphabet[(uiGroup >> 12) & 63];
        Out += acAlphabet[(uiGroup >> 6) & 63];
        Out += acAlphabet[uiGroup & 63];
    }
    const size_t uiRest = uiSize - i;
    if (uiRest > 0)
    {
        const unsigned uiGroup = (pIn[i] << 16) | (uiRest == 2 ? pIn[i + 1] << 8 : 0);
        Out += acAlphabet[(uiGroup >> 18) & 63];
        Out += acAlphabet[(uiGroup >> 12) & 63];
        Out += uiRest == 2 ? acAlphabet[(uiGroup >> 6) & 63] : '=';
        Out += '=';
    }
    return Out;
}

bool DecodeBase64(const CImmutableByteWrapper& Text, CVectorByteWrapper* pBytes)
{
    pBytes->Clear();
    pBytes->Reserve(Text.Size() / 4 * 3);
    unsigned uiGroup = 0;
    int iInGroup = 0;
    int iPadding = 0;
    for (size_t i = 0; i < Text.Size(); ++i)
    {
        const int iClass = ClassifyBase64(Text.Data()[i]);
        if (iClass == -1)
            continue;
        if (iClass == -3)
            return false;
        if (iClass == -2)
        {
            // Padding may only fill the last one or two places of a group.
            if (iInGroup < 2)
                return false;
            ++iPadding;
            ++iInGroup;
        }
        else
        {
            if (iPadding > 0)
                return false;
            uiGroup = (uiGroup << 6) | static_cast<unsigned>(iClass);
            ++iInGroup;
        }
        if (iInGroup == 4)
        {
            uiGroup <<= 6 * iPadding;
            pBytes->Append(static_cast<unsigned char>(uiGroup >> 16));
            if (iPadding < 2)
                pBytes->Append(static_cast<unsigned char>(uiGroup >> 8));
            if (iPadding < 1)
                pBytes->Append(static_cast<unsigned char>(uiGroup));
            uiGroup = 0;
            iInGroup = 0;
            if (iPadding > 0)
                iPadding = 3; // nothing but whitespace may follow a padded group
        }
    }
    return iInGroup == 0;
}
