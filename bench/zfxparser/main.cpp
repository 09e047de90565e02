// Parses a generated effect file of exactly 5,000 lines many times and prints the median.
// The last line of output is "parse_5000_ms=<median>".

#include "Tools/ZamTZFXParser.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

namespace
{
constexpr int kLines = 5000;
constexpr int kRuns = 101;

void AddLine(std::string& Text, int& iLines, const std::string& Line)
{
    Text += Line;
    Text += '\n';
    ++iLines;
}

void AddShader(std::string& Text, int& iLines, const char* pBlock, int iIndex)
{
    AddLine(Text, iLines, std::string("[") + pBlock + "]");
    AddLine(Text, iLines, "NAME shader" + std::to_string(iIndex));
    AddLine(Text, iLines, "[GLSL_CODE]");
    AddLine(Text, iLines, "uniform mat4 u_mvp; // model, view and projection");
    AddLine(Text, iLines, "uniform sampler2D u_texture;");
    AddLine(Text, iLines, "varying   vec2 v_uv;");
    AddLine(Text, iLines, "void main()");
    AddLine(Text, iLines, "{");
    AddLine(Text, iLines, "\tvec4 colour = texture2D(u_texture, v_uv);");
    AddLine(Text, iLines, "\tgl_FragColor = colour * vec4(0.5, 0.5, 0.5, 1.0);");
    AddLine(Text, iLines, "}");
    AddLine(Text, iLines, "[/GLSL_CODE]");
    AddLine(Text, iLines, std::string("[/") + pBlock + "]");
    AddLine(Text, iLines, "");
}

void AddEffect(std::string& Text, int& iLines, int iIndex, int iShaders, int iViews)
{
    const std::string Shader = std::to_string(iIndex % iShaders);
    AddLine(Text, iLines, "[EFFECT]");
    AddLine(Text, iLines, "NAME effect" + std::to_string(iIndex));
    AddLine(Text, iLines, "[ANNOTATION]");
    AddLine(Text, iLines, "Generated effect number " + std::to_string(iIndex) + ".");
    AddLine(Text, iLines, "[/ANNOTATION]");
    AddLine(Text, iLines, "VERTEXSHADER shader" + Shader);
    AddLine(Text, iLines, "FRAGMENTSHADER shader" + Shader);
    AddLine(Text, iLines, "TEXTURE 0 file" + std::to_string(iIndex));
    AddLine(Text, iLines, "TEXTURE 1 view" + std::to_string((iIndex + 1) % iViews));
    AddLine(Text, iLines, "UNIFORM u_texture TEXTURE0");
    AddLine(Text, iLines, "UNIFORM u_view TEXTURE1");
    AddLine(Text, iLines, "UNIFORM u_mvp WORLDVIEWPROJECTION");
    AddLine(Text, iLines, "UNIFORM u_tint COLOR0 (1.0, 0.5, 0.25, 1.0)");
    AddLine(Text, iLines, "ATTRIBUTE a_position POSITION");
    AddLine(Text, iLines, "ATTRIBUTE a_uv TEXCOORD0");
    AddLine(Text, iLines, "TARGET COLOR view" + std::to_string(iIndex % iViews));
    AddLine(Text, iLines, "[/EFFECT]");
    AddLine(Text, iLines, "");
}

std::string MakeEffectFile()
{
    constexpr int kFiles = 200;
    constexpr int kViews = 100;
    constexpr int kShaders = 80;
    constexpr int kEffects = 80;
    std::string Text;
    int iLines = 0;
    AddLine(Text, iLines, "[HEADER]");
    AddLine(Text, iLines, "VERSION 1.0");
    AddLine(Text, iLines, "DESCRIPTION Generated benchmark effects");
    AddLine(Text, iLines, "[/HEADER]");
    AddLine(Text, iLines, "[TEXTURES]");
    for (int i = 0; i < kFiles; ++i)
    {
        const std::string Name = "file" + std::to_string(i);
        AddLine(Text, iLines, "FILE " + Name + " textures/" + Name + ".tex LINEAR-LINEAR-NEAREST REPEAT-REPEAT");
    }
    AddLine(Text, iLines, "[/TEXTURES]");
    for (int i = 0; i < kViews; ++i)
    {
        AddLine(Text, iLines, "[TEXTURE]");
        AddLine(Text, iLines, "NAME view" + std::to_string(i));
        AddLine(Text, iLines, i % 2 ? "VIEW ZFX_CURRENTVIEW" : "VIEW camera" + std::to_string(i));
        AddLine(Text, iLines, "RESOLUTION 256 256");
        AddLine(Text, iLines, "SURFACETYPE RGBA8888");
        AddLine(Text, iLines, "FILTER LINEAR-LINEAR-NONE");
        AddLine(Text, iLines, "[/TEXTURE]");
    }
    for (int i = 0; i < kShaders; ++i)
    {
        AddShader(Text, iLines, "VERTEXSHADER", i);
        AddShader(Text, iLines, "FRAGMENTSHADER", i);
    }
    for (int i = 0; i < kEffects; ++i)
        AddEffect(Text, iLines, i, kShaders, kViews);
    // Pad with comment lines; the last one has no line feed, so the count is exact.
    while (iLines < kLines - 1)
        AddLine(Text, iLines, "// padding");
    Text += "// end";
    return Text;
}
} // namespace

int main()
{
    const std::string Text = MakeEffectFile();
    CZamTString Error;
    std::vector<double> Times;
    for (int iRun = 0; iRun < kRuns; ++iRun)
    {
        CZamTZFXParser Parser;
        const auto Start = std::chrono::steady_clock::now();
        const int iResult = Parser.ParseFromMemory(Text.c_str(), Error);
        const auto Stop = std::chrono::steady_clock::now();
        if (iResult != 0)
        {
            std::fprintf(stderr, "parse failed: %s", Error.GetString());
            return 1;
        }
        Times.push_back(std::chrono::duration<double, std::milli>(Stop - Start).count());
    }
    std::sort(Times.begin(), Times.end());
    std::printf("runs=%d bytes=%zu fastest_ms=%.3f slowest_ms=%.3f\n", kRuns, Text.size(), Times.front(), Times.back());
    std::printf("parse_5000_ms=%.3f\n", Times[Times.size() / 2]);
    return 0;
}
