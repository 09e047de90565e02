// GLSL ES 1.00 fragment shaders need a default float precision.
varying vec2 vTexCoord;

void main()
{
    float shade = vTexCoord.x * 0.5;
    gl_FragColor = vec4(shade);
}
