#include "ShaderDocType.h"

#include "Tools/ZamTString.h"
#include "UIString.h"

#include <QRegExp>

namespace
{
struct SDocTypeRow
{
    EShaderDocType eType;
    EUIString eName;
    EUIString eDescription;
    const char* pExtension;
    EShaderLanguageGroup eGroup;
};

const SDocTypeRow s_DocTypes[] = {
    {DocType_PlainText, UIS_DocTypePlainText, UIS_DescPlainText, "txt", LanguageGroup_PlainText},
    {DocType_GLSLESVertex, UIS_DocTypeGLSLESVertex, UIS_DescGLSLESVertex, "vsh", LanguageGroup_GLSLES},
    {DocType_GLSLESFragment, UIS_DocTypeGLSLESFragment, UIS_DescGLSLESFragment, "fsh", LanguageGroup_GLSLES},
    {DocType_GLSLVertex, UIS_DocTypeGLSLVertex, UIS_DescGLSLVertex, "vert", LanguageGroup_GLSL},
    {DocType_GLSLFragment, UIS_DocTypeGLSLFragment, UIS_DescGLSLFragment, "frag", LanguageGroup_GLSL},
    {DocType_ZFXGLSLES, UIS_DocTypeZFXGLSLES, UIS_DescZFXGLSLES, "zfx", LanguageGroup_GLSLES},
    {DocType_ZFXGLSL, UIS_DocTypeZFXGLSL, UIS_DescZFXGLSL, "zfx", LanguageGroup_GLSL},
    {DocType_HLSLVertex, UIS_DocTypeHLSLVertex, UIS_DescHLSLVertex, "vs", LanguageGroup_HLSL},
    {DocType_HLSLFragment, UIS_DocTypeHLSLFragment, UIS_DescHLSLFragment, "ps", LanguageGroup_HLSL},
    {DocType_HLSLGeometry, UIS_DocTypeHLSLGeometry, UIS_DescHLSLGeometry, "gs", LanguageGroup_HLSL},
    {DocType_HLSLFX, UIS_DocTypeHLSLFX, UIS_DescHLSLFX, "fx", LanguageGroup_HLSL},
    {DocType_OpenCLKernel, UIS_DocTypeOpenCLKernel, UIS_DescOpenCLKernel, "cl", LanguageGroup_OpenCL},
};

const SDocTypeRow* FindDocType(EShaderDocType eType)
{
    for (const SDocTypeRow& Row : s_DocTypes)
    {
        if (Row.eType == eType)
            return &Row;
    }
    return nullptr;
}

// QRegExp keeps match state in the object, so matching runs on a copy and the shared
// patterns stay untouched by concurrent detections; the copies take their compiled engine
// from QRegExp's own cache.
bool Contains(const QRegExp& Pattern, const QString& Text)
{
    QRegExp Matcher(Pattern);
    return Matcher.indexIn(Text) >= 0;
}

const QRegExp& PrecisionPattern(int iIndex)
{
    static const QRegExp s_Patterns[] = {
        QRegExp(QStringLiteral("\\blowp\\b"), Qt::CaseSensitive, QRegExp::RegExp),
        QRegExp(QStringLiteral("\\bmediump\\b"), Qt::CaseSensitive, QRegExp::RegExp),
        QRegExp(QStringLiteral("\\bhighp\\b"), Qt::CaseSensitive, QRegExp::RegExp),
    };
    return s_Patterns[iIndex];
}

enum EStagePattern
{
    Stage_Position,
    Stage_FragColor,
    Stage_LayoutIn,
    Stage_LayoutOut,
};

const QRegExp& StagePattern(EStagePattern ePattern)
{
    static const QRegExp s_Patterns[] = {
        QRegExp(QStringLiteral("\\bgl_Position\\b"), Qt::CaseSensitive, QRegExp::RegExp),
        QRegExp(QStringLiteral("\\bgl_FragColor\\b"), Qt::CaseSensitive, QRegExp::RegExp),
        QRegExp(QStringLiteral("\\blayout(.*) in\\b"), Qt::CaseSensitive, QRegExp::RegExp),
        QRegExp(QStringLiteral("\\blayout(.*) out\\b"), Qt::CaseSensitive, QRegExp::RegExp),
    };
    return s_Patterns[ePattern];
}

// "\blayout(.*) in\b" can only match when " in\b" occurs somewhere after the first "layout"
// (the dot also matches line breaks). QRegExp retries "(.*)" from every "layout" in the
// text, which is quadratic on a text full of them without a marker, so that case is
// rejected here in linear time and the full pattern only runs when it will match early.
bool ContainsLayoutMarker(const QString& Contents, EStagePattern eFull)
{
    static const QRegExp s_Layout(QStringLiteral("\\blayout"), Qt::CaseSensitive, QRegExp::RegExp);
    static const QRegExp s_In(QStringLiteral(" in\\b"), Qt::CaseSensitive, QRegExp::RegExp);
    static const QRegExp s_Out(QStringLiteral(" out\\b"), Qt::CaseSensitive, QRegExp::RegExp);

    QRegExp Layout(s_Layout);
    const int iLayout = Layout.indexIn(Contents);
    if (iLayout < 0)
        return false;
    QRegExp Marker(eFull == Stage_LayoutIn ? s_In : s_Out);
    if (Marker.indexIn(Contents, iLayout + 6) < 0)
        return false;
    return Contains(StagePattern(eFull), Contents);
}

enum EStage
{
    Stage_Vertex,
    Stage_Fragment,
    Stage_Unknown,
};

EStage DetectStage(const QString& Contents)
{
    // Vertex markers win over fragment markers when a text holds both.
    if (Contains(StagePattern(Stage_Position), Contents) || ContainsLayoutMarker(Contents, Stage_LayoutIn))
        return Stage_Vertex;
    if (Contains(StagePattern(Stage_FragColor), Contents) || ContainsLayoutMarker(Contents, Stage_LayoutOut))
        return Stage_Fragment;
    return Stage_Unknown;
}

bool HasPrecisionQualifier(const QString& Contents)
{
    for (int i = 0; i < 3; ++i)
    {
        if (Contains(PrecisionPattern(i), Contents))
            return true;
    }
    return false;
}

EShaderDocType TypeFromHLSLExtension(const QString& Extension, bool* pbFound)
{
    struct SExtensionType
    {
        const char* pExtension;
        EShaderDocType eType;
    };
    static const SExtensionType s_Extensions[] = {
        {"hlsl", DocType_HLSLVertex}, {"ps", DocType_HLSLFragment}, {"vs", DocType_HLSLVertex},
        {"gs", DocType_HLSLGeometry}, {"fx", DocType_HLSLFX},       {"cl", DocType_OpenCLKernel},
    };
    for (const SExtensionType& Entry : s_Extensions)
    {
        if (Extension == QLatin1String(Entry.pExtension))
        {
            *pbFound = true;
            return Entry.eType;
        }
    }
    *pbFound = false;
    return DocType_PlainText;
}

EShaderDocType TypeFromGLSLExtension(const QString& Extension)
{
    if (Extension == QLatin1String("vsh") || Extension == QLatin1String("vert") || Extension == QLatin1String("glsl"))
        return DocType_GLSLESVertex;
    if (Extension == QLatin1String("fsh") || Extension == QLatin1String("frag"))
        return DocType_GLSLESFragment;
    return DocType_PlainText;
}
} // namespace

