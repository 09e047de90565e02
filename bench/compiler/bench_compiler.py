#!/usr/bin/env python3
"""Whole-process cost of glslcompiler_zc1 (-profile -perfsim -disasm) against
glslangValidator validating the same shader, measured in the same run, on four fragment
shaders: a 60-line lit shader, 2,000 lines of generated lighting layers, a signed-distance
raymarcher (shaders/raymarch_sdf.fsh) and a 2,000-line material shader with its helper
library (shaders/material_2000.fsh). Prints each ratio, then the worst and the median;
the last line is machine-readable:
zc1_vs_glslang_60=<r> zc1_vs_glslang_2000=<r> zc1_vs_glslang_raymarch=<r> zc1_vs_glslang_material=<r> worst=<r> median=<r>

Wall time (the default): both programs run interleaved, [runs] times each (15 unless
given), and each ratio compares the fastest run of each. The fastest run is the one the
other processes on a shared machine disturbed least, so it is the steadiest estimate of
what the program itself costs; a median moves with the machine's load.

--instructions: the instructions each process executes, in all its threads, counted once
under valgrind's callgrind tool. The count does not depend on the machine's load, but it
adds up work done on several cores, which wall time does not.

Usage: bench_compiler.py <bin folder> [runs] [--instructions]"""

import os
import re
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

HERE = os.path.dirname(os.path.abspath(__file__))

HEADER = """precision highp float;
varying vec2 vTexCoord;
varying vec3 vNormal;
varying vec3 vViewDir;
uniform sampler2D uAlbedo;
uniform sampler2D uDetail;
uniform vec3 uLightDir;
uniform vec3 uLightColor;
uniform float uShininess;
uniform float uTime;
"""

BLOCK = """
vec3 layer{i}(vec3 n, vec3 v, vec2 uv)
{{
    vec3 l = normalize(uLightDir + vec3({a}, 0.0, {b}));
    float diffuse = max(dot(n, l), 0.0);
    vec3 h = normalize(l + v);
    float specular = pow(max(dot(n, h), 0.0), uShininess + {a});
    vec2 offset = vec2(sin(uTime * {b} + uv.y), cos(uTime * {a} + uv.x)) * 0.01;
    vec3 detail = texture2D(uDetail, uv * {c} + offset).rgb;
    vec3 color = vec3(0.0);
    for (int k = 0; k < 3; k++)
    {{
        color += detail * uLightColor * (diffuse + float(k) * 0.1);
    }}
    if (diffuse > {b})
    {{
        color = mix(color, vec3(specular), 0.5);
    }}
    else
    {{
        color *= {c};
    }}
    return color * diffuse + uLightColor * specular;
}}
"""


def small_shader():
    lines = HEADER.splitlines()
    body = BLOCK.format(i=0, a="0.25", b="0.5", c="2.0").splitlines()
    main = """
void main()
{
    vec3 n = normalize(vNormal);
    vec3 v = normalize(vViewDir);
    vec3 albedo = texture2D(uAlbedo, vTexCoord).rgb;
    vec3 color = albedo * layer0(n, v, vTexCoord);
    float rim = 1.0 - max(dot(n, v), 0.0);
    color += vec3(pow(rim, 3.0)) * uLightColor * 0.25;
    color = color / (color + vec3(1.0));
    color = pow(color, vec3(1.0 / 2.2));
    float vignette = smoothstep(0.8, 0.2, length(vTexCoord - 0.5));
    color *= vignette;
    gl_FragColor = vec4(color, 1.0);
}
""".splitlines()
    text = lines + body + main
    while len(text) < 60:
        text.insert(len(lines), "// padding")
    return "\n".join(text[:60] if len(text) > 60 else text) + "\n"


def layered_shader():
    parts = [HEADER]
    count = 0
    while True:
        block = BLOCK.format(i=count, a="%.2f" % (0.1 + count * 0.01), b="%.2f" % (0.3 + count * 0.005),
                             c="%.1f" % (1.0 + count * 0.1))
        if sum(p.count("\n") for p in parts) + block.count("\n") + count + 12 > 2000:
            break
        parts.append(block)
        count += 1
    main = ["", "void main()", "{", "    vec3 n = normalize(vNormal);", "    vec3 v = normalize(vViewDir);",
            "    vec3 color = texture2D(uAlbedo, vTexCoord).rgb * 0.1;"]
    for i in range(count):
        main.append("    color += layer%d(n, v, vTexCoord) * %.3f;" % (i, 1.0 / count))
    main += ["    gl_FragColor = vec4(color, 1.0);", "}"]
    text = "".join(parts) + "\n".join(main) + "\n"
    lines = text.count("\n")
    return text + "// padding\n" * max(0, 2000 - lines)


