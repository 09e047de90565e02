#version 300 es
// Packing a material id and two 8-bit parameters into one integer, as a G-buffer channel does.
precision highp float;
precision highp int;

uniform int uMaterialId;

in vec2 vRoughnessMetal;

out vec4 fragColour;

int packMaterial(int id, float roughness, float metal)
{
    int r = int(clamp(roughness, 0.0, 1.0) * 255.0 + 0.5);
    int m = int(clamp(metal, 0.0, 1.0) * 255.0 + 0.5);
    return (id & 0x7f) << 16 | r << 8 | m;
}

void unpackMaterial(int word, out int id, out float roughness, out float metal)
{
    id = (word >> 16) & 0x7f;
    roughness = float((word >> 8) & 0xff) / 255.0;
    metal = float(word & 0xff) / 255.0;
}

void main()
{
    int word = packMaterial(uMaterialId * 13, vRoughnessMetal.x, vRoughnessMetal.y);
    int id;
    float roughness;
    float metal;
    unpackMaterial(word, id, roughness, metal);
    fragColour = vec4(float(id) / 127.0, roughness, metal, float(word % 1000) / 1000.0);
}
