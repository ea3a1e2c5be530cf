#!/usr/bin/env bash
# Runs 32-bit Windows programs where neither the system nor its processor's 32-bit mode can be counted on: a whole PC,
# emulated in software, with a Debian kernel, 32-bit Wine, a virtual screen and Mesa's software GL.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
release=bookworm
keys=/usr/share/keyrings/debian-archive-keyring.gpg
packages=(wine wine32 libgl1 libgl1-mesa-dri libglx-mesa0 xvfb x11-xkb-utils busybox-static fonts-liberation fonts-wine
  libxcomposite1 libxcursor1 libxfixes3 libxi6 libxinerama1 libxrandr2 libxrender1 libxxf86vm1
  linux-image-cloud-amd64:amd64)
store=${XDG_CACHE_HOME:-$HOME/.cache}/velarto/windows-vm
cache=$store/1   # another number when what is made here changes
work=
machine=

usage() {
  cat >&2 <<'END'
usage: windows-vm.sh setup
       windows-vm.sh run [OPTION]... FOLDER -- PROGRAM ARGUMENT...
       windows-vm.sh run [OPTION]... FOLDER COMMANDS
  FOLDER's *.exe and *.dll go to C:\velarto, and programs run there. Relays the program's output and ends with its status.
  COMMANDS is a file; each line, in a shell's words: [depth=N] [timeout=SECONDS] [NAME=VALUE]... PROGRAM ARGUMENT...
  Their results come between `== command LINE` and `== exit N`; the status is that of the first that failed.
  --depth 24|16       the screen's bits per pixel (24)
  --env NAME=VALUE    a variable for every program
  --data FILE         a file or folder that goes to C:\velarto too
  --timeout SECONDS   for all of it (900)
  --log FILE          keeps the machine's console
  Status 124: a program, or all of it, took too long. Status 125: the machine did not get through.
END
  exit 2
}

say() { printf 'vm: %s\n' "$*" >&2; }
die() { say "$*"; exit 125; }

cleanup() {
  [ -z "$machine" ] || kill "$machine" 2>/dev/null || true
  [ -z "$work" ] || rm -rf "$work"
}
trap cleanup EXIT
trap 'exit 130' INT
trap 'exit 143' TERM HUP

# pack FOLDER: its content as an archive that the kernel unpacks.
pack() { (cd "$1" && find . -mindepth 1 -print0 | cpio --null --quiet -o -H newc -R 0:0); }

# ---- What is made once -----------------------------------------------------------------------------------------------

# The archive that this system installs from.
mirror() { apt-get indextargets --format '$(CODENAME) $(REPO_URI)' 'Created-By: Packages' | sort -u | awk -v r=$release '$1 == r {print $2; exit}'; }

fetch_packages() {
  mkdir -p "$work"/apt/{lists/partial,archives/partial}
  : >"$work/apt/status"
  echo "deb [signed-by=$keys] $(mirror) $release main" >"$work/apt/sources.list"
  cat >"$work/apt/apt.conf" <<END
APT { Architecture "i386"; Architectures { "i386"; "amd64"; }; Install-Recommends "false"; Sandbox::User "root"; };
Dir { State "$work/apt"; State::status "$work/apt/status"; State::lists "$work/apt/lists"; Cache "$work/apt";
  Etc::sourcelist "$work/apt/sources.list"; Etc::sourceparts "-"; };
END
  export APT_CONFIG=$work/apt/apt.conf
  apt-get update -qq >&2
  apt-get install --download-only -y -qq "${packages[@]}" >&2
  unset APT_CONFIG
}

# add_builtin_zlib ROOT: what the script of the package libwine does and Wine's user32 does not start without: a copy of the
# zlib for Windows that bears, in bytes 64 to 95, the mark of Wine's own files.
add_builtin_zlib() {
  local in=$1/usr/i686-w64-mingw32/lib/zlib1.dll
  { head -c 64 "$in"; printf 'Wine builtin DLL'; head -c 16 /dev/zero; tail -c +97 "$in"; } \
    >"$1/usr/lib/i386-linux-gnu/wine/i386-windows/zlib1.dll"
}

# The packages are unpacked and no more: their scripts would need a processor that runs them.
make_root() {
  local root=$work/root package name
  mkdir -p "$root"/usr/{bin,sbin,lib}
  for name in bin sbin lib; do ln -s "usr/$name" "$root/$name"; done
  for package in "$work"/apt/archives/*.deb; do
    dpkg-deb --fsys-tarfile "$package" | tar -x -C "$root" --keep-directory-symlink --no-same-owner \
      --exclude=./usr/share/{doc,man,locale,info,perl5,xml} --exclude=./lib/{modules,udev} --exclude='./usr/lib/*/gconv' \
      --exclude='./usr/*x86_64-w64*' --exclude='./usr/lib/*/wine/x86_64-windows'
  done
  rm -rf "$work/apt"
  add_builtin_zlib "$root"
  mv "$root"/boot/vmlinuz-* "$work/made/vmlinuz"
  find "$root"/usr/lib/i386-linux-gnu/dri -type f ! -name swrast_dri.so -delete
  pack "$root" >"$work/made/root.cpio"
  rm -rf "$root"
}

