#pragma once

// Registers the compiled-in icons (":/Icons/", ":/ShaderEditComponent/Icons/",
// ":/ZamShaderEditor/Icons/"). They live in a static library, whose resource object the
// linker keeps only when something refers to it; calling this is that reference. Safe to
// call any number of times.
void InitIconResources();
