#!/usr/bin/env bash
# Rebuilds the sample images: all, or only the named ones. The compilers are Debian's, which
# scripts/install-packages.sh samples installs; the same compilers give the same bytes anywhere, except for
# the identifiers of split units.
#
# usage: build.sh [--into FOLDER] [IMAGE...]
#   --into FOLDER  where the images go, instead of the folder that is kept; big images need it
set -euo pipefail
samples=$(cd "$(dirname "$0")" && pwd)
images=$samples/images is_elsewhere=
if [ "${1:-}" = --into ]; then
    images=$(realpath "$2") is_elsewhere=yes
    shift 2
fi
objects=$(mktemp -d)
trap 'rm -rf "$objects"' EXIT

# Projects: c, cpp, both in one image, device, or one file of hosted/ or languages/. An image that ends in
# .o is only the unit motor.c, not linked. Images for Windows end in .exe or .dll. Images that only the full
# manner reads, or reads differently, are in the folder full.
image_table='
# image                           processor compiler project flags
arm-symbols.elf                   arm       gcc      both    -O1 -g0
powerpc-symbols.elf               powerpc   gcc      both    -O1 -g0
x86_64-symbols.elf                x86_64    gcc      both    -O1 -g0 -mcmodel=kernel
arm-c-dwarf2-O0.elf               arm       gcc      c       -O0 -gdwarf-2 -gstrict-dwarf
arm-c-dwarf2-O2.elf               arm       gcc      c       -O2 -gdwarf-2 -gstrict-dwarf
arm-c-dwarf3-O0.elf               arm       gcc      c       -O0 -gdwarf-3 -gstrict-dwarf
arm-c-dwarf4-O0.elf               arm       gcc      c       -O0 -gdwarf-4 -gstrict-dwarf
arm-c-dwarf4-O2.elf               arm       gcc      c       -O2 -gdwarf-4 -gstrict-dwarf
arm-c-dwarf4-O2-object.o          arm       gcc      c       -O2 -gdwarf-4 -gstrict-dwarf
arm-c-dwarf4-O2-nosymtab.elf      arm       gcc      c       -O2 -gdwarf-4 -gstrict-dwarf
arm-cpp-dwarf2-O0.elf             arm       gcc      cpp     -O0 -gdwarf-2
arm-cpp-dwarf3-O2.elf             arm       gcc      cpp     -O2 -gdwarf-3 -gstrict-dwarf
arm-cpp-dwarf4-O0.elf             arm       gcc      cpp     -O0 -gdwarf-4 -gstrict-dwarf
arm-cpp-dwarf4-O2.elf             arm       gcc      cpp     -O2 -gdwarf-4 -gstrict-dwarf
powerpc-c-dwarf2-O0.elf           powerpc   gcc      c       -O0 -gdwarf-2 -gstrict-dwarf
powerpc-c-dwarf4-O2.elf           powerpc   gcc      c       -O2 -gdwarf-4
powerpc-cpp-dwarf2-O2.elf         powerpc   gcc      cpp     -O2 -gdwarf-2 -gstrict-dwarf
powerpc-cpp-dwarf4-O0.elf         powerpc   gcc      cpp     -O0 -gdwarf-4
x86_64-c-dwarf4-O0.elf            x86_64    gcc      c       -O0 -gdwarf-4
x86_64-cpp-dwarf4-O2.elf          x86_64    gcc      cpp     -O2 -gdwarf-4
x86_64-clang-c-dwarf4-O2.elf      x86_64    clang    c       -O2 -gdwarf-4
x86_64-clang-cpp-dwarf4-O0.elf    x86_64    clang    cpp     -O0 -gdwarf-4
i686-c-dwarf2-O0.exe              windows32 gcc      c       -O0 -gdwarf-2 -gstrict-dwarf
i686-c-dwarf4-O2.dll              windows32 gcc      c       -O2 -gdwarf-4 -Wl,--image-base=0x10000000
i686-cpp-dwarf4-O0.exe            windows32 gcc      cpp     -O0 -gdwarf-4
i686-cpp-dwarf2-O2.dll            windows32 gcc      cpp     -O2 -gdwarf-2 -Wl,--image-base=0x10000000
x86_64-c-dwarf4-O0.exe            windows64 gcc      c       -O0 -gdwarf-4 -gstrict-dwarf
x86_64-c-dwarf2-O2.dll            windows64 gcc      c       -O2 -gdwarf-2 -Wl,--image-base=0x10000000
x86_64-cpp-dwarf2-O2.exe          windows64 gcc      cpp     -O2 -gdwarf-2 -gstrict-dwarf
x86_64-cpp-dwarf4-O0.dll          windows64 gcc      cpp     -O0 -gdwarf-4 -Wl,--image-base=0x180000000

