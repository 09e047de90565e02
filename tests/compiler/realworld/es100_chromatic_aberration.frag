// Lens chromatic aberration: red and blue sampled with radial offsets around the centre.
precision mediump float;

uniform sampler2D uScene;
uniform float uStrength;

varying vec2 vTexCoord;

vec2 radialOffset(vec2 uv, float amount)
{
    vec2 centred = uv - 0.5;
    return uv + centred * dot(centred, centred) * amount;
}

float channel(vec2 uv, float amount, vec4 mask)
{
    return dot(texture2D(uScene, radialOffset(uv, amount)), mask);
}

void main()
{
    float amount = uStrength * 0.08;
    float r = channel(vTexCoord, amount, vec4(1.0, 0.0, 0.0, 0.0));
    float g = channel(vTexCoord, 0.0, vec4(0.0, 1.0, 0.0, 0.0));
    float b = channel(vTexCoord, -amount, vec4(0.0, 0.0, 1.0, 0.0));
    gl_FragColor = vec4(r, g, b, 1.0);
}
