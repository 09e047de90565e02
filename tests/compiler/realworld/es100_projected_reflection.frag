// Planar water reflection: the reflected scene is read with a projective lookup whose
// coordinates ripple with the surface, softened with a bias on the blurrier far side.
precision mediump float;

uniform sampler2D uReflection;
uniform sampler2D uRipples;
uniform float uTime;
uniform vec3 uWaterTint;

varying vec4 vProjCoord;
varying vec2 vRippleUv;

void main()
{
    vec2 ripple = texture2D(uRipples, vRippleUv + vec2(uTime * 0.05, 0.0)).rg * 2.0 - 1.0;
    vec4 coord = vProjCoord;
    coord.xy += ripple * 0.02 * coord.w;
    vec3 sharp = texture2DProj(uReflection, coord).rgb;
    vec3 soft = texture2DProj(uReflection, coord, 1.5).rgb;
    float far = clamp(vProjCoord.w * 0.5, 0.0, 1.0);
    gl_FragColor = vec4(mix(sharp, soft, far) * uWaterTint, 1.0);
}
