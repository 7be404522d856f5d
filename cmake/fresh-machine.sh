#!/usr/bin/env bash
# fresh-machine.sh [SUITE] [root|user|both]: what a newcomer sees whose machine has Debian's base system (SUITE, by
# default bookworm), this checkout and nothing else. Has demo.sh and test.sh run in a chroot: as root, as an ordinary
# user with sudo, or as both (the default), each on a machine of its own. Packages come from where this machine's apt
# gets them. The machines lie under build/fresh-machine and are gone in the end. Where making one is not allowed, a line
# says so and nothing has failed.
set -euo pipefail
cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.."
. cmake/phases.sh

place=$PWD/build/fresh-machine
home=/home/newcomer

skip() {
    echo "Skipped, a fresh machine cannot be made here: $1"
    exit 0
}

# check_rights: does once what the machines need.
check_rights() {
    mkdir -p "$place"
    mknod "$place/null" c 1 3 2>/dev/null && : 2>/dev/null >"$place/null" || skip "device files are not allowed"
    unshare --mount --pid --fork --mount-proc true 2>/dev/null || skip "namespaces and mounts are not allowed"
    local code=0
    chroot "$place" /true 2>/dev/null || code=$?
    ((code == 127)) || skip "chroot is not allowed" # 127: it is, and there is no such program
}

# find_sources: sets `mirror`, and `sources` to the lines for the machine's apt, made from what this machine's apt uses.
find_sources() {
    local base='' uri release component
    local codename targets
    codename=$(. /etc/os-release && echo "${VERSION_CODENAME-}")
    targets=$(apt-get indextargets --format '$(REPO_URI) $(RELEASE) $(COMPONENT)' 'Created-By: Packages')
    mirror='' sources=''
    while read -r uri release component; do
        if [[ ! $mirror && $component == main && $release =~ ^($codename|stable|testing|unstable|sid)$ ]]; then
            mirror=$uri base=$release
        fi
    done <<<"$targets"
    [[ $mirror ]] || { echo "apt's sources name no mirror of the whole distribution" >&2; return 1; }
    while read -r uri release component; do
        case "$uri $release" in
        "$mirror $base") sources+="deb $uri $suite $component"$'\n' ;;
        *" $base-updates" | *" $base-security")
            [[ $suite =~ ^(sid|unstable)$ ]] || sources+="deb $uri $suite${release#"$base"} $component"$'\n'
            ;;
        esac
    done <<<"$targets"
}

# The keyrings that this machine's apt trusts.
keyrings() {
    local files
    files=$(grep -rhoiE 'signed-by[:=] */[^] ]+' /etc/apt/sources.list /etc/apt/sources.list.d 2>/dev/null |
        sed 's/^[^/]*//') || true
    find /etc/apt/trusted.gpg.d /usr/share/keyrings/{debian,ubuntu}-archive-keyring.gpg $files \
        -type f \( -name '*.gpg' -o -name '*.asc' \) 2>/dev/null | sort -u
}

# What this machine's apt needs to reach its mirror.
apt_settings() {
    apt-config dump | grep -E '^Acquire::(https?|Check-Valid-Until|Check-Date|Retries|ForceIPv[46]|Languages)\b' |
        grep -v 'Auto-\?Detect' || true
    [[ ! ${http_proxy-} ]] || echo "Acquire::http::Proxy \"$http_proxy\";"
    [[ ! ${https_proxy-} ]] || echo "Acquire::https::Proxy \"$https_proxy\";"
}

# make_machine: the base system, in $place/base.
make_machine() {
    local machine=$place/base mirror sources proxies files
    find_sources
    proxies=$(apt-config shell http_proxy Acquire::http::Proxy https_proxy Acquire::https::Proxy)
    [[ $proxies == *DIRECT* ]] || eval "$proxies"
    export http_proxy https_proxy
    readarray -t files < <(keyrings)
    printf '%s\n' "${files[@]}" | grep '\.gpg$' | xargs cat >"$place/keyring.gpg"

    # Nothing of it is to survive a power cut, so dpkg need not wait for the disk.
    mkdir -p "$machine/etc/dpkg/dpkg.cfg.d"
    echo force-unsafe-io >"$machine/etc/dpkg/dpkg.cfg.d/fresh-machine"
    debootstrap --variant=minbase --keyring="$place/keyring.gpg" "$suite" "$machine" "$mirror"

    printf '%s' "$sources" >"$machine/etc/apt/sources.list"
    apt_settings >"$machine/etc/apt/apt.conf.d/90fresh-machine"
    cp "${files[@]}" "$machine/etc/apt/trusted.gpg.d/"
    cp -L /etc/hosts /etc/resolv.conf "$machine/etc/"
    if [[ $sources == *https:* && -f /etc/ssl/certs/ca-certificates.crt ]]; then
        mkdir -p "$machine/etc/ssl/certs"
        cp -L /etc/ssl/certs/ca-certificates.crt "$machine/etc/ssl/certs/"
    fi
}

