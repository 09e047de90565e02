// Global variables with initialisers and a helper writing them.
precision mediump float;

varying vec2 vTexCoord;
uniform sampler2D uTexture;

float gExposure = 1.5;
vec3 gTint = vec3(1.0, 0.9, 0.8);

vec3 toneMap(vec3 color)
{
    color *= gExposure;
    return color / (color + vec3(1.0));
}

void main()
{
    vec3 hdr = texture2D(uTexture, vTexCoord).rgb * gTint;
    gl_FragColor = vec4(toneMap(hdr), 1.0);
}
