#version 320 es
// Analytic height fog integrated along the view ray, with in-scattering towards the sun.
precision highp float;

uniform vec3 uCameraPosition;
uniform vec3 uSunDirection;
uniform vec3 uFogColour;
uniform float uDensity;
uniform float uFalloff;

in vec3 vWorldPosition;
in vec3 vSurfaceColour;

out vec4 fragColour;

float heightFog(vec3 camera, vec3 toPoint, float density, float falloff)
{
    float distance = length(toPoint);
    float rayY = toPoint.y;
    float fogAmount = density * exp(-camera.y * falloff);
    float integral = abs(rayY) > 1e-3 ? (1.0 - exp(-distance * rayY / distance * falloff)) / (rayY / distance * falloff) : distance;
    return 1.0 - exp(-fogAmount * integral);
}

void main()
{
    vec3 camera = uCameraPosition * 2.0;
    vec3 toPoint = vWorldPosition * 4.0 - camera;
    float fog = clamp(heightFog(camera, toPoint, uDensity * 0.3, 0.2 + uFalloff), 0.0, 1.0);
    float sun = pow(max(dot(normalize(toPoint), normalize(uSunDirection)), 0.0), 8.0);
    vec3 fogColour = mix(uFogColour, vec3(1.0, 0.9, 0.7), sun);
    fragColour = vec4(mix(vSurfaceColour, fogColour, fog), 1.0);
}
