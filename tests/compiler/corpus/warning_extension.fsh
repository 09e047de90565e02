// An unknown extension asked for with "warn" compiles with a warning.
#extension GL_ZAM_imaginary_feature : warn
precision mediump float;

varying vec4 vColor;

void main()
{
    gl_FragColor = vColor;
}
