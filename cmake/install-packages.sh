#!/usr/bin/env bash
# Installs what building and testing needs, and the packages given as arguments, as far as they are missing.
# For Debian 12, Ubuntu 24.04 and later; runs as root or through sudo and asks nothing.
set -euo pipefail

packages=(g++ cmake ninja-build libxml2-dev nlohmann-json3-dev libcli11-dev libcurl4-openssl-dev libgtest-dev
    libxml2-utils openssl python3-jsonschema "$@")

missing=()
for package in "${packages[@]}"; do
    state=$(dpkg-query --show --showformat='${db:Status-Status}' "$package" 2>/dev/null || true)
    [[ $state == installed ]] || missing+=("$package")
done
((${#missing[@]})) || exit 0

as_root=()
((EUID == 0)) || as_root=(sudo)
if ! "${as_root[@]}" true; then
    echo "Packages are missing, and only root can install them; sudo does not work here. Please have this done:" >&2
    echo "    apt-get update && apt-get install --no-install-recommends ${missing[*]}" >&2
    exit 1
fi
echo "Installing: ${missing[*]}" >&2
apt_get=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -o DPkg::Lock::Timeout=300)
"${apt_get[@]}" update
"${apt_get[@]}" -y install --no-install-recommends "${missing[@]}"
