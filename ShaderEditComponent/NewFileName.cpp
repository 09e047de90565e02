#include "NewFileName_p.h"

#include "ShaderEditComponent/compile/model/UIString.h"

#include <QRegExp>

namespace
{
// GL_ES guards the precision line, so the same effect also serves desktop GLSL.
const char s_MinimalEffect[] = "[HEADER]\n"
                               "VERSION 1.0\n"
                               "DESCRIPTION A minimal effect: one vertex shader, one fragment shader\n"
                               "[/HEADER]\n"
                               "\n"
                               "[VERTEXSHADER]\n"
                               "NAME MainVS\n"
                               "[GLSL_CODE]\n"
                               "attribute vec4 a_position;\n"
                               "uniform mat4 u_modelViewProjection;\n"
                               "\n"
                               "void main()\n"
                               "{\n"
                               "    gl_Position = u_modelViewProjection * a_position;\n"
                               "}\n"
                               "[/GLSL_CODE]\n"
                               "[/VERTEXSHADER]\n"
                               "\n"
                               "[FRAGMENTSHADER]\n"
                               "NAME MainFS\n"
                               "[GLSL_CODE]\n"
                               "#ifdef GL_ES\n"
                               "precision mediump float;\n"
                               "#endif\n"
                               "uniform vec4 u_colour;\n"
                               "\n"
                               "void main()\n"
                               "{\n"
                               "    gl_FragColor = u_colour;\n"
                               "}\n"
                               "[/GLSL_CODE]\n"
                               "[/FRAGMENTSHADER]\n"
                               "\n"
                               "[EFFECT]\n"
                               "NAME Main\n"
                               "VERTEXSHADER MainVS\n"
                               "FRAGMENTSHADER MainFS\n"
                               "ATTRIBUTE a_position POSITION\n"
                               "UNIFORM u_modelViewProjection WORLDVIEWPROJECTION\n"
                               "[/EFFECT]\n";
} // namespace

QString NextNewFileName(const QStringList& TabTitles)
{
    const QString Base = UIString(UIS_NewFile);
    QRegExp AnyNewFile(QRegExp::escape(Base) + QStringLiteral(".*"), Qt::CaseSensitive);
    QRegExp NumberedNewFile(QRegExp::escape(Base) + QStringLiteral(" \\((\\d+)\\)"), Qt::CaseSensitive);

    int iNext = 0;
    for (const QString& Title : TabTitles)
    {
        if (AnyNewFile.indexIn(Title) < 0)
            continue;
        iNext = 1;
        if (NumberedNewFile.indexIn(Title) >= 0)
            iNext = NumberedNewFile.cap(1).toInt() + 1;
    }
    if (iNext > 0)
        return Base + QStringLiteral(" (%1)").arg(iNext);
    return Base;
}

QString NewFileText(EShaderDocType eType)
{
    if (eType == DocType_ZFXGLSLES || eType == DocType_ZFXGLSL)
        return QString::fromLatin1(s_MinimalEffect);
    return QString();
}
