#version 300 es
// Matrix built-ins: transpose, determinant, outer product.
in vec4 aPosition;
in vec3 aNormal;

uniform mat4 uModel;
uniform mat4 uViewProjection;
uniform mat3 uNormalBasis;

out vec3 vNormal;
out float vHandedness;

void main()
{
    mat3 normalMatrix = transpose(uNormalBasis);
    vHandedness = sign(determinant(uNormalBasis));
    mat3 shear = outerProduct(aNormal, vec3(0.0, 0.1, 0.0));
    vNormal = normalize(normalMatrix * aNormal + shear * aNormal);
    gl_Position = uViewProjection * uModel * aPosition;
}