QString GetDocTypeName(EShaderDocType eType)
{
    const SDocTypeRow* pRow = FindDocType(eType);
    return pRow ? UIString(pRow->eName) : QString();
}

QString GetLanguageName(unsigned int uiGroupMask)
{
    switch (uiGroupMask)
    {
    case LanguageGroup_PlainText:
        return UIString(UIS_DocTypePlainText);
    case LanguageGroup_GLSLES:
        return UIString(UIS_LanguageGLSLES);
    case LanguageGroup_GLSL:
        return UIString(UIS_LanguageGLSL);
    case LanguageGroup_HLSL:
        return UIString(UIS_LanguageHLSL);
    case LanguageGroup_OpenCL:
        return UIString(UIS_LanguageOpenCL);
    default:
        return QString();
    }
}

QString GetDocTypeDescription(EShaderDocType eType)
{
    const SDocTypeRow* pRow = FindDocType(eType);
    return pRow ? UIString(pRow->eDescription) : QString();
}

QString GetDocTypeExtension(EShaderDocType eType)
{
    const SDocTypeRow* pRow = FindDocType(eType);
    return pRow ? QString::fromLatin1(pRow->pExtension) : QString();
}

EShaderLanguageGroup GetDocTypeLanguageGroup(EShaderDocType eType)
{
    const SDocTypeRow* pRow = FindDocType(eType);
    return pRow ? pRow->eGroup : LanguageGroup_PlainText;
}

