// Environment reflection with a Fresnel term.
precision mediump float;

varying vec3 vNormal;
varying vec3 vEyeDir;
uniform samplerCube uEnvironment;
uniform float uFresnelPower;

void main()
{
    vec3 n = normalize(vNormal);
    vec3 e = normalize(vEyeDir);
    vec3 r = reflect(e, n);
    float fresnel = pow(1.0 - max(dot(-e, n), 0.0), uFresnelPower);
    vec4 env = textureCube(uEnvironment, r);
    gl_FragColor = vec4(env.rgb * fresnel, 1.0);
}
