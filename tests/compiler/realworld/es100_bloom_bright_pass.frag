// Bloom bright pass with a soft knee, prefiltering four taps to fight fireflies.
precision mediump float;

uniform sampler2D uSource;
uniform vec2 uTexelSize;
uniform float uThreshold;
uniform float uKnee;

varying vec2 vTexCoord;

vec3 quadratic(vec3 colour, float threshold, float knee)
{
    float brightness = max(colour.r, max(colour.g, colour.b));
    float soft = clamp(brightness - threshold + knee, 0.0, 2.0 * knee);
    soft = soft * soft / (4.0 * knee + 1e-4);
    float contribution = max(soft, brightness - threshold) / max(brightness, 1e-4);
    return colour * contribution;
}

vec3 karisAverage(vec2 uv)
{
    vec3 a = texture2D(uSource, uv + vec2(-1.0, -1.0) * uTexelSize).rgb;
    vec3 b = texture2D(uSource, uv + vec2(1.0, -1.0) * uTexelSize).rgb;
    vec3 c = texture2D(uSource, uv + vec2(-1.0, 1.0) * uTexelSize).rgb;
    vec3 d = texture2D(uSource, uv + vec2(1.0, 1.0) * uTexelSize).rgb;
    vec4 w = 1.0 / (1.0 + vec4(dot(a, vec3(0.33)), dot(b, vec3(0.33)), dot(c, vec3(0.33)), dot(d, vec3(0.33))));
    return (a * w.x + b * w.y + c * w.z + d * w.w) / (w.x + w.y + w.z + w.w);
}

void main()
{
    gl_FragColor = vec4(quadratic(karisAverage(vTexCoord) * 2.0, uThreshold, uKnee * 0.5), 1.0);
}
