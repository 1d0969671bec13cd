# shellcheck shell=bash disable=SC2016,SC2034,SC2154,SC2317
# Wine for programs of one architecture. To be sourced by bash in the project's folder, after packages.sh; the caller sets
# arch (x86_64 or i686).

# A 32-bit Debian system with Wine, for machines whose own package lists have no 32-bit packages.
readonly wine_root=$PWD/build/wine32

has_native_wine() {
    case $arch in
    x86_64) [[ -x /usr/lib/wine/wine64 ]] ;;
    i686) [[ -x /usr/lib/wine/wine ]] ;;
    esac
}

# Installs what is missing. The system's own package lists stay as they are.
install_wine() {
    if [[ $arch == x86_64 ]]; then
        install_missing wine wine-display
    else
        install_missing wine-display
        has_native_wine || [[ -e $wine_root/complete ]] || make_wine_root
    fi
}

make_wine_root() {
    local mirror
    install_missing wine-root
    mirror=$(apt-get indextargets --format '$(SITE)' 'Created-By: Packages' "Codename: $(codename)" | head -1)
    rm -rf "$wine_root"
    mkdir -p "$wine_root"
    debootstrap --arch=i386 --variant=minbase --include=wine,wine32,fonts-liberation2 "$(codename)" "$wine_root" \
        "$mirror" >"$wine_root.log" 2>&1 && touch "$wine_root/complete"
}

codename() {
    sed -n 's/^VERSION_CODENAME=//p' /etc/os-release
}

# Defines in_wine and in_wineserver for the architecture.
use_wine() { # prefix
    why_no_wine=
    export WINEPREFIX=$1 WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
    if has_native_wine; then
        [[ $arch == x86_64 ]] || export WINEARCH=win32
        in_wine() { env -u QT_QPA_PLATFORM wine "$@" {lock}>&-; }
        in_wineserver() { wineserver "$@"; }
    elif [[ $arch == i686 && -e $wine_root/complete ]]; then
        [[ $(id -u) -eq 0 ]] || {
            why_no_wine="only root can use the 32-bit system in $wine_root"
            return 1
        }
        export WINEARCH=win32
        in_wine() { in_root wine "$@" {lock}>&-; }
        in_wineserver() { in_root /usr/lib/wine/wineserver "$@"; }
    else
        why_no_wine="there is no Wine for $arch (--install gets it where it is to be had)"
        return 1
    fi
}

# Runs a program of the 32-bit system; project and display are where they are. What is mounted goes with the program.
in_root() {
    # shellcheck disable=SC2016 # for the inner shell
    exec_in_root='mkdir -p "$0$1" && mount --rbind "$1" "$0$1" && mount --bind /tmp "$0/tmp" &&
        mount --rbind /proc "$0/proc" && mount --rbind /dev "$0/dev" && exec chroot "$0" env -u QT_QPA_PLATFORM HOME=/root "${@:2}"'
    unshare --mount bash -c "$exec_in_root" "$wine_root" "$PWD" "$@"
}
