# What the scripts share: where the tree is, and Debian packages on demand.
# Sourced by bash scripts; nothing here runs by itself.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"
jobs=${JOBS:-$(nproc)}

as_root() {
    if [ "$(id -u)" = 0 ]; then "$@"; else sudo "$@"; fi
}

# need_packages NAME...: installs those that are not on the machine.
need_packages() {
    local missing=()
    for package in "$@"; do
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return
    echo "Installing ${missing[*]}"
    as_root apt-get update -q >/dev/null
    as_root env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -q --no-install-recommends "${missing[@]}" >/dev/null
}

# The locale with a decimal comma under which the suite runs a second time.
need_comma_locale() {
    locale -a 2>/dev/null | grep -qi '^de_DE.utf-\?8$' && return
    need_packages locales
    as_root localedef -i de_DE -f UTF-8 de_DE.UTF-8
}

# build PRESET [TARGET...]: configures and builds; quiet unless it fails.
build() {
    local preset=$1 log
    shift
    log=$(mktemp)
    echo "Building $preset"
    if ! { cmake --preset "$preset" && cmake --build "build/$preset" -j "$jobs" ${@:+--target "$@"}; } >"$log" 2>&1; then
        grep -vE '^\[[0-9]+/[0-9]+\] ' "$log" | tail -60 >&2
        rm -f "$log"
        return 1
    fi
    rm -f "$log"
}

# run_suite PRESET [CTEST ARGUMENT...]: runs the tests of a build and makes sure
# that every test file of the tree was run.
run_suite() {
    local preset=$1
    shift
    census "$preset"
    ctest --test-dir "build/$preset" -j "$jobs" --output-on-failure --timeout 600 "$@"
}

# Every test file has a test of its name, so that none is left out unnoticed.
census() {
    local registered missing=0 stem file
    registered=$(ctest --test-dir "build/$1" -N | sed -n 's/^ *Test *#[0-9]*: //p')
    while read -r file; do
        stem=$(basename "$file" .cpp)
        if ! grep -qx "$stem" <<<"$registered"; then
            echo "census: $file has no test named $stem" >&2
            missing=1
        fi
    done < <(find tests -name '*_test.cpp')
    return $missing
}
