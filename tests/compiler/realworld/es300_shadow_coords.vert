#version 300 es
// Shadow-map coordinates for two cascades next to the usual transform.
in vec4 aPosition;
in vec3 aNormal;

uniform mat4 uModel;
uniform mat4 uViewProjection;
uniform mat4 uLightViewProjection[2];

out vec4 vShadowCoord0;
out vec4 vShadowCoord1;
out vec3 vNormal;
out float vViewDepth;

const mat4 BIAS = mat4(0.5, 0.0, 0.0, 0.0,
                       0.0, 0.5, 0.0, 0.0,
                       0.0, 0.0, 0.5, 0.0,
                       0.5, 0.5, 0.5, 1.0);

void main()
{
    vec4 world = uModel * vec4(aPosition.xyz, 1.0);
    vec3 normal = mat3(uModel) * aNormal;
    vec4 offsetWorld = world + vec4(normal * 0.02, 0.0);
    vShadowCoord0 = BIAS * uLightViewProjection[0] * offsetWorld;
    vShadowCoord1 = BIAS * uLightViewProjection[1] * offsetWorld;
    vNormal = normal;
    gl_Position = uViewProjection * world;
    vViewDepth = gl_Position.w;
}
