#version 310 es
// Wide integer arithmetic: 64-bit counters from carries and the high halves of products.
precision highp float;
precision highp int;

uniform uint uStep;

in vec2 vUv;

out vec4 fragColour;

void main()
{
    uint a = uint(vUv.x * 4000.0) + 4294960000u;
    uint carry;
    uint sum = uaddCarry(a, uStep * 3000u, carry);
    uint borrow;
    uint difference = usubBorrow(uStep, a, borrow);
    uint high;
    uint low;
    umulExtended(a, 65537u, high, low);
    int highSigned;
    int lowSigned;
    imulExtended(int(vUv.y * 1000.0) - 500, 70000, highSigned, lowSigned);
    fragColour = vec4(float(carry), float(borrow), float(high) / 65536.0, float(highSigned + 1) * 0.5 + float(sum & 255u) / 512.0 + float(difference & 15u) / 64.0 + float(low & 7u) / 8.0);
}
