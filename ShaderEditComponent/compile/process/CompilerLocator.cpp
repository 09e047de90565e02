#include "CompilerLocator.h"

#include "ShaderEditComponent/compile/model/CompileOptions.h"
#include "ShaderEditComponent/compile/model/ZamStringConversion.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

QString OpenCLCompilerBaseName()
{
    return QStringLiteral("clcompiler_zc1");
}

QStringList DefaultCompilerSearchPaths()
{
    const QString Own = QCoreApplication::applicationDirPath();
    return {Own, QDir::cleanPath(Own + QStringLiteral("/" ZAM_LIBEXEC_FROM_BIN))};
}

QString FindBundledCompiler(const QString& BaseName, const QStringList& SearchPaths)
{
    if (BaseName.isEmpty())
        return QString();
    for (const QString& Folder : SearchPaths)
    {
        const QFileInfo Candidate(QDir(Folder).filePath(BaseName));
        if (Candidate.isFile() && Candidate.isExecutable())
            return Candidate.absoluteFilePath();
    }
    return QString();
}

QString ResolveCompilerPath(const Settings::SCompiler& Compiler, const QStringList& SearchPaths)
{
    if (Compiler.uiCompilerSelection < CustomCompilerSelection
        && static_cast<int>(Compiler.uiCompilerSelection) < GetCompilerTargetCount())
    {
        const CZamTString& BaseName =
            GetCompilerTarget(static_cast<int>(Compiler.uiCompilerSelection)).ExecutableBaseName;
        return FindBundledCompiler(ToQString(BaseName), SearchPaths);
    }
    return ToQString(Compiler.CustomCompilerPath);
}
