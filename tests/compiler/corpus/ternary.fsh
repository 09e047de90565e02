// Conditional expressions become selects.
precision mediump float;

varying vec3 vNormal;
uniform vec3 uUp;
uniform vec4 uSky;
uniform vec4 uGround;

void main()
{
    float facing = dot(normalize(vNormal), uUp);
    vec4 color = facing > 0.0 ? uSky : uGround;
    float rim = facing < 0.2 ? 1.0 - facing : 0.0;
    gl_FragColor = color + vec4(rim * 0.25);
}
