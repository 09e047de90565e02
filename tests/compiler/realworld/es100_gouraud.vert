// Per-vertex lighting with a separate normal matrix, the classic fixed-function replacement.
attribute vec3 aPosition;
attribute vec3 aNormal;
attribute vec2 aTexCoord;

uniform mat4 uModelViewProjection;
uniform mat4 uModelView;
uniform mat3 uNormalMatrix;
uniform vec3 uLightDirection;

varying vec3 vColour;
varying vec2 vTexCoord;

void main()
{
    vec3 n = normalize(uNormalMatrix * aNormal);
    float diffuse = max(dot(n, normalize(uLightDirection)), 0.0);
    vec4 eye = uModelView * vec4(aPosition, 1.0);
    float fog = clamp(1.0 + eye.z * 0.1, 0.0, 1.0);
    vColour = vec3(0.1) + vec3(diffuse) * fog;
    vTexCoord = aTexCoord;
    gl_Position = uModelViewProjection * vec4(aPosition, 1.0);
}
