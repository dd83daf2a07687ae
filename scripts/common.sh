# SPDX-FileCopyrightText: Nightjar contributors
# SPDX-License-Identifier: Apache-2.0

# Shared by the scripts of this folder; read with ".", from the top folder of the sources.

build_packages="g++ cmake ninja-build libsimdjson-dev libicu-dev libcanberra-dev libdbus-1-dev libsqlite3-dev qt6-base-dev qt6-svg-dev"
# The outlines of the built-in map come through npm; Debian's brings much along, so it is for those who have none.
command -v npm >/dev/null 2>&1 || build_packages="$build_packages npm"
test_packages="libgtest-dev libgmock-dev dbus modemmanager python3 avahi-daemon iproute2 nftables"
tour_packages="xvfb openbox xdotool x11-utils imagemagick fonts-inter fonts-noto-color-emoji"
bench_packages="libbenchmark-dev dbus avahi-daemon iproute2 xvfb xauth"

# Ends with one sentence.
fail() {
    echo "$0: $*" >&2
    exit 1
}

as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    elif command -v sudo >/dev/null 2>&1; then
        sudo "$@"
    else
        fail "these packages are missing and there is no sudo to install them: $missing"
    fi
}

# Installs the Debian packages that are not there yet. Asking dpkg takes a hundredth of a second.
need_packages() {
    command -v dpkg-query >/dev/null 2>&1 || {
        echo "$0: this is no Debian system; expecting these to be installed by hand: $*" >&2
        return 0
    }
    missing=""
    for package in "$@"; do
        dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q "install ok installed" ||
            missing="$missing $package"
    done
    [ -n "$missing" ] || return 0
    echo "Installing:$missing" >&2
    as_root apt-get update -qq || fail "the package lists could not be fetched"
    # shellcheck disable=SC2086
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends $missing >&2 ||
        fail "these packages could not be installed:$missing"
}

# configure PRESET [cmake options]: only when the build folder has not been configured yet; ninja sees later changes.
configure() {
    preset=$1
    shift
    [ -f "build/$preset/build.ninja" ] && [ $# -eq 0 ] || cmake --preset "$preset" "$@" >"build/$preset.log" 2>&1 || {
        cat "build/$preset.log" >&2
        fail "the build could not be configured"
    }
}

# build PRESET [targets]: quiet unless something is wrong.
build() {
    preset=$1
    shift
    targets=""
    for target in "$@"; do targets="$targets --target $target"; done
    # shellcheck disable=SC2086
    cmake --build --preset "$preset" $targets >"build/$preset-build.log" 2>&1 || {
        grep -E "error|warning|FAILED|undefined" "build/$preset-build.log" | head -n 60 >&2
        fail "the build failed; everything it said is in build/$preset-build.log"
    }
    grep -h "The built-in map will show no land" "build/$preset-build.log" >&2 || true
}

mkdir -p build
