#!/bin/sh
# SPDX-FileCopyrightText: Nightjar contributors
# SPDX-License-Identifier: Apache-2.0

# Shows our notifications in real daemons and takes pictures of them, to be looked at: every text must stand there as
# typed, nothing bold or blue, the critical one marked as such, and the replaced one gone.
#
#     tests/platform/real-daemons.sh build/dev/tests/post_notifications [folder for the pictures]
#
# Needs (Debian): dbus xvfb imagemagick dunst notification-daemon xfce4-notifyd fonts-dejavu-core fonts-noto-color-emoji
set -eu

driver=$(realpath "$1")
pictures=$(realpath -m "${2:-notification-pictures}")
work=$(mktemp -d)
display=:$((80 + $$ % 400))
bus_pid="" screen_pid="" daemon_pid=""

end() {
    [ -z "$1" ] || { kill "$1" && wait "$1"; } 2>/dev/null || true
}
trap 'end "$daemon_pid"; end "$bus_pid"; end "$screen_pid"; rm -rf "$work"' EXIT
trap 'exit 1' INT TERM

# wait_for SECONDS COMMAND…: until the command succeeds.
wait_for() {
    tries=$(($1 * 10))
    shift
    until "$@" >/dev/null 2>&1; do
        tries=$((tries - 1))
        [ "$tries" -gt 0 ] || return 1
        sleep 0.1
    done
}

owned() {
    dbus-send --session --print-reply --reply-timeout=1000 --dest=org.freedesktop.DBus / org.freedesktop.DBus.GetNameOwner \
        string:org.freedesktop.Notifications
}

# A bus without the services of this machine, so that only the daemon under test answers.
cat >"$work/bus.conf" <<XML
<busconfig>
  <type>session</type>
  <listen>unix:dir=$work</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
XML
cat >"$work/dunstrc" <<INI
[global]
    markup = full
    font = DejaVu Sans 11
    width = 500
    height = 300
    origin = top-right
    notification_limit = 20
    ellipsize = end
    format = "<b>%s</b>\n%b"
INI
mkdir -p "$pictures" "$work/home"
export HOME="$work/home" XDG_CONFIG_HOME="$work/home" XDG_DATA_HOME="$work/home" XDG_CACHE_HOME="$work/home"
export XDG_RUNTIME_DIR="$work/home" GSETTINGS_BACKEND=memory NO_AT_BRIDGE=1

Xvfb "$display" -screen 0 1100x900x24 -nolisten tcp >"$work/screen.log" 2>&1 &
screen_pid=$!
export DISPLAY="$display"
wait_for 10 xset -q || wait_for 10 import -window root "$work/first.png"

# show NAME NUMBER COMMAND…: the daemon alone on a new bus, our notifications (0 = all), a picture.
show() {
    name=$1
    number=$2
    shift 2
    dbus-daemon --config-file="$work/bus.conf" --nofork --print-address >"$work/address" 2>"$work/bus.log" &
    bus_pid=$!
    wait_for 10 test -s "$work/address"
    DBUS_SESSION_BUS_ADDRESS=$(cat "$work/address")
    export DBUS_SESSION_BUS_ADDRESS
    "$@" >"$work/$name.log" 2>&1 &
    daemon_pid=$!
    if wait_for 10 owned && "$driver" "$number"; then
        sleep 2 # the daemon paints and moves its windows
        import -window root "$pictures/$name.png"
        echo "$pictures/$name.png"
    else
        echo "$name: no picture" >&2
        cat "$work/$name.log" >&2
    fi
    end "$daemon_pid"
    end "$bus_pid"
    daemon_pid="" bus_pid=""
    rm -f "$work/address"
}

show dunst 0 dunst -config "$work/dunstrc"
show xfce4-notifyd 0 /usr/lib/*/xfce4/notifyd/xfce4-notifyd
# This one shows one at a time.
for number in 2 3 4 0; do
    show "notification-daemon-$number" "$number" /usr/lib/notification-daemon/notification-daemon
done