# What the compilers write by default
full/arm-c-O0.elf                 arm       gcc      c       -O0 -g
full/arm-c-O2.elf                 arm       gcc      c       -O2 -g
full/arm-cpp-O0.elf               arm       gcc      cpp     -O0 -g
full/arm-cpp-O2.elf               arm       gcc      cpp     -O2 -g
full/arm-device-O2.elf            arm       gcc      device  -O2 -g
full/powerpc-c-O2.elf             powerpc   gcc      c       -O2 -g
full/powerpc-cpp-O0.elf           powerpc   gcc      cpp     -O0 -g
full/powerpc-device-O2.elf        powerpc   gcc      device  -O2 -g
full/riscv64-c-O2.elf             riscv64   gcc      c       -O2 -g
full/riscv64-device-O0.elf        riscv64   gcc      device  -O0 -g
full/aarch64-c-O2.elf             aarch64   gcc      c       -O2 -g
full/aarch64-device-O2.elf        aarch64   gcc      device  -O2 -g
full/x86_64-c-O0.elf              x86_64    gcc      c       -O0 -g
full/x86_64-cpp-O2.elf            x86_64    gcc      cpp     -O2 -g
full/x86_64-device-O2.elf         x86_64    gcc      device  -O2 -g -mcmodel=large
full/x86_64-clang-c-O2.elf        x86_64    clang    c       -O2 -g
full/x86_64-clang-cpp-O0.elf      x86_64    clang    cpp     -O0 -g
full/x86_64-clang-device-O2.elf   x86_64    clang    device  -O2 -g -mcmodel=large
full/x86_64-hosted-c.elf          x86_64    gcc      hosted/main.c    -g
full/x86_64-hosted-cpp.elf        x86_64    gcc      hosted/main.cpp  -g
full/x86_64-clang-hosted-c.elf    x86_64    clang    hosted/main.c    -g
full/x86_64-clang-hosted-cpp.elf  x86_64    clang    hosted/main.cpp  -g
full/arm-newlib-c.elf             newlib    gcc      hosted/main.c    -g
full/x86_64-fortran.elf           x86_64    fortran  languages/plant.f90 -O1 -g
full/x86_64-ada.elf               x86_64    ada      languages/plant.adb -O1 -g
full/x86_64-rust.elf              x86_64    rust     languages/plant.rs  -g -Wl,--gc-sections,--unresolved-symbols=ignore-all

