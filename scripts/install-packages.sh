#!/usr/bin/env bash
# Installs the Debian packages that building and testing need, those that are missing alone. With the
# argument "samples" also the cross compilers that rebuild the sample images; with "docs" also what
# builds the reference; with "report" also the browser that the tests of the report drive; with "bench"
# also what makes the big images and the tools that brindle is measured beside; with "fuzz" also the
# compiler that has libFuzzer; with "checks" also cppcheck.
set -euo pipefail

packages=(
    cmake g++ ninja-build
    libcli11-dev libcsv-dev rapidjson-dev
    libbenchmark-dev libgmock-dev libgtest-dev
    binutils clang-format-14 clang-tidy-14 gdb-multiarch pkgconf python3
    mono-mcs mono-runtime
)
case "${1:-}" in
samples)
    packages+=(clang-14 lld-14 gcc-arm-none-eabi libnewlib-arm-none-eabi
        g++-powerpc-linux-gnu gcc-powerpc-linux-gnu gcc-aarch64-linux-gnu gcc-riscv64-linux-gnu
        binutils-avr gcc-avr gfortran gnat rustc
        g++-mingw-w64-i686-win32 g++-mingw-w64-x86-64-win32)
    ;;
docs)
    packages+=(doxygen)
    ;;
report)
    packages+=(chromium chromium-driver fonts-dejavu-core python3-selenium)
    ;;
fuzz)
    packages+=(clang-14 libclang-rt-14-dev llvm-14)
    ;;
checks)
    packages+=(cppcheck)
    ;;
bench)
    packages+=(gcc-arm-none-eabi libdw-dev elfutils llvm-14 dwarves abigail-tools gdb time)
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
