// Exponential-squared fog factor computed per vertex.
attribute vec4 aPosition;

uniform mat4 uModelView;
uniform mat4 uProjection;
uniform float uFogDensity;

varying lowp float vFogFactor;

void main()
{
    vec4 eye = uModelView * aPosition;
    float distance = length(eye.xyz);
    float f = uFogDensity * distance;
    vFogFactor = clamp(exp(-f * f), 0.0, 1.0);
    gl_Position = uProjection * eye;
}
