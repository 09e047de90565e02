#version 300 es
// Cellular (Voronoi) noise: nearest and second-nearest feature points over the 3x3 neighbourhood.
precision highp float;

uniform float uTime;
uniform float uScale;

in vec2 vTexCoord;

out vec4 fragColour;

// Arithmetic hash kept to small magnitudes, so it hashes the same on every GPU.
vec2 hash22(vec2 p)
{
    vec3 p3 = fract(vec3(p.xyx) * vec3(0.1031, 0.1030, 0.0973));
    p3 += dot(p3, p3.yzx + 3.33);
    return fract((p3.xx + p3.yz) * p3.zy);
}

vec2 voronoi(vec2 x)
{
    vec2 cell = floor(x);
    vec2 local = fract(x);
    float first = 8.0;
    float second = 8.0;
    for (int j = -1; j <= 1; j++)
    {
        for (int i = -1; i <= 1; i++)
        {
            vec2 neighbour = vec2(float(i), float(j));
            vec2 point = hash22(cell + neighbour);
            point = 0.5 + 0.5 * sin(uTime + 6.2831 * point);
            float d = length(neighbour + point - local);
            if (d < first)
            {
                second = first;
                first = d;
            }
            else if (d < second)
            {
                second = d;
            }
        }
    }
    return vec2(first, second);
}

void main()
{
    vec2 f = voronoi(vTexCoord * (3.0 + 5.0 * uScale));
    float border = smoothstep(0.0, 0.08, f.y - f.x);
    fragColour = vec4(vec3(f.x) * border, 1.0);
}
