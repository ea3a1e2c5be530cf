#!/usr/bin/env bash
# Unpacks the 32-bit font library and what it needs in a folder. apt works on a separate state; this machine's packages don't
# change.
# usage: linux-i686-root.sh FOLDER
set -euo pipefail
folder=$1
[ ! -f "$folder/complete" ] || exit 0
state=$(mktemp -d)
trap 'rm -rf "$state"' EXIT
mkdir -p "$state/lists/partial" "$state/cache/archives/partial" "$state/parts" "$state/debs" "$folder"
cp /etc/apt/sources.list.d/debian.sources "$state/parts/" 2>/dev/null || cp /etc/apt/sources.list "$state/parts/debian.list"
: >"$state/status"
cat >"$state/apt.conf" <<END
APT::Architecture "i386";
APT::Architectures { "i386"; };
APT::Sandbox::User "root";
Dir::State "$state";
Dir::State::lists "$state/lists";
Dir::State::status "$state/status";
Dir::Cache "$state/cache";
Dir::Etc::SourceList "/dev/null";
Dir::Etc::SourceParts "$state/parts";
END
export APT_CONFIG=$state/apt.conf
apt-get update -qq || echo "some package lists can't be fetched; trying without them" >&2
(cd "$state/debs" && apt-get download -qq libfreetype6 libfreetype-dev libpng16-16 zlib1g libbrotli1)
for package in "$state"/debs/*.deb; do dpkg-deb -x "$package" "$folder"; done
touch "$folder/complete"