# Other forms. The compiler for AVR writes no DWARF by default.
full/powerpc-device-dwarf2.elf    powerpc   gcc      device  -O0 -gdwarf-2 -gstrict-dwarf
full/powerpc-device-dwarf4.elf    powerpc   gcc      device  -O2 -gdwarf-4
full/avr-device-dwarf2.elf        avr       gcc      device  -Os -gdwarf-2
full/avr-device-dwarf4.elf        avr       gcc      device  -Os -gdwarf-4
full/arm-device-gc.elf            arm       gcc      device  -O2 -g -ffunction-sections -fdata-sections -Wl,--gc-sections
full/aarch64-device-gc.elf        aarch64   gcc      device  -O2 -g -ffunction-sections -fdata-sections -Wl,--gc-sections
full/x86_64-clang-device-gc.elf   x86_64    clang    device  -O1 -g -mcmodel=large -ffunction-sections -fdata-sections -fuse-ld=lld -Wl,--gc-sections -Wl,-z,dead-reloc-in-nonalloc=.debug_*=0xffffffffffffffff
full/x86_64-clang-device-lldb.elf x86_64    clang    device  -O1 -glldb -mcmodel=large
full/x86_64-clang-cpp-lldb.elf    x86_64    clang    cpp     -O1 -glldb
full/arm-c-lto.elf                arm       gcc      c       -O2 -g -flto
full/arm-cpp-lto.elf              arm       gcc      cpp     -O2 -g -flto
full/arm-device-lto.elf           arm       gcc      device  -O2 -g -flto
full/arm-cpp-lto-dwarf4.elf       arm       gcc      cpp     -O2 -gdwarf-4 -flto
full/x86_64-clang-c-lto.elf       x86_64    clang    c       -O2 -g -flto -fuse-ld=lld
full/x86_64-clang-cpp-lto.elf     x86_64    clang    cpp     -O2 -g -flto -fuse-ld=lld
full/arm-cpp-types-dwarf4.elf     arm       gcc      cpp     -O0 -gdwarf-4 -fdebug-types-section
full/arm-cpp-types-dwarf5.elf     arm       gcc      cpp     -O0 -gdwarf-5 -fdebug-types-section
full/arm-c-types-dwarf5.elf       arm       gcc      c       -O2 -gdwarf-5 -fdebug-types-section
full/x86_64-clang-cpp-types.elf   x86_64    clang    cpp     -O0 -gdwarf-5 -fdebug-types-section
full/arm-c-dwarf64.elf            arm       gcc      c       -O2 -gdwarf-5 -gdwarf64
full/powerpc-c-dwarf64-dwarf4.elf powerpc   gcc      c       -O2 -gdwarf-4 -gdwarf64
full/arm-c-split.elf              arm       gcc      c       -O2 -gdwarf-5 -gsplit-dwarf
full/x86_64-clang-cpp-split.elf   x86_64    clang    cpp     -O0 -gdwarf-5 -gsplit-dwarf
'

# Images that are too big for the repository. The tests build them, with --into, if the compiler is
# installed.
big_image_table='
full/x86_64-hosted-c.exe          windows64 gcc      hosted/main.c    -g
full/x86_64-hosted-cpp.exe        windows64 gcc      hosted/main.cpp  -g
'

common=(
    -ffreestanding -fno-pic -fno-ident -fno-stack-protector -fno-asynchronous-unwind-tables
    -Wall -Wextra -Werror
)
plain_paths=("-ffile-prefix-map=$samples=/firmware" "-ffile-prefix-map=$objects=/firmware/objects")
c_language=(-std=c11 -fcommon)
cpp_language=(-std=c++20 -fno-exceptions -fno-rtti -fno-threadsafe-statics -fno-use-cxa-atexit)
elf_link_flags=(-nostdlib -static "-Wl,--build-id=none" "-Wl,--nmagic")

