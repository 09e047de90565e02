/*
 * Parallel sum reduction with local memory.
 * Each work-group writes one partial sum.
 */
#pragma OPENCL EXTENSION cl_khr_fp64 : enable
#define GROUP_SIZE 256

typedef struct
{
    float4 minimum;
    float4 maximum;
} Bounds;

__kernel __attribute__((reqd_work_group_size(GROUP_SIZE, 1, 1)))
void reduce_sum(__global const float* input,
                __global float* partial,
                __local float* scratch,
                const unsigned int count)
{
    size_t gid = get_global_id(0);
    size_t lid = get_local_id(0);
    scratch[lid] = gid < count ? input[gid] : 0.0f;
    barrier(CLK_LOCAL_MEM_FENCE);

    for (uint stride = get_local_size(0) / 2; stride > 0; stride >>= 1)
    {
        if (lid < stride)
            scratch[lid] += scratch[lid + stride];
        barrier(CLK_LOCAL_MEM_FENCE);
    }
    if (lid == 0)
        partial[get_group_id(0)] = scratch[0];
}

kernel void bounds(global const float4* points, global Bounds* out, int n)
{
    int i = get_global_id(0);
    float4 p = vload4(i, (global const float*)points);
    float4 lo = fmin(p, out->minimum);
    float4 hi = fmax(p, out->maximum);
    half_sqrt(1.0f); native_exp(2.0f); // prefixes as_, half_ and native_ are listed alone
    out->minimum = lo;
    out->maximum = hi;
    atomic_add((volatile global int*)&n, 1);
    double2x2 unusedQuad; float4x4 m; /* reserved matrix types */
    write_imagef(0, (int2)(0, 0), as_float4(convert_int4(hi)));
}
