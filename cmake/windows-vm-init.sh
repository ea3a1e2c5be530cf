#!/bin/busybox sh
# The first process of the machine that windows-vm.sh starts: makes Wine's prefix, or runs the programs of /job/commands.
# ttyS0 takes what goes wrong, ttyS1 the results, ttyS2 the made prefix.
busybox=/bin/busybox
for folder in /proc /sys /dev /tmp /run /applets /prefix; do $busybox mkdir -p $folder; done
$busybox mount -t proc proc /proc
$busybox mount -t sysfs sysfs /sys
$busybox mount -t devtmpfs dev /dev
$busybox --install -s /applets
export PATH=/applets:/usr/bin HOME=/root LANG=C.UTF-8 TMPDIR=/tmp
export WINEPREFIX=/prefix WINEARCH=win32 WINEDEBUG=-all WINEDLLOVERRIDES='mscoree,mshtml='
export LIBGL_ALWAYS_SOFTWARE=1 GALLIUM_DRIVER=softpipe
exec >/dev/ttyS0 2>&1 </dev/null
mkdir -p /dev/pts /dev/shm /tmp/.X11-unix /root
mount -t devpts devpts /dev/pts
mount -t tmpfs shm /dev/shm
chmod 1777 /tmp /tmp/.X11-unix /dev/shm
[ -e /bin/sh ] || ln -s busybox /bin/sh
[ -e /etc/passwd ] || echo 'root:x:0:0:root:/root:/bin/sh' >/etc/passwd
hostname velarto
ifconfig lo up
for line in ttyS1 ttyS2; do [ -c /dev/$line ] && stty -F /dev/$line raw; done

wine=/usr/lib/wine/wine
wineserver=/usr/lib/wine/wineserver32
reply() { printf '%s\n' "$mark $*" >/dev/ttyS1; }

# screen DEPTH: a desktop of that depth; windows of another depth go.
screen() {
  [ "$1" = "$depth" ] && return
  if [ -n "$depth" ]; then
    $wineserver -k
    kill "$server"
    wait "$server"
  fi
  depth=$1
  rm -f /tmp/ready
  mkfifo /tmp/ready
  Xvfb -screen 0 1280x1024x"$depth" -nolisten tcp -displayfd 9 9>/tmp/ready &
  server=$!
  read -r number </tmp/ready
  export DISPLAY=:$number
  # On 8 bits Wine draws in colours of its own choice, unless it leaves the drawing to the X server.
  [ "$depth" = 8 ] && $wine reg add 'HKCU\Software\Wine\X11 Driver' /v ClientSideGraphics /d N /f >/dev/null 2>&1
  return 0
}

# The copies that Wine puts into a prefix become links to what they were copied from: the prefix stays small.
make_prefix() {
  # Wine's copies need more room than the first file system offers, which is half of the memory.
  mount -t tmpfs -o size=2500m prefix /prefix
  screen 24
  timeout -s KILL 1500 $wine wineboot -u || reply failed
  $wineserver -w
  for file in $(find /prefix/drive_c/windows -type f); do
    original=/usr/lib/i386-linux-gnu/wine/i386-windows/${file##*/}
    cmp -s "$file" "$original" && ln -sf "$original" "$file"
  done
  find /prefix | cpio -o -H newc | gzip -1 >/dev/ttyS2
  reply done
}

# run_command [depth=N] [timeout=N] [NAME=VALUE]... PROGRAM ARGUMENT...
run_command() (
  while :; do
    case $1 in
      depth=*|timeout=*) ;;
      *=*) export "$1" ;;
      *) break ;;
    esac
    shift
  done
  cd /prefix/drive_c/velarto || exit 125
  [ -f "$1" ] && { program=./$1; shift; set -- "$program" "$@"; }
  exec timeout -s KILL "$limit" $wine "$@"
)

uptime() { cut -d. -f1 /proc/uptime; }

run_all() {
  while IFS= read -r line <&7 || [ -n "$line" ]; do
    left=$(($(cat /job/deadline) - $(uptime)))
    wanted=24 limit=$left
    eval "set -- $(cat /job/words) $line"
    for word in "$@"; do
      case $word in
        depth=*) wanted=${word#*=} ;;
        timeout=*) limit=${word#*=} ;;
        *=*) ;;
        *) break ;;
      esac
    done
    screen "$wanted"
    reply command "$line"
    [ "$limit" -lt "$left" ] || limit=$left
    [ "$limit" -gt 0 ] || limit=1
    begun=$(uptime)
    run_command "$@" >/tmp/output 2>&1
    status=$?
    sed 's/\r$//' /tmp/output >/dev/ttyS1
    [ -z "$(tail -c 1 /tmp/output)" ] || echo >/dev/ttyS1
    if [ $(($(uptime) - begun)) -ge "$limit" ]; then
      status=124
      $wineserver -k
    fi
    reply exit $status
  done 7</job/commands
  reply done
}

mark=$(cat /job/mark)
depth=
if [ -f /job/commands ]; then run_all; else make_prefix; fi
cat /proc/uptime
sync
poweroff -f