choose_toolchain() {
    local processor=$1 compiler=$2 project=$3
    ports=0x50000000
    case $processor in
        arm)
            prefix=arm-none-eabi-
            machine=(-mcpu=cortex-m4 -mthumb -mfloat-abi=hard -mfpu=fpv4-sp-d16)
            flash=0x08000000 ram=0x20000000
            ;;
        newlib)
            prefix=arm-none-eabi-
            machine=(-mcpu=cortex-m4 -mthumb --specs=nosys.specs)
            ;;
        riscv64)
            prefix=riscv64-linux-gnu-
            machine=(-mcmodel=medany)
            flash=0x180000000 ram=0x1a0000000 ports=0x1c0000000
            ;;
        aarch64)
            prefix=aarch64-linux-gnu-
            machine=()
            flash=0x8000000000 ram=0x8020000000 ports=0x8040000000
            ;;
        avr)
            prefix=avr-
            machine=(-mmcu=atmega2560)
            flash=0 ram=0x800200 ports=0x801000
            ;;
        powerpc)
            prefix=powerpc-linux-gnu-
            machine=(-mcpu=603e)
            flash=0x00010000 ram=0x40000000
            ;;
        x86_64)
            prefix=x86_64-linux-gnu-
            machine=(-mno-red-zone -fcf-protection=none)
            flash=0x00400000 ram=0x20000000
            ;;
        windows32)
            prefix=i686-w64-mingw32-
            machine=()
            underscore=_
            ;;
        windows64)
            prefix=x86_64-w64-mingw32-
            machine=()
            underscore=
            ;;
    esac
    case ${flags[*]} in
        *-mcmodel=kernel*) flash=0xffffffff80000000 ram=0xffffffff90000000 ;;
        *-mcmodel=large*) flash=0x4000000000 ram=0x6000000000 ports=0xfedc00000000 ;;
    esac
    [ "$project" != device ] || [ "$processor" != arm ] || flash=0
    cc=${prefix}gcc cxx=${prefix}g++
    if [ "$compiler" = clang ]; then
        cc=clang-14 cxx=clang++-14
        linker_flags+=(-Wno-unused-command-line-argument)
    fi
    machine+=("${plain_paths[@]}")
    # The oldest of the compilers.
    [ "$processor" != avr ] || machine=("${machine[@]/-ffile-prefix-map/-fdebug-prefix-map}" -gno-record-gcc-switches)
}

# Compiles one unit of a project; prints the path of the object.
compile() {
    local unit=$1 project=${1%%/*} source=${1#*/}
    local object=$objects/${unit//\//-}.o unit_flags=("${flags[@]}")
    [ "$unit" != c/factory.c ] || unit_flags+=(-g0)
    [ "$project" != device ] || unit_flags+=(-fms-extensions)
    [[ $project:$cc != device:clang* ]] || unit_flags+=(-Wno-microsoft-anon-tag)
    cd "$samples/$project"
    if [[ "${flags[*]}" = *-gsplit-dwarf* ]]; then
        # The unit names the file with its other half as the compiler is told to.
        cd "$objects"
        source=$samples/$unit object=${object##*/}
    fi
    if [ "$project" != cpp ]; then
        "$cc" "${machine[@]}" "${common[@]}" "${c_language[@]}" "${unit_flags[@]}" -c "$source" -o "$object"
    else
        "$cxx" "${machine[@]}" "${common[@]}" "${cpp_language[@]}" "${unit_flags[@]}" -c "$source" -o "$object"
    fi
    echo "$object"
}

units_of() {
    local image=$1 project=$2
    case $image:$project in
        *.o:*) echo c/motor.c ;;
        *:c) echo c/main.c c/motor.c c/sensors.c c/supply.c c/factory.c ;;
        *:cpp) echo cpp/main.cpp cpp/devices.cpp cpp/signals.cpp ;;
        *:both) echo c/main.c c/motor.c c/sensors.c c/supply.c c/factory.c cpp/devices.cpp cpp/signals.cpp ;;
        *:device) echo device/startup.c device/timers.c device/spare.c ;;
    esac
}

link_elf() {
    local target=$1 script=$2 folder=$objects all_flags=("${linker_flags[@]}")
    shift 2
    if [[ "${flags[*]}" = *-flto* ]]; then
        # The linker compiles. It names the sources relative to the folder in which it runs.
        folder=$samples/$project
        all_flags+=("${flags[@]}" "${common[@]}")
    fi
    [ "$script" != device/device.ld ] || all_flags+=("-Wl,--defsym=PORT_START=$ports")
    (cd "$folder" && "$cc" "${machine[@]}" "${all_flags[@]}" "${elf_link_flags[@]}" \
        "-Wl,--script=$samples/$script" "-Wl,--defsym=FLASH_START=$flash" "-Wl,--defsym=RAM_START=$ram" \
        "$@" -o "$target")
}

