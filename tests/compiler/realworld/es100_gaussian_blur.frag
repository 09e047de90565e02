// Separable Gaussian blur, one direction per pass, nine taps with linear-sampling weights.
precision mediump float;

uniform sampler2D uSource;
uniform vec2 uDirection;
uniform vec2 uTexelSize;

varying vec2 vTexCoord;

vec3 tap(vec2 uv, float offset, float weight)
{
    vec2 delta = uDirection * uTexelSize * offset;
    return (texture2D(uSource, uv + delta).rgb + texture2D(uSource, uv - delta).rgb) * weight;
}

vec3 blur(vec2 uv)
{
    vec3 sum = texture2D(uSource, uv).rgb * 0.2270270270;
    sum += tap(uv, 1.3846153846, 0.3162162162);
    sum += tap(uv, 3.2307692308, 0.0702702703);
    return sum;
}

void main()
{
    gl_FragColor = vec4(blur(vTexCoord), 1.0);
}
