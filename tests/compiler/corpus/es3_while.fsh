#version 300 es
// Mandelbrot iteration: a while loop whose trip count is not known.
precision highp float;

in vec2 vPosition;
uniform int uMaxIterations;

out vec4 fragColor;

void main()
{
    vec2 z = vec2(0.0);
    int n = 0;
    while (n < uMaxIterations && dot(z, z) < 4.0)
    {
        z = vec2(z.x * z.x - z.y * z.y, 2.0 * z.x * z.y) + vPosition;
        n++;
    }
    float shade = float(n) / float(uMaxIterations);
    fragColor = vec4(vec3(shade), 1.0);
}
