precision mediump float;

uniform sampler2D NormalMap;
uniform sampler2D ReflectionMap;
uniform samplerCube SkyBox;
uniform lowp vec4 WaterColour;
uniform mediump float Time;
uniform bool bUseSky;

varying mediump vec2 vTexCoord;
varying highp vec3 vEyeDirection;
varying lowp float vFogFactor;

/*
 * Two scrolling normal maps are blended to break up the tiling.
 * The reflection is distorted by the blended normal, then mixed
 * with the sky by a Fresnel approximation.
 */
const mediump float Speed = 0.031;      /* texture units per second */
const mediump float Distortion = 0.025;

mediump vec3 SampleNormal(mediump vec2 uv)
{
    mediump vec3 n = texture2D(NormalMap, uv).rgb * 2.0 - 1.0;
    return normalize(n);
}

void main()
{
    mediump vec2 uv0 = vTexCoord + vec2(Time * Speed, 0.0);
    mediump vec2 uv1 = vTexCoord * 1.7 - vec2(0.0, Time * Speed * 0.6);
    mediump vec3 normal = normalize(SampleNormal(uv0) + SampleNormal(uv1));

    mediump vec2 offset = normal.xy * Distortion;
    lowp vec4 reflection = texture2D(ReflectionMap, gl_FragCoord.xy / 512.0 + offset);
    if (bUseSky)
    {
        mediump vec3 r = reflect(normalize(vEyeDirection), normal);
        reflection = mix(reflection, textureCube(SkyBox, r), 0.35);
    }

    mediump float fresnel = 0.02 + 0.98 * pow(1.0 - max(dot(normal, -normalize(vEyeDirection)), 0.0), 5.0);
    lowp vec4 colour = mix(WaterColour, reflection, fresnel);
    gl_FragColor = vec4(mix(vec3(0.6, 0.7, 0.8), colour.rgb, vFogFactor), 1.0); // fog towards grey
    if (gl_FragColor.a < 0.01) discard;
}
