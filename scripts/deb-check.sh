#!/usr/bin/env bash
# Installs the Debian package into a fresh Debian 12 root and checks it there: the package's
# dependencies alone (no recommended packages) must be enough for the editor to start, find
# its bundled compiler in /usr/libexec and compile a shader, and for its desktop files, icons
# and manual to be in place. Needs root (chroot), debootstrap and the Debian mirror.
#
#   scripts/deb-check.sh PACKAGE.deb
#
# The bare root made by debootstrap is kept in $ZAM_DEB_CHECK_CACHE (default
# /var/tmp/zamshadereditor-deb-check) and copied for every run, so each run starts clean.
set -euo pipefail

deb="$(realpath "$1")"
cache="${ZAM_DEB_CHECK_CACHE:-/var/tmp/zamshadereditor-deb-check}"
mirror="${ZAM_DEB_CHECK_MIRROR:-http://deb.debian.org/debian}"
start=$SECONDS

if [ "$(id -u)" -ne 0 ]; then
  echo "deb-check: needs root for debootstrap and chroot" >&2
  exit 1
fi
command -v debootstrap >/dev/null || { echo "deb-check: debootstrap not found (apt-get install debootstrap)" >&2; exit 1; }

if [ ! -x "$cache/base/usr/bin/apt-get" ]; then
  echo "deb-check: making a bare Debian 12 root in $cache/base"
  rm -rf "$cache/base"
  mkdir -p "$cache"
  debootstrap --variant=minbase bookworm "$cache/base" "$mirror" >"$cache/debootstrap.log" 2>&1 || {
    tail -20 "$cache/debootstrap.log" >&2
    exit 1
  }
fi

root="$(mktemp -d "$cache/root.XXXXXX")"
cleanup() {
  for m in dev/pts dev proc; do mountpoint -q "$root/$m" && umount "$root/$m"; done
  rm -rf "$root"
}
trap cleanup EXIT
cp -a "$cache/base/." "$root/"
mount -t proc proc "$root/proc"
mount --bind /dev "$root/dev"
cp /etc/resolv.conf "$root/etc/resolv.conf"
cp "$deb" "$root/tmp/zamshadereditor.deb"

in_root() { chroot "$root" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LANG=C.UTF-8 "$@"; }

echo "deb-check: installing $(basename "$deb") with its dependencies only"
in_root apt-get update -qq
in_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends \
  /tmp/zamshadereditor.deb >"$root/tmp/install.log" 2>&1 || { tail -30 "$root/tmp/install.log" >&2; exit 1; }

fail() { echo "deb-check: FAILED: $*" >&2; exit 1; }

in_root zamshadereditor --version | grep -q '^ZamShaderEditor' || fail "zamshadereditor --version"
for f in /usr/libexec/zamshadereditor/glslcompiler_zc1 /usr/libexec/zamshadereditor/clcompiler_zc1 \
         /usr/share/applications/com.brenmoor.ZamShaderEditor.desktop \
         /usr/share/metainfo/com.brenmoor.ZamShaderEditor.metainfo.xml \
         /usr/share/mime/packages/com.brenmoor.ZamShaderEditor.xml \
         /usr/share/icons/hicolor/scalable/apps/com.brenmoor.ZamShaderEditor.svg \
         /usr/share/icons/hicolor/256x256/apps/com.brenmoor.ZamShaderEditor.png \
         "/usr/share/doc/zamshadereditor/ZamShaderEditor.User Manual.pdf" /usr/bin/xdg-open; do
  [ -e "$root$f" ] || fail "$f is missing"
done

# The installed editor finds the bundled compiler through its own folder, in a root that has
# never seen a build tree.
cat >"$root/tmp/check.frag" <<'SHADER'
precision mediump float;
uniform sampler2D uTexture;
varying vec2 vUv;
void main()
{
    gl_FragColor = texture2D(uTexture, vUv) * 0.5;
}
SHADER
in_root zamshadereditor --compile /tmp/check.frag >"$root/tmp/compile.log" 2>&1 || { cat "$root/tmp/compile.log" >&2; fail "--compile"; }
grep -q 'Compile succeeded' "$root/tmp/compile.log" || { cat "$root/tmp/compile.log" >&2; fail "the compile log does not say it succeeded"; }

# The window itself: the Qt libraries and plugins the package pulled in must load.
set +e
in_root env QT_QPA_PLATFORM=offscreen XDG_RUNTIME_DIR=/tmp timeout 5 zamshadereditor >"$root/tmp/window.log" 2>&1
status=$?
set -e
[ $status -eq 124 ] || { cat "$root/tmp/window.log" >&2; fail "the editor ended with $status instead of running"; }

echo "deb-check: passed in $((SECONDS - start)) s ($(in_root dpkg-query -W -f='${Version}' zamshadereditor))"
