// Point sprites animated on the GPU.
attribute vec3 aStart;
attribute vec3 aVelocity;
attribute float aBirth;

uniform mat4 uViewProjection;
uniform float uTime;
uniform float uLifetime;
uniform vec3 uGravity;

varying float vAge;

void main()
{
    float age = mod(uTime - aBirth, uLifetime);
    vec3 position = aStart + aVelocity * age + 0.5 * uGravity * age * age;
    vAge = age / uLifetime;
    gl_PointSize = mix(16.0, 2.0, vAge);
    gl_Position = uViewProjection * vec4(position, 1.0);
}
