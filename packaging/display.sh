# shellcheck shell=bash disable=SC2154
# Programs in the background, a practice tracker among them, and a display to show them on, for scripts that run the
# client. To be sourced by bash; the script that does so has a function fail, holds its lock in the descriptor lock, leaves
# its pictures in the folder pictures, and finds what was said in build/display.log and build/practice.log.

background=() # processes that must not outlive this script, in the order in which they were started
end_background() {
    local index
    for ((index = ${#background[@]} - 1; index >= 0; --index)); do
        kill "${background[index]}" 2>/dev/null || true
        wait "${background[index]}" 2>/dev/null || true
    done
}
trap end_background EXIT

# Waits until a command succeeds while a process lives.
wait_until() { # seconds, process, command...
    local deadline=$((SECONDS + $1)) process=$2
    shift 2
    until "$@" >/dev/null 2>&1; do
        if ! kill -0 "$process" 2>/dev/null || ((SECONDS >= deadline)); then
            return 1
        fi
        sleep 0.1
    done
}

# Starts a virtual display with a window manager, and has everything that follows use it.
start_display() {
    local output number
    exec {output}< <(exec Xvfb -displayfd 1 -screen 0 1280x960x24 -nolisten tcp 2>build/display.log {lock}>&-)
    background+=($!)
    read -r -t 30 number <&"$output" || fail "the virtual display does not start (see build/display.log)"
    export DISPLAY=:$number QT_QPA_PLATFORM=xcb
    if [[ -z ${XDG_RUNTIME_DIR:-} ]]; then # no desktop login has set it; without it every program complains
        install -d -m 700 build/runtime
        export XDG_RUNTIME_DIR=$PWD/build/runtime
    fi
    openbox --sm-disable >>build/display.log 2>&1 {lock}>&- &
    background+=($!)
    wait_until 30 $! xdotool get_num_desktops || fail "the window manager does not start (see build/display.log)"
}

# Starts a session bus with the accessibility bus behind it; programs started from here on can be used by the names of
# their controls (see press).
start_accessibility() {
    local output
    exec {output}< <(exec dbus-daemon --session --nofork --nopidfile --print-address 2>>build/display.log {lock}>&-)
    background+=($!)
    read -r -t 30 DBUS_SESSION_BUS_ADDRESS <&"$output" || fail "the session bus does not start (see build/display.log)"
    export DBUS_SESSION_BUS_ADDRESS QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1
}

# Starts a practice tracker; sets tracker_port and tracker_web. Its log names every request that it gets.
start_tracker() { # option...
    local output line
    exec {output}< <(exec build/dev/practice/qrvrc-practice --verbose "$@" 2>build/practice.log {lock}>&-)
    background+=($!)
    if ! read -r -t 30 line <&"$output" || [[ ! $line =~ ^host\ link\ 127\.0\.0\.1:([0-9]+)$ ]]; then
        fail "the practice tracker does not start (see build/practice.log)"
    fi
    tracker_port=${BASH_REMATCH[1]}
    if ! read -r -t 30 line <&"$output" || [[ ! $line =~ ^web\ (http://.+)$ ]]; then
        fail "the practice tracker serves no web pages (see build/practice.log)"
    fi
    tracker_web=${BASH_REMATCH[1]}
    tracker_output=$output # where the rest of what it says can be read
}

# Whether the screen has stopped changing since the last call; keeps its picture.
is_at_rest() { # name
    scrot --silent --overwrite "$pictures/$1.new.png"
    if cmp --silent "$pictures/$1.new.png" "$pictures/$1.png"; then
        rm "$pictures/$1.new.png"
    else
        mv "$pictures/$1.new.png" "$pictures/$1.png"
        return 1
    fi
}