# prepare WHO: a machine of its own for `root` or `user`, with the checkout.
prepare() {
    local machine=$place/$1
    cp -a --reflink=auto "$place/base" "$machine"
    mount -t proc proc "$machine/proc"
    mount -t tmpfs -o mode=1777 tmpfs "$machine/dev/shm"
    mount -t devpts -o newinstance,ptmxmode=0666,gid=5,mode=0620 devpts "$machine/dev/pts"
    chroot "$machine" useradd --home-dir "$home" --create-home newcomer
    mkdir "$machine$home/checkout"
    git ls-files -z | tar --null --files-from=- --ignore-failed-read -c |
        tar -x --no-same-owner -C "$machine$home/checkout"
    [[ $1 == user ]] || return 0
    chroot "$machine" chown -R newcomer: "$home/checkout"
    chroot "$machine" sh -c 'apt-get -q update && apt-get -qy install --no-install-recommends sudo'
    echo 'newcomer ALL=(ALL:ALL) NOPASSWD: ALL' >"$machine/etc/sudoers.d/newcomer"
}

# run_as WHO SCRIPT: with the environment of somebody who has just logged in. The logs of a failure are kept.
run_as() {
    local machine=$place/$1 name=root code=0
    [[ $1 == root ]] || name=newcomer
    chroot --userspec="$name:$name" "$machine" env -i "HOME=$home" "USER=$name" LANG=C.UTF-8 \
        PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin "$home/checkout/$2" || code=$?
    ((code == 0)) || cp -R "$machine$home/checkout/build/logs/." "$logs/$suite-$1/" || true
    return "$code"
}

# run_scripts WHO...
run_scripts() {
    local who script
    phase "Making a machine with $suite" make_machine
    for who in "$@"; do
        phase "Preparing it for $who" prepare "$who"
        for script in demo.sh test.sh; do phase "$script on $suite as $who" run_as "$who" "$script"; done
        grep 'tests passed' "$logs/test.sh-on-$suite-as-$who.log"
    done
}

# clean_up: ends what still runs in the namespaces; their mounts go with it.
clean_up() {
    [[ ! ${inside-} ]] || { kill -KILL "$inside" 2>/dev/null && wait "$inside"; } 2>/dev/null || true
    rm -rf --one-file-system "$place" 2>/dev/null || { sleep 2 && rm -rf --one-file-system "$place"; }
}

suite=${1:-bookworm}
case ${2:-both} in
root | user) whos=("$2") ;;
both) whos=(root user) ;;
*) whos=() ;;
esac
if [[ ! $suite =~ ^[a-z]+$ ]] || ((${#whos[@]} == 0)); then
    echo "usage: $0 [SUITE] [root|user|both]" >&2
    exit 2
fi
if [[ ${FRESH_MACHINE_INSIDE-} ]]; then
    run_scripts "${whos[@]}"
    exit
fi

((EUID == 0)) || skip "that takes root"
mkdir -p build
exec 9>build/fresh-machine.lock
flock --nonblock 9 || { echo "Another run makes its machines here" >&2; exit 1; }
trap clean_up EXIT
trap 'exit 130' INT
trap 'exit 143' TERM HUP
rm -rf --one-file-system "$place" # what is left of a run that was killed
check_rights
phase "Installing debootstrap" cmake/install-packages.sh debootstrap debian-archive-keyring </dev/null
# In namespaces of its own, so that nothing runs and nothing is mounted any more once this script has ended.
FRESH_MACHINE_INSIDE=yes setpriv --pdeathsig KILL \
    unshare --mount --propagation private --pid --fork --kill-child --mount-proc \
    "$PWD/cmake/fresh-machine.sh" "$suite" "${2:-both}" &
inside=$!
wait "$inside"
