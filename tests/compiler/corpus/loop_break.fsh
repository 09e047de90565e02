// Ray march with an early exit.
precision highp float;

varying vec3 vRayOrigin;
varying vec3 vRayDir;
uniform float uRadius;

float sphereDistance(vec3 p)
{
    return length(p) - uRadius;
}

void main()
{
    float t = 0.0;
    float hit = 0.0;
    for (int i = 0; i < 32; i++)
    {
        float d = sphereDistance(vRayOrigin + vRayDir * t);
        if (d < 0.001)
        {
            hit = 1.0;
            break;
        }
        t += d;
    }
    gl_FragColor = vec4(vec3(hit), 1.0);
}
