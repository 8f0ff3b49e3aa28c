#!/usr/bin/env bash
# Installs the missing ones of the Debian packages that a purpose needs; without an argument, those that
# build the library and the program. Purposes: "tests" for building and running the tests and benchmarks;
# "checks" for the formatting, clang-tidy, cppcheck and mypy; "samples" for the cross compilers that rebuild the
# sample images; "docs" for the reference; "report" for the browser that the tests of the report drive;
# "bench" for the big images and the tools that brindle is measured beside; "fuzz" for the compiler that
# has libFuzzer; "packages" for making Debian packages.
set -euo pipefail

packages=(
    cmake g++ ninja-build
    libcli11-dev libutf8proc-dev rapidjson-dev
)
# What every build needs that has tests in it.
tests=(
    libbenchmark-dev libgmock-dev libgtest-dev
    binutils gdb-multiarch pkgconf python3 python3-jsonschema
    fish zsh
    mono-mcs mono-runtime
    python3-pip-whl python3-pytest python3-setuptools python3-wheel
)
case "${1:-}" in
"") ;;
tests)
    packages+=("${tests[@]}")
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
bench)
    packages+=("${tests[@]}" gcc-arm-none-eabi libdw-dev elfutils llvm-14 dwarves abigail-tools gdb time
        python3-pyelftools)
    ;;
*)
    echo "install-packages.sh: unknown purpose '$1'" >&2
    exit 2
    ;;
esac

missing=()
for package in "${packages[@]}"; do
    status=$(dpkg-query --show --showformat='${db:Status-Status}' "$package" 2>/dev/null || true)
    [ "$status" = installed ] || missing+=("$package")
done
if [ ${#missing[@]} -gt 0 ]; then
    apt-get update -qq
    DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >&2
fi
