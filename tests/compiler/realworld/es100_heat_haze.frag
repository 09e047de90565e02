// Heat haze: screen-space distortion from two travelling sine waves, stronger near the bottom.
precision mediump float;

uniform sampler2D uScene;
uniform float uTime;
uniform float uStrength;

varying vec2 vTexCoord;

vec2 distortion(vec2 uv)
{
    float wave = sin(uv.y * 40.0 + uTime * 5.0) * 0.5 + sin(uv.x * 23.0 - uTime * 3.0) * 0.5;
    float falloff = 1.0 - smoothstep(0.0, 0.7, uv.y);
    return vec2(wave * 0.004, wave * 0.002) * falloff * uStrength;
}

void main()
{
    vec2 uv = vTexCoord + distortion(vTexCoord);
    vec3 scene = texture2D(uScene, uv).rgb;
    gl_FragColor = vec4(scene, 1.0);
}
