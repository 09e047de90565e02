// Per-vertex lighting for OpenGL:ES 2.0 targets.
#version 100

#ifdef GL_FRAGMENT_PRECISION_HIGH
precision highp float;
#else
precision mediump float;
#endif

#define MAX_LIGHTS 4

attribute highp vec4 inVertex;
attribute mediump vec3 inNormal;
attribute mediump vec2 inTexCoord;

uniform highp mat4 MVPMatrix;
uniform highp mat4 ModelViewMatrix;
uniform mediump mat3 NormalMatrix;
uniform mediump vec3 LightPosition[MAX_LIGHTS];
uniform lowp vec4 LightColour[MAX_LIGHTS];
uniform int LightCount;

varying lowp vec4 vDiffuse;
varying mediump vec2 vTexCoord;
varying highp float vFogDepth;

/* Blinn-Phong terms are computed per vertex to keep the
   fragment stage down to a single texture read. */
lowp vec4 Shade(mediump vec3 position, mediump vec3 normal)
{
    lowp vec4 colour = vec4(0.05, 0.05, 0.08, 1.0);
    for (int i = 0; i < MAX_LIGHTS; ++i)
    {
        if (i >= LightCount)
            break;
        mediump vec3 toLight = normalize(LightPosition[i] - position);
        mediump float diffuse = max(dot(normal, toLight), 0.0);
        mediump vec3 halfway = normalize(toLight + vec3(0.0, 0.0, 1.0));
        mediump float specular = pow(max(dot(normal, halfway), 0.0), 32.0);
        colour += LightColour[i] * (diffuse + 0.5 * specular);
    }
    return clamp(colour, 0.0, 1.0);
}

void main()
{
    highp vec4 eyePosition = ModelViewMatrix * inVertex;
    mediump vec3 normal = normalize(NormalMatrix * inNormal);
    vDiffuse = Shade(eyePosition.xyz, normal);
    vTexCoord = inTexCoord * 2.0 + vec2(.5, 1.); // tiled twice
    vFogDepth = -eyePosition.z / 1e2;
    gl_Position = MVPMatrix * inVertex;
    gl_PointSize = 1.0;
}
