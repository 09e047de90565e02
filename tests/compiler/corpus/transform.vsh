// Standard model-view-projection transform with lighting varyings.
attribute vec4 aPosition;
attribute vec3 aNormal;
attribute vec2 aTexCoord;

uniform mat4 uModelViewProjection;
uniform mat4 uModelView;
uniform mat3 uNormalMatrix;

varying vec3 vNormal;
varying vec3 vViewDir;
varying vec2 vTexCoord;

void main()
{
    vec4 viewPosition = uModelView * aPosition;
    vNormal = uNormalMatrix * aNormal;
    vViewDir = -viewPosition.xyz;
    vTexCoord = aTexCoord;
    gl_Position = uModelViewProjection * aPosition;
}
