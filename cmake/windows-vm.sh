# The way to run 32-bit Windows programs that needs nothing of the system or its processor: a whole PC, emulated in software, with a Debian
# kernel, the same packages of Wine, and all its files in memory. Used by windows-run.sh.
packages+=(linux-image-cloud-amd64:amd64)

# pack FOLDER: its content as an archive that the kernel unpacks.
pack() { (cd "$1" && find . -mindepth 1 -print0 | cpio --null --quiet -o -H newc -R 0:0); }

machine_make() {
  command -v cpio >/dev/null || die "cpio is missing; it is in the package cpio"
  mv "$1"/boot/vmlinuz-* "$2/vmlinuz"
  pack "$1" >"$2/root.cpio"
  rm -rf "$1"
}

machine_whole() { gzip -t "$1/prefix.cpio.gz"; }

machine_exec() {
  local made=$1 job=$2 packed=$work/packed prefix=null extra=()
  command -v qemu-system-x86_64 >/dev/null || die "qemu-system-x86_64 is missing; it is in the package qemu-system-x86"
  if [ -f "$job/commands" ]; then extra=("$made/prefix.cpio.gz"); else prefix=file:$made/prefix.cpio.gz; fi
  mkdir "$packed"
  mv "$job" "$packed/job"
  install -m 755 "$here/windows-vm-init.sh" "$packed/init"
  { cat "$made/root.cpio"; pack "$packed"; cat "${extra[@]}" /dev/null; } >"$work/initrd"
  exec setpriv --pdeathsig KILL qemu-system-x86_64 -accel tcg,thread=multi -cpu max,-smap -smp 2 -m 4096 -nodefaults -display none \
    -no-reboot -kernel "$made/vmlinuz" -initrd "$work/initrd" -append "console=ttyS0 quiet panic=-1 rdinit=/init" \
    -serial "file:$console" -serial stdio -serial "$prefix"
}