link_exe() {
    local target=$1 constructors=${underscore}__CTOR_LIST__
    shift
    "$cc" "${flags[@]}" "${linker_flags[@]}" -nostdlib -Wl,--no-insert-timestamp "-Wl,--entry=${underscore}reset" \
        "-Wl,--defsym=${underscore}__init_array_start=$constructors" \
        "-Wl,--defsym=${underscore}__init_array_end=$constructors" "$@" -o "$target"
}

link_dll() {
    link_exe "$@" -shared -Wl,--exclude-all-symbols
}

# Compiles and links a program of one file as a user would.
build_hosted() {
    local target=$1 source=$2 driver=$cc
    [[ $source != *.cpp ]] || driver="$cxx -std=gnu++17"
    [[ $target != *.exe ]] || machine+=("-Wl,--no-insert-timestamp")
    (cd "$objects" && $driver "${machine[@]}" "${flags[@]}" "$samples/$source" -lm -o "$target")
}

# Compiles one file of another language, and links it without the language's library.
build_language() {
    local target=$1 compiler=$2 source=$3 object=plant.o
    cd "$objects"
    case $compiler in
        fortran) gfortran "${flags[@]}" -fno-pic "${plain_paths[@]}" -c "$samples/$source" -o "$object" ;;
        ada) gcc "${flags[@]}" -fno-pic -gnatp "${plain_paths[@]}" -c "$samples/$source" -o "$object" ;;
        rust) /usr/bin/rustc "${flags[@]}" -C panic=abort -C relocation-model=static --emit=obj \
            "${plain_paths[@]/-ffile-prefix-map/--remap-path-prefix}" "$samples/$source" -o "$object" ;;
    esac
    link_elf "$target" controller.ld "$object"
}

build_project() {
    local target=$1 image=$2 project=$3 unit script=controller.ld linked=()
    for unit in $(units_of "$image" "$project"); do
        linked+=("$(compile "$unit")")
    done
    [ "$project" != device ] || script=device/device.ld
    case $image in
        *.o) cp "${linked[0]}" "$target" ;;
        *.elf) link_elf "$target" "$script" "${linked[@]}" ;;
        *) link_"${image##*.}" "$target" "${linked[@]}" ;;
    esac
    [ "$project" != device ] || "${prefix}objcopy" --remove-section=.ports "$target"
    [[ $image != *nosymtab* ]] || "${prefix}objcopy" --strip-all --keep-section='.debug_*' "$target"
}

build_image() {
    local image=$1 processor=$2 compiler=$3 project=$4
    local target=$images/$image flag
    shift 4
    flags=() linker_flags=()
    for flag in "$@"; do
        case $flag in
            -Wl,* | -fuse-ld=*) linker_flags+=("$flag") ;;
            *) flags+=("$flag") ;;
        esac
    done
    choose_toolchain "$processor" "$compiler" "$project"
    mkdir -p "$(dirname "$target")"
    case $project in
        hosted/*) build_hosted "$target" "$project" ;;
        languages/*) build_language "$target" "$compiler" "$project" ;;
        *) build_project "$target" "$image" "$project" ;;
    esac
    chmod a-x "$target"
}

[ -z "$is_elsewhere" ] || image_table+=$big_image_table
while read -r image settings; do
    [[ -n $image && $image != \#* ]] || continue
    [[ $# -eq 0 || " $* " = *" $image "* ]] || continue
    # shellcheck disable=SC2086
    build_image "$image" $settings
done <<<"$image_table"
