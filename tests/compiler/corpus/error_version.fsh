#version 330
// Desktop GLSL is not GLSL ES.
out vec4 fragColor;

void main()
{
    fragColor = vec4(1.0);
}
