# shellcheck shell=bash
# The Debian packages that the project needs, by purpose, and what installs them. To be sourced by bash.

declare -A packages=(
    # What compiles the client, the practice tracker and the tests.
    [build]="
        ccache              # a second build, or one of a neighbouring checkout, compiles only what differs
        cmake               # configures; 3.25 or newer
        g++                 # C++20
        libdeflate-dev      # expands compressed replies
        libmspack-dev       # reads help.chm
        libsodium-dev       # checksums and signatures of updates
        ninja-build         # builds, as the presets ask for
        pkgconf             # finds the libraries
        qt6-base-dev        # the client's windows and sockets, and the test library
        qt6-httpserver-dev  # the practice tracker's web pages
        qt6-websockets-dev  # no use of our own: Qt's HTTP server is not found without it
    "
    # What the tests need besides, to run without a display.
    [test]="
        fonts-liberation2   # the font that windows ask for where Windows has its own
    "
    # What ./run needs where there is no display.
    [headless]="
        fonts-dejavu-core   # the window manager's titles; what it finds otherwise does not fit into them
        fonts-liberation2   # as above
        openbox             # a window manager: without one no window becomes active
        scrot               # takes the picture of the screen
        xdotool             # sees whether the client's window is there
        xvfb                # the display
    "
    # What uses a program by the names of its controls (packaging/press), besides a display.
    [accessibility]="
        at-spi2-core        # the bus that controls are found on
        dbus-daemon         # carries it
        gir1.2-atspi-2.0    # the way to it from Python
        python3
        python3-gi          # as above
    "
    # What ./run needs on a Wayland display without an X server.
    [wayland]="
        qt6-wayland         # Qt's way to such a display
    "
    # What bench/run needs besides the build.
    [bench]="
        libbenchmark-dev    # measures
        python3             # compares, prints the table
        valgrind            # counts instructions; without it those rows are left out
    "
    # What packaging/publish needs besides the build.
    [publish]="
        minisign            # signs with the maker's key, in the form that clients check
    "
    # What packaging/publish-smoke needs besides.
    [web-server]="
        curl                # sees whether it has started
        nginx-light         # a real web server, which serves what was published
    "
    # What packaging/linux/build needs besides the build.
    [linux]="
        dpkg-dev            # finds the packages that the program's libraries come from, and the flags of a package
        file                # as it asks for
    "
    # What 'packaging/linux/build check' needs besides.
    [linux-check]="
        appstream           # looks at the metadata for software centres
        desktop-file-utils  # looks at the menu entry
        lintian             # looks at the package
    "
    # What packaging/windows/build needs: Qt's own tools, what fetches source packages, and the compiler of the width.
    [windows]="
        ccache              # as above
        cmake
        dpkg-dev            # unpacks source packages
        ninja-build
        pkgconf
        qt6-base-dev        # Qt's CMake packages for the tools
        qt6-base-dev-tools  # moc and rcc
    "
    [windows-x86_64]="
        g++-mingw-w64-x86-64-posix  # compiles and links for 64-bit Windows
    "
    [windows-i686]="
        g++-mingw-w64-i686-posix    # the same for 32-bit Windows
    "
    [windows-installer]="
        nsis                # packs the installer
    "
    # What packaging/windows/smoke needs besides: a display, Wine for 64-bit programs, and what makes a 32-bit system with
    # Wine, because a system's own package lists seldom have 32-bit packages.
    [wine-display]="
        fonts-liberation2   # stand in for the fonts of Windows
        openbox
        scrot
        xdotool             # presses the buttons
        xvfb
    "
    [wine]="
        wine                # runs the program
        wine64
    "
    [wine-root]="
        debootstrap
    "
    # What the scripts in assets/ need.
    [assets]="
        fp-utils            # compiles help.chm
        imagemagick         # turns drawings into GIFs and icons
        librsvg2-bin        # renders the drawings
    "
    # What .ci/run needs besides the build and the test.
    [ci]="
        clang               # fuzz targets: libFuzzer comes with clang only
        clang-format        # layout
        clang-tidy          # lint
        git                 # names the files to check
        libbenchmark-dev    # the benchmarks must build
        libclang-rt-dev     # libFuzzer and clang's sanitizers themselves
        shellcheck          # lint for the scripts
    "
)

# Installs what is missing for the purposes that it is given; asks first unless it runs as root. Costs a few
# milliseconds when nothing is missing. Ends the script that calls it when the packages cannot be had.
install_missing() { # purpose...
    local purpose wanted missing answer
    wanted=$(for purpose in "$@"; do echo "${packages[$purpose]}"; done | sed 's/#.*//' | tr -s ' ' '\n' | sort -u)
    # shellcheck disable=SC2086 # one word a package
    set -- $wanted
    if ! command -v dpkg-query >/dev/null; then
        echo "This is no Debian system. Going on in the hope that it has its own form of: $*" >&2
        return
    fi
    missing=$(comm -23 <(printf '%s\n' "$@") \
        <(dpkg-query --show --showformat='${db:Status-Status} ${Package}\n' "$@" 2>/dev/null |
            sed -n 's/^installed //p' | sort -u) | tr '\n' ' ')
    missing=${missing% }
    if [[ -z $missing ]]; then
        return
    fi

    local as_root=(env DEBIAN_FRONTEND=noninteractive)
    if [[ $(id -u) -ne 0 ]]; then
        if [[ ! -t 0 ]] || ! command -v sudo >/dev/null; then
            echo "Missing Debian packages, to be installed as root: $missing" >&2
            exit 1
        fi
        read -r -p "Missing Debian packages: $missing. Install them with sudo? [y/N] " answer || answer=n
        if [[ ! $answer =~ ^[yY] ]]; then
            echo "Not installed, and nothing works without: $missing" >&2
            exit 1
        fi
        as_root=(sudo "${as_root[@]}")
    fi
    echo "Installing: $missing"
    "${as_root[@]}" apt-get update --quiet=2 || echo "The package lists may be old; trying with those." >&2
    # shellcheck disable=SC2086 # one word a package
    "${as_root[@]}" apt-get install --quiet=2 --yes --no-install-recommends -o DPkg::Lock::Timeout=300 \
        -o Dpkg::Use-Pty=0 $missing || {
        echo "These Debian packages cannot be installed: $missing" >&2
        exit 1
    }
}
