#!/usr/bin/env bash
# Installs the missing Debian packages of the given groups: build, tests, check, lint, coverage, fuzz, bench, trial,
# package. Prints nothing if none is missing.
# Usage: scripts/setup.sh GROUP...
set -euo pipefail

build=(cmake ninja-build ccache g++ pkg-config libasound2-dev libjack-jackd2-dev libpipewire-0.3-dev libsndfile1-dev
    liblilv-dev lv2-dev liblo-dev libsystemd-dev nlohmann-json3-dev libfmt-dev libcli11-dev qt6-base-dev qt6-svg-dev
    libgl-dev libx11-dev)
tests=(googletest libgtest-dev libgmock-dev jackd2 pipewire pipewire-bin libspa-0.2-modules dbus-daemon at-spi2-core mda-lv2
    x42-plugins xvfb xauth x11-utils openbox xdotool fonts-dejavu-core)
check=(clang-format)
lint=(clang-tidy-16 cppcheck valgrind)
coverage=(gcovr)
fuzz=(clang-16 libclang-rt-16-dev)
bench=(sox libsox-fmt-base ffmpeg time jackd2 pipewire pipewire-bin libspa-0.2-modules mda-lv2 python3-numpy python3-scipy
    espeak-ng)
trial=(python3 guitarix-lv2 swh-lv2 lsp-plugins-lv2 calf-plugins zam-plugins dpf-plugins-lv2 eq10q x42-plugins mda-lv2)
package=(dpkg-dev file binutils xz-utils lintian appstream desktop-file-utils mandoc debootstrap)

fail() {
    echo "${0##*/}: $*" >&2
    exit 1
}

wanted=()
for group in "$@"; do
    case "$group" in
    build) wanted+=("${build[@]}") ;;
    tests) wanted+=("${tests[@]}") ;;
    check) wanted+=("${check[@]}") ;;
    lint) wanted+=("${lint[@]}") ;;
    coverage) wanted+=("${coverage[@]}") ;;
    fuzz) wanted+=("${fuzz[@]}") ;;
    bench) wanted+=("${bench[@]}") ;;
    trial) wanted+=("${trial[@]}") ;;
    package) wanted+=("${package[@]}") ;;
    *) fail "there is no package group \"$group\"; the groups are build, tests, check, lint, coverage, fuzz, bench, trial and package." ;;
    esac
done

if ! command -v dpkg-query >/dev/null; then
    fail "packages can only be installed on Debian; install what your system has for these and build with cmake: ${wanted[*]}"
fi

# dpkg-query reports unknown names as errors; like unlisted ones, they are missing.
installed=$(dpkg-query -W -f '${Package} ${db:Status-Status}\n' "${wanted[@]}" 2>/dev/null || true)
missing=()
for package in "${wanted[@]}"; do
    grep -qFx "$package installed" <<<"$installed" || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

as_root=(env DEBIAN_FRONTEND=noninteractive)
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null ||
        fail "these packages are missing and only root can install them: ${missing[*]}"
    as_root=(sudo "${as_root[@]}")
fi

echo "Installing ${missing[*]}" >&2
apt=("${as_root[@]}" apt-get -qq -o DPkg::Lock::Timeout=120)
{ "${apt[@]}" update && "${apt[@]}" install -y --no-install-recommends "${missing[@]}"; } </dev/null >&2 ||
    fail "these packages could not be installed: ${missing[*]}"
