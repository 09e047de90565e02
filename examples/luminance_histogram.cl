// Auto-exposure, first step: a histogram of log2 luminance over a linear RGBA image.
// Each work-group counts into local memory first, so the global bins see one atomic add
// per bin and group instead of one per pixel. Bin 0 collects (nearly) black pixels; bins
// 1 to BIN_COUNT - 1 cover [minLog2, minLog2 + 1 / inverseLog2Range].
#define BIN_COUNT 64

__kernel void luminance_histogram(__global const float4* pixels, const uint pixelCount, const float minLog2,
                                  const float inverseLog2Range, __global uint* bins)
{
    __local uint localBins[BIN_COUNT];
    const uint localId = get_local_id(0);
    const uint localSize = get_local_size(0);

    for (uint i = localId; i < BIN_COUNT; i += localSize)
        localBins[i] = 0;
    barrier(CLK_LOCAL_MEM_FENCE);

    for (uint i = get_global_id(0); i < pixelCount; i += get_global_size(0))
    {
        const float luminance = dot(pixels[i].xyz, (float3)(0.2126f, 0.7152f, 0.0722f));
        uint bin = 0;
        if (luminance > 1e-5f)
        {
            const float t = clamp((log2(luminance) - minLog2) * inverseLog2Range, 0.0f, 1.0f);
            bin = 1 + (uint)(t * (BIN_COUNT - 2));
        }
        atomic_inc(&localBins[bin]);
    }
    barrier(CLK_LOCAL_MEM_FENCE);

    for (uint i = localId; i < BIN_COUNT; i += localSize)
        atomic_add(&bins[i], localBins[i]);
}
