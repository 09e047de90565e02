// Film look: vignette, animated grain from an arithmetic hash and a slight warm tint.
precision mediump float;

uniform sampler2D uImage;
uniform float uTime;
uniform float uGrainAmount;

varying vec2 vTexCoord;

float hash12(vec2 p)
{
    vec3 p3 = fract(vec3(p.xyx) * 0.1031);
    p3 += dot(p3, p3.yzx + 3.33);
    return fract((p3.x + p3.y) * p3.z);
}

float vignette(vec2 uv)
{
    vec2 centred = uv - 0.5;
    return smoothstep(0.8, 0.25, length(centred * vec2(1.2, 1.0)));
}

void main()
{
    vec3 colour = texture2D(uImage, vTexCoord).rgb;
    float grain = hash12(gl_FragCoord.xy + floor(uTime * 24.0)) - 0.5;
    colour += grain * uGrainAmount * 0.15;
    colour *= vignette(vTexCoord);
    colour *= vec3(1.05, 1.0, 0.92);
    gl_FragColor = vec4(colour, 1.0);
}
