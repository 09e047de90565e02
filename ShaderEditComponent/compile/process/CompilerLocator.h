#pragma once

#include "ShaderEditComponent/compile/model/Settings.h"

#include <QString>
#include <QStringList>

// The compiler selection of the settings: indices 0 to 3 are the built-in targets of the
// target table; 4 (and anything past the table) is the custom compiler at CustomCompilerPath.
constexpr quint32 CustomCompilerSelection = 4;

// Base name of the bundled OpenCL compiler, used for OpenCL kernel documents whatever the
// selection.
[[nodiscard]] QString OpenCLCompilerBaseName();

// Where bundled compilers are looked for, in order: the running executable's folder, then
// the install's libexec folder ("<prefix>/libexec/zamshadereditor", from GNUInstallDirs).
[[nodiscard]] QStringList DefaultCompilerSearchPaths();

// The first executable file named BaseName in the search paths; empty when there is none.
[[nodiscard]] QString FindBundledCompiler(const QString& BaseName, const QStringList& SearchPaths);

// The executable that compiles GLSL ES for the settings' selection: the bundled target, or
// the custom path as stored. Empty when a bundled target is not found.
[[nodiscard]] QString ResolveCompilerPath(const Settings::SCompiler& Compiler, const QStringList& SearchPaths);
