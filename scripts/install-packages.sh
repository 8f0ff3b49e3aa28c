#!/usr/bin/env bash
# Installs the missing ones of the Debian packages that a purpose needs; without an argument, those that
# build the library and the program. Purposes: "tests" for building and running the tests and benchmarks;
# "checks" for the formatting, clang-tidy, cppcheck and mypy; "samples" for the cross compilers that rebuild the
# sample images; "docs" for the reference; "report" for the browser that the tests of the report drive;
# "bench" for the big images and the tools that brindle is measured beside; "fuzz" for the compiler that
# has libFuzzer; "packages" for making Debian packages; "windows" and "windows-i686" for building and testing
# Windows programs of 64 and 32 bits.
set -euo pipefail

packages=(
    cmake g++ ninja-build
    libcli11-dev libutf8proc-dev rapidjson-dev
)
# Needed by every build with tests.
tests=(
    libbenchmark-dev libgmock-dev libgtest-dev
    binutils gdb-multiarch pkgconf python3 python3-jsonschema
    fish zsh
    mono-mcs mono-runtime
    python3-pip-whl python3-pytest python3-setuptools python3-wheel
)

# Installed where they can be had: without them, the tests that need them are skipped.
wished=()

# The sources of utf8proc as Debian has them: no package has the library for Windows.
get_utf8proc() {
    [ ! -e /usr/src/utf8proc/utf8proc.c ] || return 0
    local folder
    folder=$(mktemp -d)
    mkdir -p "$folder/parts" "$folder/lists/partial" /usr/src/utf8proc
    touch "$folder/sources.list"
    if [ -e /etc/apt/sources.list.d/debian.sources ]; then
        sed 's/^Types:.*/Types: deb-src/' /etc/apt/sources.list.d/debian.sources >"$folder/parts/debian.sources"
    else
        sed -n 's/^deb /deb-src /p' /etc/apt/sources.list >"$folder/sources.list"
    fi
    # With lists of its own, so that the system's lists stay as they are.
    local apt=(apt-get -qq -o "Dir::Etc::SourceList=$folder/sources.list" -o "Dir::Etc::SourceParts=$folder/parts"
        -o "Dir::State::Lists=$folder/lists" -o Dir::Cache::pkgcache= -o Dir::Cache::srcpkgcache=
        -o APT::Sandbox::User=root)
    (cd "$folder" && "${apt[@]}" update && "${apt[@]}" source --download-only utf8proc >&2)
    tar -xf "$folder"/utf8proc_*.orig.tar.* -C /usr/src/utf8proc --strip-components=1
    rm -rf "$folder"
}

case "${1:-}" in
"") ;;
tests)
    packages+=("${tests[@]}")
    wished=(python3-pandas)
    ;;
samples)
    packages+=(clang-14 lld-14 gcc-arm-none-eabi libnewlib-arm-none-eabi
        g++-powerpc-linux-gnu gcc-powerpc-linux-gnu gcc-aarch64-linux-gnu gcc-riscv64-linux-gnu
        binutils-avr gcc-avr gfortran gnat rustc
        g++-mingw-w64-i686-win32 g++-mingw-w64-x86-64-win32)
    ;;
docs)
    packages+=("${tests[@]}" doxygen)
    ;;
report)
    packages+=(chromium chromium-driver fonts-dejavu-core python3-selenium)
    ;;
fuzz)
    packages+=("${tests[@]}" clang-14 libclang-rt-14-dev llvm-14)
    ;;
checks)
    packages+=("${tests[@]}" clang-format-14 clang-tidy-14 cppcheck mypy)
    ;;
packages)
    packages+=(dpkg-dev lintian)
    ;;
windows)
    packages+=(g++-mingw-w64-x86-64-posix googletest python3 wine64 zip)
    ;;
windows-i686)
    packages+=(g++-mingw-w64-i686-posix googletest python3 zip)
    ;;
bench)
    packages+=("${tests[@]}" gcc-arm-none-eabi libdw-dev elfutils llvm-14 dwarves abigail-tools gdb time
        python3-pyelftools)
    ;;
*)
    echo "install-packages.sh: unknown purpose '$1'" >&2
    exit 2
    ;;
esac

# Installs those of the named packages that are missing.
install_missing() {
    local package status missing=()
    for package in "$@"; do
        status=$(dpkg-query --show --showformat='${db:Status-Status}' "$package" 2>/dev/null || true)
        [ "$status" = installed ] || missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    apt-get update -qq &&
        DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >&2
}

install_missing "${packages[@]}"
install_missing "${wished[@]}" ||
    echo "install-packages.sh: not to be had here, tests that need it are skipped: ${wished[*]}" >&2
case "${1:-}" in
windows*) get_utf8proc ;;
esac
