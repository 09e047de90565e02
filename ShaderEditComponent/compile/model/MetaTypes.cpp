#include "MetaTypes.h"

void RegisterCompileMetaTypes()
{
    qRegisterMetaType<CZamTHash>("CZamTHash");
    qRegisterMetaType<CZamTString>("CZamTString");
    qRegisterMetaType<EShaderDocType>("EShaderDocType");
    qRegisterMetaType<SCompileResult>("SCompileResult");
    qRegisterMetaType<CZamTArray<int>>("CZamTArray<int>");
    qRegisterMetaType<Settings::SEditor>("Settings::SEditor");
    qRegisterMetaType<Settings::SCompiler>("Settings::SCompiler");
    qRegisterMetaType<ECompileInvocationType>("ECompileInvocationType");
}
