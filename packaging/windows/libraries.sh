# shellcheck shell=bash disable=SC2154
# Makes what the Windows build links against, from Debian's own source packages. To be sourced by bash; the caller sets
# here (the folder of this file) and arch (x86_64 or i686) before each call.

readonly target_tail=w64-mingw32

# Fetches a source package and unpacks it into a folder. The system's own lists of packages are left alone.
unpack_source() { # package, folder
    local package=$1 folder=$2 lists
    lists=$folder.lists
    rm -rf "$folder" "$folder.download"
    mkdir -p "$folder.download" "$lists/state"
    binary_sources >"$lists/sources.list"
    local apt=(apt-get --quiet=2 -o "Dir::Etc::sourcelist=$lists/sources.list" -o Dir::Etc::sourceparts=-
        -o "Dir::State::lists=$lists/state" -o APT::Sandbox::User=root)
    "${apt[@]}" update
    (cd "$folder.download" && "${apt[@]}" source --download-only "$package" >/dev/null)
    dpkg-source -x "$folder.download"/*.dsc "$folder" >/dev/null 2>&1
    rm -rf "$folder.download" "$lists"
}

# Where the system's own packages come from, asked for their sources.
binary_sources() {
    # shellcheck disable=SC2016 # words of the format
    apt-get indextargets --format '$(SITE) $(RELEASE) $(COMPONENT)' 'Created-By: Packages' |
        sort -u | sed 's/^/deb-src /'
}

# Compiles C files into a static library of the prefix.
static_library() { # prefix, name, flag or file...
    local prefix=$1 name=$2 work
    shift 2
    work=$(mktemp -d)
    (cd "$work" && "$arch-$target_tail-gcc-posix" -O2 -w -c "$@")
    mkdir -p "$prefix/lib/pkgconfig" "$prefix/include"
    rm -f "$prefix/lib/$name.a"
    "$arch-$target_tail-ar" rcs "$prefix/lib/$name.a" "$work"/*.o
    rm -r "$work"
}

describe_library() { # prefix, package, version, linker name
    printf '%s\n' "Name: $2" "Description: $2 for Windows" "Version: $3" "Cflags: -I$1/include" "Libs: -L$1/lib -l$4" \
        >"$1/lib/pkgconfig/$2.pc"
}

make_libdeflate() { # prefix, folder for the work
    local source=$2/libdeflate
    unpack_source libdeflate "$source"
    static_library "$1" libdeflate -I"$source" "$source"/lib/*.c "$source"/lib/x86/*.c
    cp "$source/libdeflate.h" "$1/include/"
    describe_library "$1" libdeflate \
        "$(sed -nE 's/^#define LIBDEFLATE_VERSION_STRING[^"]*"(.*)"/\1/p' "$source/libdeflate.h")" deflate
}

# Only what reads compiled help.
make_libmspack() { # prefix, folder for the work
    local source=$2/libmspack
    unpack_source libmspack "$source"
    static_library "$1" libmspack -DSIZEOF_OFF_T=4 -I"$source/mspack" "$source"/mspack/{system,chmd,lzxd}.c
    cp "$source/mspack/mspack.h" "$1/include/"
    describe_library "$1" libmspack "$(sed -nE 's/^AC_INIT.*\[([0-9.]+)(alpha)?\].*/\1/p' "$source/configure.ac")" mspack
}

# What checks sums and signatures of updates; in portable C, which is fast enough for it.
make_libsodium() { # prefix, folder for the work
    local source=$2/libsodium headers files wide=()
    unpack_source libsodium "$source"
    headers=$source/src/libsodium/include
    cp "$source/builds/msvc/version.h" "$headers/sodium/" # elsewhere its configure script writes it
    mapfile -t files < <(find "$source/src/libsodium" -name '*.c')
    [[ $arch != x86_64 ]] || wide=(-DHAVE_TI_MODE=1) # numbers of 128 bits
    static_library "$1" libsodium -DCONFIGURED=1 -DSODIUM_STATIC -DNATIVE_LITTLE_ENDIAN=1 "${wide[@]}" \
        -I"$headers/sodium" -I"$headers" "${files[@]}"
    cp -r "$headers/sodium" "$headers/sodium.h" "$1/include/"
    describe_library "$1" libsodium \
        "$(sed -nE 's/^#define SODIUM_VERSION_STRING "(.*)"/\1/p' "$headers/sodium/version.h")" sodium
    # Its header takes it for a shared library otherwise.
    sed -i 's/^Cflags:.*/& -DSODIUM_STATIC/' "$1/lib/pkgconfig/libsodium.pc"
}

# All of them, but what the prefix has already.
make_libraries() { # prefix, folder for the work
    [[ -e $1/lib/pkgconfig/libdeflate.pc ]] || make_libdeflate "$1" "$2"
    [[ -e $1/lib/pkgconfig/libmspack.pc ]] || make_libmspack "$1" "$2"
    [[ -e $1/lib/pkgconfig/libsodium.pc ]] || make_libsodium "$1" "$2"
}

# Qt as the client needs it: static, with the system's own TLS. Takes the better part of an hour on two cores.
make_qt() { # prefix, folder for the work
    local source=$2/qt6-base
    unpack_source qt6-base "$source"
    # The source package carries no header for tablets, so that their events must be off.
    cmake -S "$source" -B "$2/qt6-build" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$here/toolchain.cmake" \
        -DQRVRC_TARGET_ARCH="$arch" -DCMAKE_INSTALL_PREFIX="$1" -DCMAKE_BUILD_TYPE=MinSizeRel -DBUILD_SHARED_LIBS=OFF \
        -DQT_BUILD_EXAMPLES=OFF -DQT_BUILD_TESTS=OFF \
        -DFEATURE_sql=OFF -DFEATURE_dbus=OFF -DFEATURE_printsupport=OFF -DFEATURE_opengl=OFF -DINPUT_opengl=no \
        -DFEATURE_vulkan=OFF -DFEATURE_concurrent=OFF -DFEATURE_testlib=ON -DFEATURE_xml=OFF -DFEATURE_openssl=OFF \
        -DFEATURE_schannel=ON -DFEATURE_system_zlib=OFF -DFEATURE_pkg_config=OFF -DFEATURE_tabletevent=OFF
    cmake --build "$2/qt6-build"
    cmake --install "$2/qt6-build"
}