QVector<SNewFileEntry> GetNewFileEntries()
{
    return {
        {DocType_PlainText, LanguageGroup_PlainText},   {DocType_GLSLESVertex, LanguageGroup_GLSLES},
        {DocType_GLSLESFragment, LanguageGroup_GLSLES}, {DocType_ZFXGLSLES, LanguageGroup_GLSLES},
        {DocType_GLSLVertex, LanguageGroup_GLSL},       {DocType_GLSLFragment, LanguageGroup_GLSL},
        {DocType_ZFXGLSL, LanguageGroup_GLSL},          {DocType_HLSLVertex, LanguageGroup_HLSL},
        {DocType_HLSLFragment, LanguageGroup_HLSL},     {DocType_HLSLGeometry, LanguageGroup_HLSL},
        {DocType_HLSLFX, LanguageGroup_HLSL},           {DocType_OpenCLKernel, LanguageGroup_OpenCL},
    };
}

EShaderDocType DetectDocumentType(const CZamTString& Contents, const CZamTString& Extension)
{
    return DetectDocumentType(QString::fromLocal8Bit(Contents.GetString(), static_cast<int>(Contents.GetLength())),
                              QString::fromLocal8Bit(Extension.GetString(), static_cast<int>(Extension.GetLength())));
}

EShaderDocType DetectDocumentType(const QString& Contents, const QString& Extension)
{
    bool bHLSLExtension = false;
    const EShaderDocType eByExtension = TypeFromHLSLExtension(Extension, &bHLSLExtension);
    if (bHLSLExtension)
        return eByExtension;

    const bool bEmbeddedPrecision = HasPrecisionQualifier(Contents);
    const EStage eStage = DetectStage(Contents);

    if (Extension == QLatin1String("zfx"))
        return bEmbeddedPrecision ? DocType_ZFXGLSLES : DocType_ZFXGLSL;

    // Without a precision qualifier the text is not trusted: the extension decides, and
    // it only ever names GLSL:ES types. Desktop GLSL is chosen by the user, never guessed.
    if (bEmbeddedPrecision && eStage == Stage_Vertex)
        return DocType_GLSLESVertex;
    if (bEmbeddedPrecision && eStage == Stage_Fragment)
        return DocType_GLSLESFragment;
    return TypeFromGLSLExtension(Extension);
}

bool IsBackgroundCompilable(EShaderDocType eType)
{
    return eType == DocType_GLSLESVertex || eType == DocType_GLSLESFragment || eType == DocType_ZFXGLSLES;
}

bool IsAutoCompiledType(EShaderDocType eType)
{
    return (eType & LanguageGroup_GLSLES) != 0 || eType == DocType_ZFXGLSLES || eType == DocType_OpenCLKernel;
}
