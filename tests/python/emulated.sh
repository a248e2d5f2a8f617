#!/usr/bin/env bash
# emulated.sh ROOT ARGUMENT...: runs the target's own Python, with NumPy and SciPy, by $EMULATOR. They are fetched as
# Debian packages and unpacked below ROOT: beside those of this machine they cannot be installed. Exits 77 where they
# cannot be had.
set -euo pipefail
root=$1
shift
packages=({python3.11-minimal,python3-numpy,python3-cffi-backend,python3-scipy,liblbfgsb0}:arm64 python3-decorator)
if [ ! -e "$root/complete" ]; then
  rm -rf "$root"
  mkdir -p "$root"
  (cd "$root" && apt-get -qq download "${packages[@]}") || exit 77
  for deb in "$root"/*.deb; do dpkg-deb --extract "$deb" "$root"; done
  touch "$root/complete"
fi
export PYTHONHOME=/usr PYTHONPATH=$root/usr/lib/python3/dist-packages:${PYTHONPATH:-} PYTHONDONTWRITEBYTECODE=1
exec "$EMULATOR" -E LD_LIBRARY_PATH="/usr/lib/aarch64-linux-gnu:$root/usr/lib/aarch64-linux-gnu" \
  "$root/usr/bin/python3.11" "$@"
