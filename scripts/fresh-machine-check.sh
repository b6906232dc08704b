#!/usr/bin/env bash
# Proves that the README's two commands set up a machine from nothing: makes a
# minimal Debian 12 root, puts a clean clone of this repository's committed
# HEAD in it, and runs the test command and then the run command (under Xvfb,
# with the start-up timing, so that the program exits once its window is up).
# Needs root, the network (the apt mirror this machine uses) and about ten
# minutes; it is not part of CI. Run it whenever dependencies change.
#   KORA_FRESH_ROOT  where to make the root (default: a new folder under /var/tmp)
#   KORA_FRESH_KEEP  1 keeps the root afterwards for a look inside
#   KORA_FRESH_CCACHE a ccache folder of this machine to lend the root: it saves
#                    compile time only, since a missing header still fails the build
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)

[ "$(id -u)" -eq 0 ] || { echo "fresh-machine-check: needs root (debootstrap and chroot)" >&2; exit 2; }
command -v debootstrap >/dev/null || {
  apt-get update -q && DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends debootstrap
}

# The mirror this machine's apt already uses, so the check reaches nothing else.
mirror=$(grep -hoE '^(URIs:|deb) +[^ ]+' /etc/apt/sources.list.d/*.sources /etc/apt/sources.list 2>/dev/null \
  | awk '{print $2}' | grep -v security | head -1 || true)
mirror=${mirror:-http://deb.debian.org/debian}

root=${KORA_FRESH_ROOT:-$(mktemp -d /var/tmp/kora-fresh.XXXXXX)}
# mktemp makes the folder private, but it becomes the root's "/", which every
# system user (postgres among them) must be able to enter.
chmod 755 "$root"
mounted=()
cleanup() {
  for ((i = ${#mounted[@]} - 1; i >= 0; i--)); do umount -l "${mounted[i]}" 2>/dev/null || true; done
  if [ "${KORA_FRESH_KEEP:-0}" != 1 ]; then rm -rf "$root"; else echo "Root kept in $root"; fi
}
trap cleanup EXIT

echo "== Minimal Debian 12 root in $root from $mirror"
debootstrap --variant=minbase bookworm "$root" "$mirror" >"$root.debootstrap.log" 2>&1 \
  || { tail -20 "$root.debootstrap.log" >&2; exit 1; }
rm -f "$root.debootstrap.log"
cp /etc/resolv.conf "$root/etc/resolv.conf"
# The root's apt list is the same mirror (security updates included when reachable).
printf 'deb %s bookworm main\ndeb %s bookworm-updates main\n' "$mirror" "$mirror" >"$root/etc/apt/sources.list"

for fs in proc sys dev dev/pts; do
  mount --bind "/$fs" "$root/$fs"
  mounted+=("$root/$fs")
done
mount -t tmpfs tmpfs "$root/dev/shm" && mounted+=("$root/dev/shm")
if [ -n "${KORA_FRESH_CCACHE:-}" ]; then
  mkdir -p "$root/root/.cache/ccache"
  mount --bind "$KORA_FRESH_CCACHE" "$root/root/.cache/ccache" && mounted+=("$root/root/.cache/ccache")
fi

echo "== Clean clone of $(git -C "$here" rev-parse --short HEAD)"
git clone -q --no-local "$here" "$root/root/kora-budget"

in_root() { chroot "$root" /usr/bin/env -i HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin LANG=C.UTF-8 "$@"; }

echo "== Test command: ./scripts/test.sh"
start=$(date +%s)
in_root bash -c 'cd /root/kora-budget && ./scripts/test.sh' 2>&1 | tail -25
status=${PIPESTATUS[0]}
echo "== test command exit $status after $(($(date +%s) - start)) s"
[ "$status" -eq 0 ] || exit "$status"

echo "== Run command: KORA_STARTUP_TIMING=1 xvfb-run -a ./scripts/run.sh"
in_root bash -c 'cd /root/kora-budget && KORA_STARTUP_TIMING=1 xvfb-run -a ./scripts/run.sh' 2>&1 | tail -10
status=${PIPESTATUS[0]}
echo "== run command exit $status"
exit "$status"
