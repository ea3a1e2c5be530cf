#!/usr/bin/env bash
# Runs 32-bit Windows programs under Wine, on virtual screens: in a 32-bit root at the machine's own speed (windows-root.sh) where the
# machine allows that, else in an emulated PC (windows-vm.sh). Both have the same packages and give the same output.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
work=
child=

usage() {
  cat >&2 <<'END'
usage: windows-run.sh which
       windows-run.sh setup
       windows-run.sh run [OPTION]... FOLDER -- PROGRAM ARGUMENT...
       windows-run.sh run [OPTION]... FOLDER COMMANDS
  which tells what this machine uses: root or vm. VELARTO_WINDOWS, set to one of them, decides.
  setup makes it, once; run does that too. It is kept in the user's cache folder.
  FOLDER's *.exe and *.dll go to C:\velarto, and programs run there. Relays the program's output and ends with its status.
  COMMANDS is a file; each line, in a shell's words: [depth=N] [timeout=SECONDS] [NAME=VALUE]... PROGRAM ARGUMENT...
  Their results come between `== command LINE` and `== exit N`; the status is that of the first that failed.
  --depth 24|16|8     the screen's bits per pixel (24)
  --env NAME=VALUE    a variable for every program
  --data FILE         a file or folder that goes to C:\velarto too
  --timeout SECONDS   for all of it (900)
  --log FILE          keeps what the machine itself says
  Status 124: a program, or all of it, took too long. Status 125: the machine failed.
END
  exit 2
}

say() { printf 'windows: %s\n' "$*" >&2; }
die() { say "$*"; exit 125; }

# Ends the machine and all that runs in it: both kinds end whole with the process that was started.
cleanup() {
  [ -z "$child" ] || { kill -KILL "$child" && wait "$child"; } 2>/dev/null || true
  [ -z "$work" ] || rm -rf "$work"
}
trap cleanup EXIT
trap 'exit 130' INT
trap 'exit 143' TERM HUP

# choose: loads the kind of machine to be used. It sets `kind` and brings
#   packages                 what it needs in its root, besides the packages of windows-packages.sh
#   machine_make ROOT MADE   keeps in MADE what it needs of the unpacked packages in ROOT
#   machine_exec MADE JOB    becomes the machine: runs the job, results on standard output, trouble on standard error
#   machine_whole MADE       whether it has made its prefix
choose() {
  kind=${VELARTO_WINDOWS:-}
  . "$here/windows-packages.sh"
  . "$here/windows-root.sh"
  [ -n "$kind" ] || { root_works && kind=root || kind=vm; }
  case $kind in
    root) ;;
    vm) . "$here/windows-vm.sh" ;;
    *) die "VELARTO_WINDOWS is neither root nor vm" ;;
  esac
  store=${XDG_CACHE_HOME:-$HOME/.cache}/velarto/windows-$kind
  # Another number when what is made here changes otherwise than by its packages.
  cache=$store/2-$(printf '%s\n' "${packages[@]}" | cksum | cut -d ' ' -f 1)
}

setup() {
  mkdir -p "$store"
  [ ! -d "$cache" ] || touch "$cache"
  find "$store" -mindepth 1 -maxdepth 1 \( -name 'run.*' -mtime +1 -o -name 'new.*' -mtime +1 -o -type d -mtime +30 \) -exec rm -rf {} +
  [ ! -d "$cache" ] || return 0
  exec 8>"$store/lock"
  flock 8
  [ ! -d "$cache" ] || return 0
  say "making a $kind with Wine in $cache; this happens once"
  work=$(mktemp -d "$store/new.XXXXXX")
  mkdir -p "$work/job" "$work/made"
  fetch_packages "$work/apt"
  unpack_packages "$work/apt" "$work/root"
  machine_make "$work/root" "$work/made"
  { log=$store/setup.log boot "$work/made" 1800 >/dev/null && machine_whole "$work/made"; } ||
    die "Wine made no prefix; see $store/setup.log"
  mv "$work/made" "$cache"
  rm -rf "$work"
  work=
  exec 8>&-
}

# boot MADE SECONDS: runs the machine on $work/job and prints its results, their marks turned to `== `. Returns the first
# bad status.
boot() {
  local made=$1 limit=$2 line result=125 bad=0 start=$SECONDS ended=0
  local mark="@$RANDOM$RANDOM$RANDOM" console=${log:-$work/console}
  echo "$mark" >"$work/job/mark"
  cp "$here/windows-guest.sh" "$work/job/guest"
  : >"$console"
  mkfifo "$work/results"
  (machine_exec "$made" "$work/job") </dev/null >"$work/results" 2>>"$console" &
  child=$!
  exec 7<"$work/results"
  while [ $((SECONDS - start)) -lt "$limit" ]; do
    IFS= read -r -t $((limit - SECONDS + start)) line <&7 || { ended=$?; break; }
    case $line in
      "$mark done") result=0 ;;
      "$mark failed") bad=125 ;;
      "$mark exit "*) [ $bad != 0 ] || bad=${line##* }; [ -n "${alone:-}" ] || printf '== %s\n' "${line#"$mark "}" ;;
      "$mark "*) [ -n "${alone:-}" ] || printf '== %s\n' "${line#"$mark "}" ;;
      *) printf '%s\n' "$line" ;;
    esac
  done
  exec 7<&-
  # Above 128, the read has taken too long.
  [ $((SECONDS - start)) -lt "$limit" ] && [ $ended -lt 128 ] || { result=124; kill -KILL "$child"; }
  wait "$child" 2>/dev/null || true
  child=
  rm -f "$work/results"
  [ $result = 0 ] && return $bad
  say "not all of it was run"
  tail -n 5 "$console" >&2
  return $result
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
  files=$work/job/files
  mkdir -p "$files"
  find "$folder" -maxdepth 1 -type f \( -iname '*.exe' -o -iname '*.dll' \) -exec cp -t "$files" {} +
  [ ${#data[@]} = 0 ] || cp -rL -t "$files" "${data[@]}"
  if [ "$1" = -- ]; then
    shift
    [ $# -gt 0 ] || usage
    alone=yes
    printf '%q ' "$@" >"$work/job/commands"
  else
    [ $# = 1 ] || usage
    grep -vE '^ *(#|$)' "$1" >"$work/job/commands" || die "$1 has no commands"
  fi
  printf '%q ' "depth=$depth" "${words[@]}" >"$work/job/words"
  echo $((limit - 10)) >"$work/job/deadline"
  boot "$cache" "$limit"
}

command=${1:-}
shift || usage
case $command in
  which) [ $# = 0 ] || usage; choose; echo "$kind" ;;
  setup) [ $# = 0 ] || usage; choose; setup ;;
  run) choose; run "$@" ;;
  *) usage ;;
esac