setup() {
  [ ! -d "$cache" ] || return 0
  local tool
  for tool in qemu-system-x86_64:qemu-system-x86 cpio:cpio apt-get:apt; do
    command -v "${tool%:*}" >/dev/null || die "${tool%:*} is missing; it is in the package ${tool#*:}"
  done
  mkdir -p "$store"
  exec 8>"$store/lock"
  flock 8
  [ ! -d "$cache" ] || return 0
  say "making a machine with Wine in $cache; this happens once"
  work=$(mktemp -d "$store/new.XXXXXX")
  mkdir -p "$work"/{made,job/job}
  fetch_packages
  make_root
  log=$store/setup.log boot "$work/made" 1800 >/dev/null || die "Wine made no prefix; see $store/setup.log"
  gzip -t "$work/made/prefix.cpio.gz" || die "Wine's prefix came out broken"
  mv "$work/made" "$cache"
  rm -rf "$work"
  work=
  exec 8>&-
}

# ---- The machine -----------------------------------------------------------------------------------------------------

# boot MADE SECONDS: runs the machine on $work/job and prints its results, their marks turned to `== `. Returns the first
# bad status.
boot() {
  local made=$1 mark line result=125 bad=0 extra=()
  mark="@$RANDOM$RANDOM$RANDOM"
  mkdir -p "$work/job/job"
  echo "$mark" >"$work/job/job/mark"
  install -m 755 "$here/windows-vm-init.sh" "$work/job/init"
  pack "$work/job" >"$work/job.cpio"
  if [ -f "$made/prefix.cpio.gz" ]; then extra=("$made/prefix.cpio.gz"); fi
  cat "$made/root.cpio" "$work/job.cpio" "${extra[@]}" >"$work/initrd"
  local prefix=null
  [ ${#extra[@]} != 0 ] || prefix=file:$made/prefix.cpio.gz
  mkfifo "$work/results"
  timeout -k 5 "$2" qemu-system-x86_64 -accel tcg,thread=multi -cpu max,-smap -smp 2 -m 4096 -nodefaults -display none \
    -no-reboot -kernel "$made/vmlinuz" -initrd "$work/initrd" -append "console=ttyS0 quiet panic=-1 rdinit=/init" \
    -serial "file:${log:-$work/console}" -serial stdio -serial "$prefix" </dev/null >"$work/results" &
  machine=$!
  while IFS= read -r line; do
    case $line in
      "$mark done") result=0 ;;
      "$mark failed") bad=125 ;;
      "$mark exit "*) [ $bad != 0 ] || bad=${line##* }; [ -n "${alone:-}" ] || printf '== %s\n' "${line#"$mark "}" ;;
      "$mark "*) [ -n "${alone:-}" ] || printf '== %s\n' "${line#"$mark "}" ;;
      *) printf '%s\n' "$line" ;;
    esac
  done <"$work/results"
  local ended=0
  wait "$machine" || ended=$?
  machine=
  [ $result = 0 ] || { [ $ended = 124 ] && bad=124 || bad=125; say "the machine did not get through all"; tail -n 5 "${log:-$work/console}" >&2; }
  return $bad
}

run() {
  local depth=24 limit=900 words=() data=() alone='' log=''
  while [ $# -gt 1 ]; do
    case $1 in
      --depth) depth=$2 ;;
      --env) words+=("$2") ;;
      --data) data+=("$2") ;;
      --timeout) limit=$2 ;;
      --log) log=$2 ;;
      -*) usage ;;
      *) break ;;
    esac
    shift 2
  done
  [ $# -ge 2 ] || usage
  local folder=$1 files
  shift
  setup
  work=$(mktemp -d "$store/run.XXXXXX")
  files=$work/job/prefix/drive_c/velarto
  mkdir -p "$files" "$work/job/job"
  find "$folder" -maxdepth 1 -type f \( -iname '*.exe' -o -iname '*.dll' \) -exec cp -t "$files" {} +
  [ ${#data[@]} = 0 ] || cp -rL -t "$files" "${data[@]}"
  if [ "$1" = -- ]; then
    shift
    [ $# -gt 0 ] || usage
    alone=yes
    printf '%q ' "$@" >"$work/job/job/commands"
  else
    [ $# = 1 ] || usage
    grep -vE '^ *(#|$)' "$1" >"$work/job/job/commands" || die "$1 has no commands"
  fi
  printf '%q ' "depth=$depth" "${words[@]}" >"$work/job/job/words"
  echo $((limit - 10)) >"$work/job/job/deadline"
  boot "$cache" "$limit"
}

command=${1:-}
shift || usage
case $command in
  setup) [ $# = 0 ] || usage; setup ;;
  run) run "$@" ;;
  *) usage ;;
esac
