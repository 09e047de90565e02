#pragma once

// Registers the compiled-in splash image (":/ZamShaderEditor/Graphics/"). It lives in a
// static library, whose resource object the linker keeps only when something refers to it;
// calling this is that reference. Safe to call any number of times.
void InitHelpResources();
