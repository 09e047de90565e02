#version 300 es
// Boolean vectors: per-channel selection and masks from the vector relational functions.
precision highp float;

uniform vec4 uThresholds;
uniform bvec2 uFlags;

in vec4 vSample;

out vec4 fragColour;

void main()
{
    bvec4 above = greaterThan(vSample, uThresholds);
    bvec4 close = lessThanEqual(abs(vSample - uThresholds), vec4(0.25));
    bvec4 either = bvec4(above.x || close.x, above.y || close.y, above.z || close.z, above.w || close.w);
    vec4 picked = mix(vec4(0.0), vSample, above);
    float anyAbove = any(above) ? 1.0 : 0.0;
    float allClose = all(not(close)) ? 0.5 : 0.0;
    bool flagged = uFlags.x != uFlags.y || equal(above.xy, close.zw) == bvec2(true);
    fragColour = vec4(picked.xy + vec2(anyAbove, allClose), float(flagged), dot(vec4(either), vec4(0.25)));
}
