# The quick way to run 32-bit Windows programs: a root with 32-bit Wine, whose processes have their own mounts, process numbers and
# network. All of that goes with the first of them, however it ends. Used by windows-run.sh.

# enter COMMAND...: becomes that command, in namespaces of its own, as root there. Dies with this shell, and all in it dies with it.
enter() {
  local user=()
  [ "$(id -u)" = 0 ] || user=(--user --map-root-user)
  exec setpriv --pdeathsig KILL unshare "${user[@]}" --mount --pid --net --ipc --fork --kill-child "$@"
}

# Whether this machine can run 32-bit programs there. The program, 32 bits and 102 bytes, exits with the result of
# modify_ldt(0, null, 0): Wine needs that call, and not every kernel has it.
root_works() {
  local folder result=0
  folder=$(mktemp -d)
  mkdir "$folder/proc"
  printf '%b' '\0177ELF\01\01\01\0\0\0\0\0\0\0\0\0\02\0\03\0\01\0\0\0\0124\0200\04\010\064\0\0\0\0\0\0\0\0\0\0\0\064\0\040\0\01\0\0\0\0\0\0\0' \
    '\01\0\0\0\0\0\0\0\0\0200\04\010\0\0200\04\010\0146\0\0\0\0146\0\0\0\05\0\0\0\0\020\0\0' \
    '\0270\0173\0\0\0\061\0333\061\0322\0315\0200\0211\0303\061\0300\0100\0315\0200' >"$folder/program"
  chmod +x "$folder/program"
  (enter --mount-proc="$folder/proc" "$folder/program") 2>/dev/null || result=$?
  rm -rf "$folder"
  return $result
}

machine_make() {
  mv "$1" "$2/debian"
  mkdir "$2/prefix"
}

machine_whole() { [ -d "$1/prefix/drive_c/windows" ]; }

# start_guest MADE JOB: there, becomes the guest in the root. Besides devices, prefix and job, all that it writes to is in memory.
start_guest() {
  set -e
  local root=$1/debian device
  mount -t tmpfs -o mode=755 dev "$root/dev"
  for device in null zero full random urandom; do
    : >"$root/dev/$device"
    mount --bind "/dev/$device" "$root/dev/$device"
  done
  ln -s /proc/self/fd "$root/dev/fd"
  mkdir -m 1777 "$root/dev/shm"
  mount -t tmpfs -o mode=1777 tmp "$root/tmp"
  mount --bind "$2" "$root/job"
  mount --bind "$1/prefix" "$root/prefix"
  exec 3>&1 1>&2 env -i /usr/sbin/chroot "$root" /bin/busybox sh /job/guest
}

machine_exec() {
  export -f start_guest
  enter --mount-proc="$1/debian/proc" bash -c 'start_guest "$@"' bash "$1" "$2"
}
