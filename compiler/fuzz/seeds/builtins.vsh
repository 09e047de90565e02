attribute vec4 aP;
attribute vec3 aN;
uniform mat4 uMvp;
uniform mat4 uBones[8];
uniform vec4 uParams;
varying vec4 vC;
varying float vF[2];
vec4 skin(vec4 p, int idx) { return uBones[idx] * p; }
void main() {
  vec4 p = aP;
  for (int i = 0; i < 2; i++) p = skin(p, i);
  float f = uParams.x > 0.0 ? sin(uParams.y) : cos(uParams.z);
  vec3 n = faceforward(aN, vec3(0.0, 0.0, 1.0), aN);
  vec3 r = refract(normalize(aN), vec3(0,1,0), 0.9);
  vF[0] = f; vF[1] = atan(r.y, r.x) + asin(0.5) + acos(0.2) + tan(f);
  vC = vec4(n, 1.0) * step(0.5, f) + vec4(mod(f, 2.0), sign(f), ceil(f), floor(f) + fract(f) + exp(f) + log(abs(f) + 1.0) + inversesqrt(2.0));
  vC.xyz += cross(n, r) + reflect(n, r) * distance(n, r);
  gl_Position = uMvp * p + vec4(radians(45.0), degrees(1.0), exp2(f), log2(2.0 + f));
  gl_PointSize = clamp(f, 1.0, 4.0);
}
