#version 300 es
precision highp float;
precision highp int;
struct Material { vec3 color; float rough; vec2 uv[2]; };
uniform Material uMat[3];
uniform sampler2D uTex[2];
uniform highp sampler2DShadow uShadow;
uniform mat3 uM;
in vec4 vPos;
in vec2 vUv;
flat in int vIndex;
layout(location=0) out vec4 o0;
layout(location=1) out vec4 o1;
const float kW[4] = float[4](0.1, 0.2, 0.3, 0.4);
float g = 0.0;
Material make(vec3 c) { Material m; m.color = c; m.rough = 0.5; m.uv[0] = vUv; m.uv[1] = vUv.yx; return m; }
void bump(inout vec2 v, float s) { v.x += s; g += s; }
int find(int n) { for (int i = 0; i < 10; i++) { if (i * i > n) return i; } return -1; }
bool side(inout float x) { x += 1.0; return x > 2.0; }
void main() {
  Material m = make(uMat[vIndex].color);
  Material arr[2];
  arr[0] = m; arr[1] = make(vec3(1.0));
  vec2 p = vUv;
  bump(p, 2.0);
  bump(m.uv[1], 1.0);
  float w = kW[vIndex & 3];
  int k = 0;
  do { k++; if (k == 2) continue; w += float(k); } while (k < 5);
  mat3 mm = uM; mm *= uM; vec3 q = vPos.xyz * mm;
  float t = 0.0;
  bool b = side(t) && side(t);
  float pi = float(k++) + float(--k);
  bvec3 bv = lessThan(q, vec3(0.5));
  float s = texture(uShadow, vec3(vUv, 0.5));
  vec4 c = texture(uTex[1], p, 0.5) + textureProj(uTex[0], vPos) + textureGrad(uTex[0], vUv, dFdx(vUv), dFdy(vUv));
  uint u = uint(k) * 3u % 7u; int di = int(u) / 2; 
  o0 = c * w + vec4(q, float(find(k))) + vec4(any(bv) ? 1.0 : 0.0, all(not(bv)) ? 1.0 : 0.0, float(b), pi + s + float(di));
  o1 = vec4(arr[1].color + arr[0].uv[1].xyy, g + (m == arr[0] ? 1.0 : 0.0));
  o1.zx = o1.xz * 2.0;
}
