#!/usr/bin/env bash
# Builds the Debian package into build/package/ and checks it; prints its path.
# Usage: scripts/package.sh
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh build package
desktop-file-validate packaging/*.desktop
appstreamcli validate --no-net packaging/*.metainfo.xml >&2
for page in packaging/man/*.1; do mandoc -T lint -W warning "$page" >&2; done

scripts/build.sh package
rm -f build/package/*.deb
# Packaged files need Debian's modes, whatever the umask of this user.
(umask 022 && cd build/package && cpack >cpack.log 2>&1) || {
    cat build/package/cpack.log >&2
    exit 1
}
package=$(echo build/package/*.deb)
lintian --fail-on error,warning "$package" >&2

# The stripped programs must still be hardened.
unpacked=$(mktemp -d)
trap 'rm -rf "$unpacked"' EXIT
dpkg-deb --extract "$package" "$unpacked"
for program in "$unpacked"/usr/bin/*; do
    kind=$(LC_ALL=C readelf --wide --file-header --dynamic --program-headers "$program")
    for property in "DYN (Position-Independent" GNU_RELRO "Flags: NOW PIE"; do
        grep -qF "$property" <<<"$kind" && continue
        echo "${program##*/} is without \"$property\"." >&2
        exit 1
    done
    if readelf --section-headers "$program" | grep -qF .symtab; then
        echo "${program##*/} is not stripped." >&2
        exit 1
    fi
done
echo "$package"
