// Particles as point sprites: size shrinks with distance, colour fades over the lifetime.
attribute vec3 aPosition;
attribute vec3 aVelocity;
attribute float aBirthTime;

uniform mat4 uModelView;
uniform mat4 uProjection;
uniform float uTime;
uniform float uPointScale;
uniform vec3 uGravity;

varying vec4 vColour;

void main()
{
    float age = max(uTime * 4.0 - aBirthTime, 0.0);
    vec3 position = aPosition + aVelocity * age + 0.5 * uGravity * age * age;
    vec4 eye = uModelView * vec4(position, 1.0);
    float life = clamp(1.0 - age / 4.0, 0.0, 1.0);
    vColour = vec4(mix(vec3(1.0, 0.3, 0.1), vec3(1.0, 0.9, 0.5), life), life * life);
    gl_PointSize = clamp(uPointScale * 40.0 / max(-eye.z, 0.5), 1.0, 64.0);
    gl_Position = uProjection * eye;
}
