#include "MesaRunner.h"

#include "InputValues.h"

#include <cstdio>
#include <regex>
#include <sstream>

namespace ZamDifferential
{

namespace
{

std::string VersionLine(int iVersion)
{
    return iVersion <= 100 ? std::string() : "#version " + std::to_string(iVersion) + " es\n";
}

std::string Literal(float f)
{
    char acText[40];
    std::snprintf(acText, sizeof acText, "%.9g", static_cast<double>(f));
    std::string text = acText;
    if (text.find_first_of(".en") == std::string::npos)
        text += ".0";
    return text;
}

// The expression of one component: a + bx * x + by * y of the quad position.
std::string Component(const SLinear& value, bool bFloat)
{
    if (!bFloat)
        return std::to_string(static_cast<int>(value.a));
    return "(" + Literal(value.a) + " + " + Literal(value.bx) + " * zamPosition.x + " + Literal(value.by) +
           " * zamPosition.y)";
}

std::string LeafExpression(const SLeaf& leaf, const std::string& type, bool bFlat)
{
    const std::vector<SLinear> aValues = VaryingValues(leaf, bFlat);
    std::string expression = type + "(";
    for (std::size_t i = 0; i < aValues.size(); ++i)
        expression += (i ? ", " : "") + Component(aValues[i], leaf.eScalar == Scalar_Float);
    return expression + ")";
}

std::string Declaration(const SVariable& input, bool bEs1)
{
    std::string declaration;
    if (input.bFlat)
        declaration += "flat ";
    if (input.bCentroid)
        declaration += "centroid ";
    declaration += bEs1 ? "varying " : "out ";
    declaration += "highp " + input.type + " " + input.name;
    if (input.iArraySize > 0)
        declaration += "[" + std::to_string(input.iArraySize) + "]";
    return declaration + ";\n";
}

} // namespace

std::string FullPrecision(const std::string& source)
{
    const std::string promoted = std::regex_replace(source, std::regex("\\b(lowp|mediump)\\b"), "highp");
    // The defaults go after the #version and #extension lines, which must come first.
    std::istringstream lines(promoted);
    std::vector<std::string> aLines;
    std::size_t uiInsert = 0;
    for (std::string line; std::getline(lines, line);)
    {
        aLines.push_back(line);
        if (std::regex_search(line, std::regex("^\\s*#\\s*(version|extension)\\b")))
            uiInsert = aLines.size();
    }
    std::string result;
    for (std::size_t i = 0; i < aLines.size(); ++i)
    {
        if (i == uiInsert)
            result += "precision highp float;\nprecision highp int;\nprecision highp sampler2D;\n"
                      "precision highp samplerCube;\n#line " +
                      std::to_string(uiInsert + 1) + "\n";
        result += aLines[i] + "\n";
    }
    return result;
}

std::string FeedingVertexShader(const SShaderInterface& fragment)
{
    const bool bEs1 = fragment.iVersion <= 100;
    std::string text = VersionLine(fragment.iVersion);
    text += bEs1 ? "attribute" : "in";
    text += " highp vec2 zamPosition;\n";
    for (const SVariable& input : fragment.aInputs)
        text += Declaration(input, bEs1);
    text += "void main()\n{\n";
    for (const SVariable& input : fragment.aInputs)
    {
        for (const SLeaf& leaf : input.aLeaves)
            text += "    " + leaf.glName + " = " + LeafExpression(leaf, input.type, input.bFlat) + ";\n";
    }
    return text + "    gl_Position = vec4(zamPosition, 0.0, 1.0);\n}\n";
}

std::string SinkFragmentShader(const SShaderInterface& vertex)
{
    if (vertex.iVersion <= 100)
        return "void main()\n{\n    gl_FragColor = vec4(0.0);\n}\n";
    return VersionLine(vertex.iVersion) + "precision highp float;\nout vec4 zamColour;\n"
                                          "void main()\n{\n    zamColour = vec4(0.0);\n}\n";
}

} // namespace ZamDifferential
