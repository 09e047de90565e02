#pragma once

#include <QMetaType>
#include <QString>
#include <QVector>

// Bit-valued document type; language groups are unions of these values.
enum EShaderDocType : unsigned int
{
    DocType_PlainText = 0,
    DocType_GLSLESVertex = 1,
    DocType_GLSLESFragment = 2,
    DocType_GLSLVertex = 4,
    DocType_GLSLFragment = 8,
    DocType_ZFXGLSLES = 16,
    DocType_ZFXGLSL = 32,
    DocType_HLSLVertex = 64,
    DocType_HLSLFragment = 128,
    DocType_HLSLGeometry = 256,
    DocType_HLSLFX = 512,
    DocType_OpenCLKernel = 1024,
    // Asks a panel to detect the type from the text and the extension.
    DocType_Detect = 0x800,
};

enum EShaderLanguageGroup : unsigned int
{
    LanguageGroup_PlainText = 0,
    LanguageGroup_GLSLES = DocType_GLSLESVertex | DocType_GLSLESFragment,
    LanguageGroup_GLSL = DocType_GLSLVertex | DocType_GLSLFragment,
    LanguageGroup_HLSL = DocType_HLSLVertex | DocType_HLSLFragment | DocType_HLSLGeometry | DocType_HLSLFX,
    LanguageGroup_OpenCL = DocType_OpenCLKernel,
};

Q_DECLARE_METATYPE(EShaderDocType)

class CZamTString;

// Display title of a single type; unions (such as the 48 of the shared effect extension)
// and unknown values give an empty text.
[[nodiscard]] QString GetDocTypeName(EShaderDocType eType);
// Name of a language group mask (0, 3, 12, 960, 1024); other masks give an empty text.
[[nodiscard]] QString GetLanguageName(unsigned int uiGroupMask);
// The text the new-file dialog shows for a type; empty for values that are not a type.
[[nodiscard]] QString GetDocTypeDescription(EShaderDocType eType);
// The type's own file extension without the dot ("zfx" for both effect types).
[[nodiscard]] QString GetDocTypeExtension(EShaderDocType eType);
// The language group a type belongs to; effect files go with their shading language.
[[nodiscard]] EShaderLanguageGroup GetDocTypeLanguageGroup(EShaderDocType eType);

struct SNewFileEntry
{
    EShaderDocType eType;
    EShaderLanguageGroup eGroup;
};
// The types offered for a new document, in the order the dialog lists them.
[[nodiscard]] QVector<SNewFileEntry> GetNewFileEntries();

// Guesses the type of a file being opened. Extension comparisons are exact (case-sensitive),
// and the extension is given without its dot.
[[nodiscard]] EShaderDocType DetectDocumentType(const CZamTString& Contents, const CZamTString& Extension);
[[nodiscard]] EShaderDocType DetectDocumentType(const QString& Contents, const QString& Extension);

// Types whose new-file description promises background compiling (the GLSL:ES group).
[[nodiscard]] bool IsBackgroundCompilable(EShaderDocType eType);
// Types that an edit panel actually compiles while the user types: the GLSL:ES group plus
// OpenCL kernels, which have a compiler of their own.
[[nodiscard]] bool IsAutoCompiledType(EShaderDocType eType);
