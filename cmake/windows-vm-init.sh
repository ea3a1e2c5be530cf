#!/bin/busybox sh
# The first process of the machine that windows-vm.sh starts: what a kernel leaves to do, then the job.
# ttyS0 takes what goes wrong, ttyS1 the results, ttyS2 the made prefix.
busybox=/bin/busybox
for folder in /proc /sys /dev /tmp /run /prefix; do $busybox mkdir -p $folder; done
$busybox mount -t proc proc /proc
$busybox mount -t sysfs sysfs /sys
$busybox mount -t devtmpfs dev /dev
$busybox mkdir -p /dev/pts /dev/shm /tmp
$busybox mount -t devpts devpts /dev/pts
$busybox mount -t tmpfs shm /dev/shm
$busybox chmod 1777 /tmp /dev/shm
$busybox hostname velarto
for line in ttyS1 ttyS2; do $busybox stty -F /dev/$line raw; done
# Wine's copies in a new prefix need more room than the first file system offers, which is half of the memory.
[ -f /job/commands ] || $busybox mount -t tmpfs -o size=2500m prefix /prefix
$busybox sh /job/guest 3>/dev/ttyS1 >/dev/ttyS0 2>&1 </dev/null
[ -f /job/commands ] || (cd / && $busybox find prefix | $busybox cpio -o -H newc | $busybox gzip -1 >/dev/ttyS2)
$busybox cat /proc/uptime >/dev/ttyS0
$busybox sync
$busybox poweroff -f
