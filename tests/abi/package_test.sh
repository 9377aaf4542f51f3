#!/usr/bin/env bash
# A user of the Debian package: makes it from the build, installs it into an empty root, uses the tool,
# the manual page, the completion, the libraries and the extension of SQLite there, and removes it.  With JMAP_LONG=1 it is the
# package of scripts/package.
#   package_test.sh BUILD_DIRECTORY SOURCE_DIRECTORY
set -euo pipefail

[ "$(id -u)" -eq 0 ] || { echo "dpkg installs for root only"; exit 77; }
place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT
cd "$place"
umask 002  # as many users have it; the package must not
if [ -n "${JMAP_LONG:-}" ]; then
    package=$("$2/scripts/package" | tail -1)
else
    cpack --config "$1/CPackConfig.cmake" -B made >log 2>&1 || { cat log; exit 1; }
    package=$(ls "$place"/made/*.deb)
fi

# What the package says of itself.
dpkg-deb --field "$package" Package Section Maintainer >fields
diff - fields <<'FIELDS'
Package: qvejmap
Section: utils
Maintainer: The qvejmap team
FIELDS
depends=$(dpkg-deb --field "$package" Depends)
for library in libc6 libicu libre2 libstdc++6 libzstd1 zlib1g; do
    [[ $depends == *"$library"* ]] || { echo "no $library in Depends: $depends"; exit 1; }
done
dpkg-deb --contents "$package" |
    awk '$1 ~ /^[^l]....w/ || $1 ~ /^[^l].......w/ || $2 != "root/root"' | diff /dev/null -

# There is no shell in the root, so the scripts of the package run outside of it, and no ldconfig of
# the machine may run for them.
mkdir bin
printf '#!/bin/sh\necho ldconfig >>"%s"\n' "$place/called" >bin/ldconfig
chmod +x bin/ldconfig
root=$place/root
admin=$root/var/lib/dpkg
mkdir -p "$admin/info" "$admin/updates"
touch "$admin/status"
inRoot() {
    PATH=$place/bin:$PATH dpkg --root="$root" --log="$place/dpkg.log" --force-script-chrootless "$@" \
        >log 2>&1 || { cat log; exit 1; }
}
inRoot --force-depends --install "$package"
diff - called <<<ldconfig
unset LD_LIBRARY_PATH MANPATH
export PATH=$root/usr/bin:$PATH

[ "$(command -v qvejmap)" = "$root/usr/bin/qvejmap" ]
qvejmap tables "$root/usr/share/qvejmap/examples/orders.json" --names >printed
diff - printed <<<$'orders\norders_customer\norders_items\norders_tags'

[ "$(man -M "$root/usr/share/man" -w qvejmap)" = "$root/usr/share/man/man1/qvejmap.1.gz" ]
bash --norc -c "source '$root/usr/share/bash-completion/completions/qvejmap'
    COMP_WORDS=(qvejmap conv) COMP_CWORD=1
    _qvejmap && echo \"\${COMPREPLY[@]}\"" >printed
diff - printed <<<convert
functions=$(dirname "$(find "$root/usr/share/zsh" -name _qvejmap)")
# shellcheck disable=SC2016  # zsh puts in its own values
zsh -fc "fpath=('$functions' \$fpath); autoload -U compinit; compinit -u -D
    echo \${_comps[qvejmap]}" >printed
diff - printed <<<_qvejmap
fish --no-config -c "source '$root/usr/share/fish/vendor_completions.d/qvejmap.fish'
    complete -C 'qvejmap conv'" | cut -f 1 >printed
diff - printed <<<convert

PKG_CONFIG_PATH=$(dirname "$(find "$root" -name qvejmap.pc)")
export PKG_CONFIG_PATH
# shellcheck disable=SC2046  # several words are meant
cc -std=c11 -Wall -Wextra -Werror "$root/usr/share/qvejmap/examples/rows.c" -o rows \
    $(pkg-config --cflags --libs qvejmap)
LD_LIBRARY_PATH=$(pkg-config --variable=libdir qvejmap) ./rows \
    "$(pkg-config --variable=moduledir qvejmap)" "$2/examples/orders.json" | head -3 >printed
diff - printed <<'ROWS'
orders
  ordinal_root | ordinal_orders | id | paid
  1 | 1 | 1001 | 1
ROWS

extension=$(find "$root" -name qvejmap_sqlite.so)
sqlite3 :memory: ".load '${extension%.so}'" \
    "SELECT qvejmap_attach('$root/usr/share/qvejmap/examples/orders.json')" \
    'SELECT sku FROM orders_items WHERE ordinal_orders = 2' >printed
diff - printed <<<$'4\nchair'

inRoot --purge qvejmap
find "$root" -mindepth 1 -not -path "$root/var*" | diff /dev/null -
