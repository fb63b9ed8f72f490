// The script that puts a new application in the place of the old one, once that has ended. It is
// the only thing that ever touches the installed application.
#pragma once

namespace wegslot {

// Either the target or the one with .oud after its name is whole at any moment, because both come
// to be by a rename. The new application is renamed before it is deleted for the same reason: run
// once more, the script must not find half of it.
inline constexpr auto swapScript = R"script(#!/bin/sh
# Puts a new Wegslot in the place of the old one and starts what is then there. May be run again
# whenever it was stopped. Usage: installer.sh PROCESS NEW TARGET
process=$1
new=$2
target=$3
fresh=$target.nieuw
backup=$target.oud
cd /
# The end of the session must not come in between.
trap '' HUP INT TERM

# By its program: the number may belong to another process by now.
while [ "$(readlink "/proc/$process/exe")" = "$target/wegslot" ]; do
    sleep 0.2
done

put_in_place() {
    # Made here and never filled where another stands; nothing is ever moved into a folder.
    rm -rf "$fresh" && mkdir -m 700 "$fresh" && cp -RPpT "$new" "$fresh" &&
        find "$fresh" -exec sync {} + || return
    if [ -e "$target" ]; then
        rm -rf "$backup" && mv -T "$target" "$backup" || return
    fi
    mv -T "$fresh" "$target"
}

if put_in_place; then
    rm -rf "$backup"
else
    rm -rf "$fresh"
    [ -e "$target" ] || mv -T "$backup" "$target"
fi
(
    trap - HUP INT TERM
    exec "$target/wegslot" < /dev/null > /dev/null 2>&1
) &
mv "$new" "$new.weg"
rm -rf "${new%/*}"
)script";

} // namespace wegslot
