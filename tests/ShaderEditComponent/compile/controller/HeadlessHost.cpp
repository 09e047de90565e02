// The editor's command-line compile on its own, so tests can start it, signal it and kill it
// without building the whole editor.

#include "ShaderEditComponent/compile/controller/HeadlessCompile.h"

int main(int argc, char** argv)
{
    return RunHeadlessCompileMain(argc, argv);
}