def shader_file(name):
    with open(os.path.join(HERE, "shaders", name)) as handle:
        return handle.read()


def time_once(command):
    start = time.perf_counter()
    result = subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    elapsed = time.perf_counter() - start
    if result.returncode != 0:
        sys.exit("failed (%d): %s" % (result.returncode, " ".join(command)))
    return elapsed


def instructions_once(command, work):
    out = os.path.join(work, "callgrind.out")
    result = subprocess.run(["valgrind", "--tool=callgrind", "--callgrind-out-file=" + out] + command,
                            stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
    if result.returncode != 0:
        sys.exit("failed under valgrind (%d): %s" % (result.returncode, " ".join(command)))
    match = re.search(r"Collected : (\d+)", result.stderr)
    if not match:
        sys.exit("valgrind reported no instruction count for: %s" % " ".join(command))
    return int(match.group(1))


def compare(zc1, validator, work, label, text, runs, count_instructions):
    path = os.path.join(work, "%s.frag" % label)
    with open(path, "w") as handle:
        handle.write(text)
    ours = [zc1, path, "bench", os.path.join(work, "out-" + label), "-f", "-profile", "-perfsim", "-disasm"]
    theirs = [validator, "-S", "frag", path]
    lines = text.count("\n")
    if count_instructions:
        ours_count = instructions_once(ours, work)
        theirs_count = instructions_once(theirs, work)
        ratio = ours_count / theirs_count
        print("%-9s %5d lines: zc1 %7.1f M instructions, glslangValidator %7.1f M, ratio %.2f" %
              (label, lines, ours_count / 1e6, theirs_count / 1e6, ratio))
        return ratio
    time_once(ours)
    time_once(theirs)
    ours_times, theirs_times = [], []
    for _ in range(runs):
        # Interleaved, so both see the same machine load.
        ours_times.append(time_once(ours))
        theirs_times.append(time_once(theirs))
    ratio = min(ours_times) / min(theirs_times)
    print("%-9s %5d lines: zc1 %6.2f ms, glslangValidator %6.2f ms, ratio %.2f (fastest of %d; medians %.2f / %.2f ms)" %
          (label, lines, min(ours_times) * 1000, min(theirs_times) * 1000, ratio, runs,
           statistics.median(ours_times) * 1000, statistics.median(theirs_times) * 1000))
    return ratio


def main():
    args = [arg for arg in sys.argv[1:] if arg != "--instructions"]
    count_instructions = len(args) != len(sys.argv) - 1
    if not args:
        sys.exit(__doc__)
    bin_dir = args[0]
    runs = int(args[1]) if len(args) > 1 else 15
    if count_instructions and not shutil.which("valgrind"):
        sys.exit("--instructions needs valgrind")
    zc1 = os.path.join(bin_dir, "glslcompiler_zc1")
    validator = shutil.which("glslangValidator")
    if not os.access(zc1, os.X_OK):
        sys.exit("missing %s: build the glslcompiler_zc1 target first" % zc1)
    if not validator:
        sys.exit("glslangValidator not found: install glslang-tools")

    shaders = (("60", small_shader()), ("2000", layered_shader()), ("raymarch", shader_file("raymarch_sdf.fsh")),
               ("material", shader_file("material_2000.fsh")))
    ratios = {}
    with tempfile.TemporaryDirectory() as work:
        for label, text in shaders:
            ratios[label] = compare(zc1, validator, work, label, text, runs, count_instructions)
    worst = max(ratios.values())
    median = statistics.median(ratios.values())
    print("worst ratio %.2f, median ratio %.2f" % (worst, median))
    print(" ".join("zc1_vs_glslang_%s=%.2f" % (label, ratios[label]) for label, _ in shaders) +
          " worst=%.2f median=%.2f" % (worst, median))


if __name__ == "__main__":
    main()
