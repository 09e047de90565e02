// Alpha-tested foliage: cut-out from the texture's alpha, two-sided translucency.
precision mediump float;

uniform sampler2D uLeafTexture;
uniform float uAlphaCutoff;
uniform vec3 uSunDirection;
uniform vec3 uSunColour;

varying vec2 vTexCoord;
varying vec3 vNormal;

void main()
{
    vec4 leaf = texture2D(uLeafTexture, vTexCoord);
    if (leaf.a < uAlphaCutoff * 0.8)
        discard;
    vec3 n = normalize(vNormal);
    if (!gl_FrontFacing)
        n = -n;
    float front = max(dot(n, uSunDirection), 0.0);
    float back = max(dot(-n, uSunDirection), 0.0) * 0.35;
    vec3 colour = leaf.rgb * (0.2 + uSunColour * (front + back));
    gl_FragColor = vec4(colour, 1.0);
}
