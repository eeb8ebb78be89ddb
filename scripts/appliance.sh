# shellcheck shell=bash disable=SC2034,SC2154 # its variables are shared with the scripts that source it
# What demo and serve have in common, to be sourced: an appliance with updates to fetch, and the server.
# Everything stands below the directory $appliance, which the caller names; the tool's state in PATCHKEEPER_ROOT.

# An update's directory: `new_update NAME VERSION PATH ITEMS`, with one file that takes a while to fetch.
new_update() {
    local directory=$appliance/made/$1-$2 file=$appliance/made/$1-$2/files/$3
    mkdir -p "${file%/*}"
    head -c 300000 /dev/urandom >"$file"
    printf '{"name": "%s", "version": "%s", %s}\n' "$1" "$2" "$4" >"$directory/manifest.json"
}

# The settings of a state of ours, where there are none.
make_settings() {
    mkdir -p "$PATCHKEEPER_ROOT"
    [[ -e $PATCHKEEPER_ROOT/patchkeeper.conf ]] || cat >"$PATCHKEEPER_ROOT/patchkeeper.conf" <<'TEXT'
# For trying only: an appliance takes signed updates.
allow_unsigned = true
# Bytes per second: slow enough to be watched.
apply_rate = 400K
TEXT
}

# What there is to fetch: two versions of a fix for a web server, the first with optional components, and the
# Element Manager cartridge. Nobody signs them; this appliance takes them all the same.
make_updates() {
    local made=$appliance/made update
    local updates=$appliance/updates.new
    mkdir -p "$updates"
    new_update web-fix 1.0 usr/lib/web.so '"category": "Security", "classification": "Middleware",
        "short_description": "Closes a hole in the web server",
        "long_description": "Requests with two lengths are refused. Nothing else changes.",
        "warnings": ["The web server stops for some seconds."], "reboot_needed": false, "removable": true'
    mkdir -p "$made"/web-fix-1.0/components/{manual/usr/share/doc,tools/usr/bin}
    echo "One length only." >"$made/web-fix-1.0/components/manual/usr/share/doc/web-lengths"
    echo "#!/bin/sh" >"$made/web-fix-1.0/components/tools/usr/bin/web-check"
    new_update web-fix 1.1 usr/lib/web.so '"category": "Fixes", "classification": "Middleware",
        "short_description": "The web server starts faster", "reboot_needed": true, "removable": true'
    new_update znxliteEMcartridge 2.1 usr/share/em/cartridge '"category": "Element Manager",
        "short_description": "The cartridge of the Element Manager", "reboot_needed": false, "removable": true'
    for update in "$made"/*; do
        /qv/bin/patchkeeper bundle "$update" -o "$updates/${update##*/}.tar.gz" >/dev/null || return 1
    done
    rm -rf "$made"
    mv "$updates" "$appliance/updates" # all of them or none
}

# Sets $updates_server to the process and $updates_port.
start_updates_server() {
    local line
    exec {line}< <(exec scripts/updates-server "$appliance/updates" 100000)
    updates_server=$!
    read -r -t 20 updates_port <&"$line" || return 1
    exec {line}<&-
}

# Sets $server_command to a server on that port: everybody on this machine is let in and may change everything.
make_server_command() {
    printf '%s\n' 'owcimomd.allow_anonymous = true' 'cimserver.writers = *' >"$appliance/cimserver.conf"
    server_command=(build/bin/cimserver --config "$appliance/cimserver.conf" --listen "127.0.0.1:$1"
        --provider-dir build/lib/providers --mof schema/qualifiers.mof schema/ZNX.mof)
}
