#version 310 es
// Bit-field built-ins: decoding a packed attribute word and counting set flags.
precision highp float;
precision highp int;

uniform uint uFlags;

in vec2 vUv;

out vec4 fragColour;

void main()
{
    vec2 uv = clamp(vUv, 0.0, 1.0); // a negative float converts to no defined uint
    uint word = uint(uv.x * 255.0) | (uint(uv.y * 255.0) << 8u) | (uFlags << 16u);
    uint low = bitfieldExtract(word, 0, 8);
    uint high = bitfieldExtract(word, 8, 8);
    uint merged = bitfieldInsert(word, uFlags, 4, 3);
    int ones = bitCount(word);
    int lowest = findLSB(word);
    int highest = findMSB(word);
    uint reversed = bitfieldReverse(low) >> 24u;
    fragColour = vec4(float(low) / 255.0, float(high + reversed) / 510.0, float(ones + lowest) / 40.0,
                      float(highest) / 32.0 + float(merged & 0xffu) / 1024.0);
}
