// Nine-tap separable Gaussian blur; offsets make every read dependent.
precision mediump float;

varying vec2 vTexCoord;
uniform sampler2D uSource;
uniform vec2 uDirection;

void main()
{
    vec4 sum = texture2D(uSource, vTexCoord) * 0.2270270270;
    vec2 step1 = uDirection * 1.3846153846;
    vec2 step2 = uDirection * 3.2307692308;
    sum += texture2D(uSource, vTexCoord + step1) * 0.3162162162;
    sum += texture2D(uSource, vTexCoord - step1) * 0.3162162162;
    sum += texture2D(uSource, vTexCoord + step2) * 0.0702702703;
    sum += texture2D(uSource, vTexCoord - step2) * 0.0702702703;
    gl_FragColor = sum;
}
