// A missing semicolon.
attribute vec4 aPosition;
uniform mat4 uMvp;

void main()
{
    vec4 p = uMvp * aPosition
    gl_Position = p;
}
