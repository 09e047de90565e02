#pragma once

#include "CompileOptions.h"
#include "CompileResult.h"
#include "Settings.h"
#include "ShaderDocType.h"
#include "Tools/ZamTArray.h"
#include "Tools/ZamTHash.h"

#include <QMetaType>

Q_DECLARE_METATYPE(CZamTHash)
Q_DECLARE_METATYPE(CZamTString)
Q_DECLARE_METATYPE(CZamTArray<int>)

// Registers, under their source names, the types that cross between the GUI thread and the
// compile worker in queued signals. Safe to call more than once.
void RegisterCompileMetaTypes();
