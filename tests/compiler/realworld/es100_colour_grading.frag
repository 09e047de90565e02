// Colour grading: white balance, saturation through a matrix, lift/gamma/gain, contrast.
precision mediump float;

uniform sampler2D uFrame;
uniform vec3 uLift;
uniform vec3 uGamma;
uniform vec3 uGain;
uniform float uSaturation;
uniform float uContrast;

varying vec2 vTexCoord;

mat3 saturationMatrix(float s)
{
    vec3 w = vec3(0.2126, 0.7152, 0.0722) * (1.0 - s);
    return mat3(w.x + s, w.x, w.x,
                w.y, w.y + s, w.y,
                w.z, w.z, w.z + s);
}

vec3 liftGammaGain(vec3 c)
{
    vec3 lifted = c * (1.5 - 0.5 * uLift) + 0.5 * uLift - 0.5;
    vec3 gained = clamp(lifted * (0.5 + uGain), 0.0, 1.0);
    return pow(gained, 1.0 / (0.5 + uGamma));
}

void main()
{
    vec3 colour = texture2D(uFrame, vTexCoord).rgb;
    colour = saturationMatrix(uSaturation * 2.0) * colour;
    colour = liftGammaGain(colour);
    colour = (colour - 0.5) * (0.5 + uContrast) + 0.5;
    gl_FragColor = vec4(clamp(colour, 0.0, 1.0), 1.0);
}
