#version 300 es
// Matrix built-ins a colour pipeline and a shadow setup lean on.
precision highp float;

uniform mat3 uColourMatrix;
uniform mat2x3 uProjectionBasis;
uniform mat4 uLightMatrix;

in vec3 vColour;
in vec2 vCoefficients;

out vec4 fragColour;

void main()
{
    mat3 outer = outerProduct(vColour, vec3(0.2126, 0.7152, 0.0722));
    mat3 grade = matrixCompMult(uColourMatrix, mat3(0.9)) + outer * 0.1;
    vec3 graded = transpose(grade) * vColour;
    vec3 projected = uProjectionBasis * vCoefficients;
    vec3 back = vCoefficients * transpose(uProjectionBasis);
    float det = determinant(uColourMatrix) + determinant(mat2(uLightMatrix));
    vec4 lightSpace = uLightMatrix * vec4(graded, 1.0);
    mat3x2 thin = mat3x2(uLightMatrix);
    vec2 squeezed = thin * projected;
    fragColour = vec4(graded.r + lightSpace.x * 0.1, projected.y + back.z * 0.5, det * 0.25 + squeezed.x, lightSpace.w * 0.5);
}
