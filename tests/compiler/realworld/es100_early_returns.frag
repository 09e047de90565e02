// Material classification with helpers that leave early from several places.
precision mediump float;

uniform sampler2D uMaskTexture;
uniform float uThreshold;

varying vec2 vTexCoord;
varying vec3 vNormal;

float slopeClass(vec3 n)
{
    float up = n.y;
    if (up > 0.8)
        return 0.0;
    if (up > 0.4)
        return 1.0;
    if (up > -0.2)
        return 2.0;
    return 3.0;
}

vec3 classColour(float c)
{
    if (c < 0.5)
        return vec3(0.2, 0.6, 0.2);
    else if (c < 1.5)
        return vec3(0.5, 0.4, 0.2);
    else if (c < 2.5)
        return vec3(0.5, 0.5, 0.5);
    return vec3(0.9, 0.9, 1.0);
}

float maskWeight(vec2 uv)
{
    vec4 m = texture2D(uMaskTexture, uv);
    if (m.a < uThreshold * 0.5)
        return 0.0;
    return m.r * 0.5 + m.g * 0.5;
}

void main()
{
    vec3 n = normalize(vNormal);
    vec3 colour = classColour(slopeClass(n));
    colour = mix(colour, vec3(0.8, 0.1, 0.1), maskWeight(vTexCoord));
    gl_FragColor = vec4(colour, 1.0);
}
