#include "FileFormats.h"

#include "Tools/ZamTArray.h"
#include "UIString.h"

namespace
{
struct SFormatRow
{
    const char* pExtension;
    unsigned int uiType;
    EUIString eName;
};

// One row only for the effect extension: the union of both effect types, under the title of
// the desktop one.
const SFormatRow s_FormatRows[] = {
    {"txt", DocType_PlainText, UIS_DocTypePlainText},
    {"vsh", DocType_GLSLESVertex, UIS_DocTypeGLSLESVertex},
    {"fsh", DocType_GLSLESFragment, UIS_DocTypeGLSLESFragment},
    {"vert", DocType_GLSLVertex, UIS_DocTypeGLSLVertex},
    {"frag", DocType_GLSLFragment, UIS_DocTypeGLSLFragment},
    {"zfx", DocType_ZFXGLSLES | DocType_ZFXGLSL, UIS_DocTypeZFXGLSL},
    {"vs", DocType_HLSLVertex, UIS_DocTypeHLSLVertex},
    {"ps", DocType_HLSLFragment, UIS_DocTypeHLSLFragment},
    {"gs", DocType_HLSLGeometry, UIS_DocTypeHLSLGeometry},
    {"fx", DocType_HLSLFX, UIS_DocTypeHLSLFX},
    {"cl", DocType_OpenCLKernel, UIS_DocTypeOpenCLKernel},
};
} // namespace

int FillFileFormats(CZamTArray<SFileFormatSpecifier>& Rows)
{
    Rows.Clear();
    for (const SFormatRow& Source : s_FormatRows)
    {
        SFileFormatSpecifier Row;
        Row.eType = static_cast<EShaderDocType>(Source.uiType);
        Row.Name = UIString(Source.eName);
        Row.Extension = QString::fromLatin1(Source.pExtension);
        Row.Filter = Row.Name + QLatin1String(" (*.") + Row.Extension + QLatin1Char(')');
        if (Rows.Append(Row) != 0)
            return 1;
    }
    return 0;
}

QString BuildFileDialogFilter(const CZamTArray<SFileFormatSpecifier>& Rows)
{
    QString AllExtensions;
    QString PerType;
    for (unsigned int i = 0; i < Rows.GetSize(); ++i)
    {
        // Every extension is followed by a blank, the last one too.
        AllExtensions += QLatin1String("*.") + Rows[i].Extension + QLatin1Char(' ');
        if (i > 0)
            PerType += QLatin1String(";;");
        PerType += Rows[i].Filter;
    }
    return UIString(UIS_AllSupportedFormats) + QLatin1String(" (") + AllExtensions + QLatin1String(");;") + PerType
           + QLatin1String(";;") + UIString(UIS_AllFiles) + QLatin1String(" (*.*)");
}

int FindFileFormatByExtension(const CZamTArray<SFileFormatSpecifier>& Rows, const QString& Extension)
{
    for (unsigned int i = 0; i < Rows.GetSize(); ++i)
    {
        if (Rows[i].Extension == Extension)
            return static_cast<int>(i);
    }
    return -1;
}

int FindFileFormatByType(const CZamTArray<SFileFormatSpecifier>& Rows, EShaderDocType eType)
{
    for (unsigned int i = 0; i < Rows.GetSize(); ++i)
    {
        const unsigned int uiRowType = Rows[i].eType;
        // Plain text is 0 and has no bit to test.
        if (uiRowType == static_cast<unsigned int>(eType) || (uiRowType & eType) != 0)
            return static_cast<int>(i);
    }
    return -1;
}
