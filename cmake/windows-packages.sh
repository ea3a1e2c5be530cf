# The packages of 32-bit Wine and its screens, fetched by an apt of their own state and unpacked in a folder. Needs no rights and runs none of
# them. Used by windows-run.sh.
release=bookworm
keys=/usr/share/keyrings/debian-archive-keyring.gpg
packages=(wine wine32 libgl1 libgl1-mesa-dri libglx-mesa0 xvfb x11-xkb-utils busybox-static fonts-liberation fonts-wine
  libxcomposite1 libxcursor1 libxfixes3 libxi6 libxinerama1 libxrandr2 libxrender1 libxxf86vm1)

# The archive that this system installs from.
mirror() { apt-get indextargets --format '$(CODENAME) $(REPO_URI)' 'Created-By: Packages' | sort -u | awk -v r=$release '$1 == r {print $2; exit}'; }

# fetch_packages STATE: those, and what they depend on, go to STATE/archives.
fetch_packages() {
  local state=$1
  command -v apt-get >/dev/null || die "apt-get is missing, which fetches Wine"
  mkdir -p "$state"/{lists/partial,archives/partial}
  : >"$state/status"
  echo "deb [signed-by=$keys] $(mirror) $release main" >"$state/sources.list"
  cat >"$state/apt.conf" <<END
APT { Architecture "i386"; Architectures { "i386"; "amd64"; }; Install-Recommends "false"; Sandbox::User "root"; };
Dir { State "$state"; State::status "$state/status"; State::lists "$state/lists"; Cache "$state";
  Etc::sourcelist "$state/sources.list"; Etc::sourceparts "-"; };
END
  APT_CONFIG=$state/apt.conf apt-get update -qq >&2
  APT_CONFIG=$state/apt.conf apt-get install --download-only -y -qq "${packages[@]}" >&2
}

# add_builtin_zlib ROOT: what the script of the package libwine does and Wine's user32 does not start without: a copy of the
# zlib for Windows that bears, in bytes 64 to 95, the mark of Wine's own files.
add_builtin_zlib() {
  local in=$1/usr/i686-w64-mingw32/lib/zlib1.dll
  { head -c 64 "$in"; printf 'Wine builtin DLL'; head -c 16 /dev/zero; tail -c +97 "$in"; } \
    >"$1/usr/lib/i386-linux-gnu/wine/i386-windows/zlib1.dll"
}

# unpack_packages STATE ROOT: moves them from STATE/archives to a root. Their scripts don't run: the emulated PC is made where nothing could
# run them.
unpack_packages() {
  local root=$2 package name
  mkdir -p "$root"/{usr/{bin,sbin,lib},etc,proc,dev,tmp,job,prefix}
  for name in bin sbin lib; do ln -s "usr/$name" "$root/$name"; done
  for package in "$1"/archives/*.deb; do
    dpkg-deb --fsys-tarfile "$package" | tar -x -C "$root" --keep-directory-symlink --no-same-owner \
      --exclude=./usr/share/{doc,man,locale,info,perl5,xml} --exclude=./lib/{modules,udev} --exclude='./usr/lib/*/gconv' \
      --exclude='./usr/*x86_64-w64*' --exclude='./usr/lib/*/wine/x86_64-windows'
  done
  rm -rf "$1"
  find "$root"/usr/lib/i386-linux-gnu/dri -type f ! -name swrast_dri.so -delete
  add_builtin_zlib "$root"
  [ -e "$root/bin/sh" ] || ln -s busybox "$root/bin/sh"
  echo 'root:x:0:0:root:/root:/bin/sh' >"$root/etc/passwd"
}
