#!/usr/bin/env bash
# run.sh BINARIES: checks the collection with Ansible's own tools, its documentation, its modules, and its role on 50
# simulated machines (BINARIES: the folder with biosconfig, the module and FenrikCmd.exe). Needs ansible-core, ansible-lint,
# git, pycodestyle, python3-voluptuous and yamllint; no network.
# run.sh --measure BINARIES [MACHINES...]: instead, the times and the memory for so many machines (50 and 500).
set -euo pipefail
source_directory=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/../.." && pwd)
tests=$source_directory/Tests/Ansible
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# The system's programs and nobody's settings.
export PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin HOME=$work/home
export PYTHONDONTWRITEBYTECODE=yes LC_ALL=C.UTF-8
mkdir "$HOME"

# A copy as git and Ansible's tools want it: in the folder of its name, in a repository of its own.
copy_collection() {
    collection=$work/copy/ansible_collections/biosconfig/lab
    mkdir -p "$collection"
    (cd "$source_directory/Ansible" && git ls-files -coz --exclude-standard | xargs -0 cp --parents -t "$collection")
    # Wanted by the tools; the collection has no public one.
    echo "repository: https://example.com/biosconfig" >>"$collection/galaxy.yml"
    git -C "$collection" init -q
    git -C "$collection" add -A
    export ANSIBLE_COLLECTIONS_PATH=$work/copy ANSIBLE_HOME=$HOME/ansible
    cd "$collection"
}

# Of ansible-test those checks that fetch nothing, and three of the others as Debian has them. There the license is none
# of our affair: only Ansible's own modules must have theirs.
check_with_ansible() {
    local checks tools=/usr/lib/python3/dist-packages/ansible_test/_util/controller/sanity found
    checks=(compile empty-init future-import-boilerplate ignores line-endings metaclass-boilerplate
        no-assert no-basestring no-dict-iteritems no-dict-iterkeys no-dict-itervalues no-get-exception no-illegal-filenames
        no-main-display no-smart-quotes no-unicode-literals replace-urlopen shebang symlinks use-argspec-type-path
        use-compat-six)
    ansible-lint --offline -q --nocolor
    ansible-test sanity --color no "${checks[@]/#/--test=}" 2>&1 | grep -v locale
    PYTHONPATH=$tools/validate-modules:$work/copy python3 "$tools/validate-modules/validate.py" --arg \
        --collection ansible_collections/biosconfig/lab --collection-version 1.0.0 plugins/modules/*.py \
        >"$work/findings" || true
    found=$(grep -v missing-gplv3-license "$work/findings" || true)
    [[ ! $found ]] || { echo "$found" >&2; return 1; }
    [[ $(grep -c missing-gplv3-license "$work/findings") == "$(find plugins/modules -name '*.py' | wc -l)" ]]
    pycodestyle --max-line-length 160 --ignore E402,W503,W504 plugins "$tests"
    yamllint --strict -c "$tools/yamllint/config/default.yml" .
}

# Every plugin has documentation that ansible-doc shows.
check_documentation() {
    local module
    for module in plugins/modules/*.py; do
        module=$(basename "$module" .py)
        ansible-doc "biosconfig.lab.$module" >"$work/$module.txt"
        grep -q '^EXAMPLES:' "$work/$module.txt" && grep -q '^RETURN VALUES:' "$work/$module.txt"
    done
    for module in plugins/action/*.py; do [[ -f $work/$(basename "$module" .py).txt ]]; done
    cat "$work/bios_options.txt"
    ansible-doc -t role biosconfig.lab.baseline >"$work/role.txt"
    grep -q baseline_restart_tasks "$work/role.txt"
    ansible-galaxy collection build --output-path "$work" >/dev/null
    tar tzf "$work"/biosconfig-lab-*.tar.gz >"$work/files.txt"
    grep -qx roles/baseline/tasks/main.yml "$work/files.txt"
}

if [[ ${1-} == --measure ]]; then
    python3 "$tests/measure.py" "$(realpath "$2")" "$work" "${@:3}"
    exit
fi
binaries=$(realpath "$1")
[[ $("$binaries/biosconfig" --version) == "biosconfig $(sed -n 's/^version: //p' "$source_directory/Ansible/galaxy.yml")" ]]
copy_collection
check_with_ansible
check_documentation
for part in modules lab; do
    mkdir "$work/$part"
    python3 "$tests/check-$part.py" "$binaries" "$work/$part"
done
