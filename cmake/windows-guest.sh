#!/bin/busybox sh
# What the machine of windows-run.sh does: makes Wine's prefix in /prefix, or runs the programs of /job/commands, two at a time. Results go
# to descriptor 3.
/bin/busybox mkdir -p /tmp/applets
/bin/busybox --install -s /tmp/applets
export PATH=/tmp/applets:/usr/bin HOME=/tmp/root LANG=C.UTF-8 TMPDIR=/tmp
export WINEPREFIX=/prefix WINEARCH=win32 WINEDEBUG=-all WINEDLLOVERRIDES='mscoree,mshtml='
# Mesa's quicker renderer, llvmpipe, generates code: it crashes under emulation, and small pictures take it longer.
export LIBGL_ALWAYS_SOFTWARE=1 GALLIUM_DRIVER=softpipe
mkdir -p /tmp/.X11-unix /tmp/results $HOME
chmod 1777 /tmp/.X11-unix
ifconfig lo up

wine=/usr/lib/wine/wine
wineserver=/usr/lib/wine/wineserver32
mark=$(cat /job/mark)
depth=
server=
reply() { printf '%s\n' "$mark $*" >&3; }
uptime() { cut -d. -f1 /proc/uptime; }

# screen DEPTH: a screen of that depth.
screen() {
  [ -z "$server" ] || { kill "$server"; wait "$server"; }
  depth=$1
  ready=$(mktemp -u)
  mkfifo "$ready"
  Xvfb -screen 0 1280x1024x"$depth" -nolisten tcp -displayfd 9 9>"$ready" &
  server=$!
  read -r number <"$ready"
  export DISPLAY=:$number
}

# set_x11 NAME VALUE: how Wine uses the X server. Goes to the registry's file, while no Wine runs on the prefix.
set_x11() { printf '\n[Software\\\\Wine\\\\X11 Driver]\n"%s"="%s"\n' "$1" "$2" >>"$WINEPREFIX/user.reg"; }

# The copies that Wine puts into a prefix become links to what they were copied from: the prefix stays small.
make_prefix() {
  screen 24
  timeout -s KILL 1500 $wine wineboot -u || { echo "wineboot ends with $?"; reply failed; }
  $wineserver -w
  # Else Wine waits two seconds for a window manager whenever a window is hidden; there is none.
  set_x11 Managed N
  find /prefix/drive_c/windows -type f >/tmp/copies
  while read -r file; do
    original=/usr/lib/i386-linux-gnu/wine/i386-windows/${file##*/}
    cmp -s "$file" "$original" && ln -sf "$original" "$file"
  done </tmp/copies
  reply done
}

# desktop DEPTH: a screen of that depth with a new prefix, for Wine can't change the depth of one.
desktop() {
  [ "$1" != "$depth" ] || return
  [ -z "$depth" ] || { $wineserver -k; $wineserver -w; }
  screen "$1"
  rm -rf "$WINEPREFIX"
  cp -a /prefix "$WINEPREFIX"
  cp -a /job/files "$WINEPREFIX/drive_c/velarto"
  # On 8 bits Wine draws in colours of its own choice, unless it leaves the drawing to the X server.
  [ "$depth" != 8 ] || set_x11 ClientSideGraphics N
}

# run_command [depth=N] [timeout=SECONDS] [NAME=VALUE]... PROGRAM ARGUMENT...
run_command() (
  limit=$((deadline - $(uptime)))
  while :; do
    case $1 in
      depth=*) ;;
      timeout=*) [ "${1#*=}" -ge "$limit" ] || limit=${1#*=} ;;
      *=*) export "$1" ;;
      *) break ;;
    esac
    shift
  done
  cd "$WINEPREFIX/drive_c/velarto" || exit 125
  [ -f "$1" ] && { program=./$1; shift; set -- "$program" "$@"; }
  [ "$limit" -gt 0 ] || limit=1
  begun=$(uptime)
  timeout -s KILL "$limit" $wine "$@"
  status=$?
  [ $(($(uptime) - begun)) -lt "$limit" ] && exit $status
  $wineserver -k
  exit 124
)

wanted_depth() {
  wanted=24
  for word in "$@"; do
    case $word in
      depth=*) wanted=${word#*=} ;;
      *=*) ;;
      *) break ;;
    esac
  done
  echo "$wanted"
}

# worker NUMBER: runs each command that the other worker has not taken, and leaves its output and status in /tmp/results.
worker() {
  export WINEPREFIX=/tmp/prefix-$1
  at=0
  while IFS= read -r line <&7 || [ -n "$line" ]; do
    at=$((at + 1))
    mkdir "/tmp/results/$at" 2>/dev/null || continue
    eval "set -- $(cat /job/words) $line"
    desktop "$(wanted_depth "$@")"
    run_command "$@" >"/tmp/results/$at/output" 2>&1
    echo $? >"/tmp/results/$at/exit"
    mv "/tmp/results/$at/exit" "/tmp/results/$at/status"
  done 7</job/commands
}

# The results in the order of the commands, each when it is there.
run_all() {
  deadline=$(($(cat /job/deadline) + $(uptime)))
  for number in 1 2; do worker $number 3>&- & done
  at=0
  while IFS= read -r line <&7 || [ -n "$line" ]; do
    at=$((at + 1))
    result=/tmp/results/$at
    reply command "$line"
    until [ -f $result/status ]; do sleep 0.2; done
    sed 's/\r$//' $result/output >&3
    [ -z "$(tail -c 1 $result/output)" ] || echo >&3
    reply exit "$(cat $result/status)"
    rm $result/output
  done 7</job/commands
  reply done
}

if [ -f /job/commands ]; then run_all; else make_prefix; fi
