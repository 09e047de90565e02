#version 300 es
// A variable declared twice in one scope.
in vec4 aPosition;
uniform mat4 uMvp;

void main()
{
    vec4 p = uMvp * aPosition;
    vec4 p = aPosition;
    gl_Position = p;
}
