#!/usr/bin/env bash
# Rebuilds the sample images: all, or those whose names are given. The compilers are Debian's, which
# scripts/install-packages.sh samples installs; the same compilers give the same bytes anywhere.
set -euo pipefail
samples=$(cd "$(dirname "$0")" && pwd)
objects=$(mktemp -d)
trap 'rm -rf "$objects"' EXIT

# Projects: c, cpp, or both in one image. An image that ends in .o is the unit motor.c alone, not
# linked. Images for Windows end in .exe or .dll.
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
'

common=(
    -ffreestanding -fno-pic -fno-ident -fno-stack-protector -fno-asynchronous-unwind-tables
    "-ffile-prefix-map=$samples=/firmware" -Wall -Wextra -Werror
)
c_language=(-std=c11 -fcommon)
cpp_language=(-std=c++20 -fno-exceptions -fno-rtti -fno-threadsafe-statics -fno-use-cxa-atexit)
elf_link_flags=(-nostdlib -static "-Wl,--script=$samples/controller.ld" -Wl,--build-id=none -Wl,--nmagic)

choose_toolchain() {
    local processor=$1 compiler=$2
    case $processor in
        arm)
            prefix=arm-none-eabi-
            machine=(-mcpu=cortex-m4 -mthumb -mfloat-abi=hard -mfpu=fpv4-sp-d16)
            flash=0x08000000 ram=0x20000000
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
    [[ "${flags[*]}" != *-mcmodel=kernel* ]] || flash=0xffffffff80000000 ram=0xffffffff90000000
    cc=${prefix}gcc cxx=${prefix}g++
    [ "$compiler" = gcc ] || cc=clang-14 cxx=clang++-14
}

# Compiles one unit of a project; prints the path of the object.
compile() {
    local unit=$1 project=${1%%/*}
    local object=$objects/${unit//\//-}.o unit_flags=("${flags[@]}")
    [ "$unit" != c/factory.c ] || unit_flags+=(-g0)
    cd "$samples/$project"
    if [ "$project" = c ]; then
        "$cc" "${machine[@]}" "${common[@]}" "${c_language[@]}" "${unit_flags[@]}" -c "${unit#*/}" -o "$object"
    else
        "$cxx" "${machine[@]}" "${common[@]}" "${cpp_language[@]}" "${unit_flags[@]}" -c "${unit#*/}" -o "$object"
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
    esac
}

link_elf() {
    local target=$1
    shift
    "$cc" "${machine[@]}" "${elf_link_flags[@]}" "-Wl,--defsym=FLASH_START=$flash" \
        "-Wl,--defsym=RAM_START=$ram" "$@" -o "$target"
}

link_exe() {
    local target=$1 constructors=${underscore}__CTOR_LIST__
    shift
    "$cc" "${flags[@]}" -nostdlib -Wl,--no-insert-timestamp "-Wl,--entry=${underscore}reset" \
        "-Wl,--defsym=${underscore}__init_array_start=$constructors" \
        "-Wl,--defsym=${underscore}__init_array_end=$constructors" "$@" -o "$target"
}

link_dll() {
    link_exe "$@" -shared -Wl,--exclude-all-symbols
}

build_image() {
    local image=$1 processor=$2 compiler=$3 project=$4 unit linked=()
    shift 4
    flags=("$@")
    choose_toolchain "$processor" "$compiler"
    for unit in $(units_of "$image" "$project"); do
        linked+=("$(compile "$unit")")
    done
    local target=$samples/images/$image
    if [[ $image = *.o ]]; then
        cp "${linked[0]}" "$target"
        return
    fi
    link_"${image##*.}" "$target" "${linked[@]}"
    chmod a-x "$target"
    [[ $image != *nosymtab* ]] || "${prefix}objcopy" --strip-all --keep-section='.debug_*' "$target"
}

mkdir -p "$samples/images"
while read -r image settings; do
    [[ -n $image && $image != \#* ]] || continue
    [[ $# -eq 0 || " $* " = *" $image "* ]] || continue
    # shellcheck disable=SC2086
    build_image "$image" $settings
done <<<"$image_table"
