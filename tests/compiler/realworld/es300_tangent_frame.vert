#version 300 es
// Normal-mapping setup: the tangent frame passed on as a matrix, handedness from the tangent's w.
in vec3 aPosition;
in vec3 aNormal;
in vec4 aTangent;
in vec2 aTexCoord;

uniform mat4 uModel;
uniform mat4 uViewProjection;
uniform vec3 uCameraPosition;

out mat3 vTangentToWorld;
out vec2 vTexCoord;
out vec3 vViewDirection;

void main()
{
    mat3 model = mat3(uModel);
    vec3 n = normalize(model * aNormal);
    vec3 t = normalize(model * aTangent.xyz);
    t = normalize(t - n * dot(n, t));
    vec3 b = cross(n, t) * (aTangent.w < 0.0 ? -1.0 : 1.0);
    vTangentToWorld = mat3(t, b, n);
    vec4 world = uModel * vec4(aPosition, 1.0);
    vViewDirection = uCameraPosition - world.xyz;
    vTexCoord = aTexCoord;
    gl_Position = uViewProjection * world;
}
