// Assigning a vec3 to a vec4 and calling a function with the wrong arguments.
precision mediump float;

uniform vec3 uColor;

void main()
{
    vec4 color = uColor;
    float x = dot(uColor, 1.0, 2.0);
    gl_FragColor = color * x;
}
