#include "MachineNames.h"

#include <algorithm>
#include <array>
#include <span>

namespace Tessel::Norn::Brindle::Program {

namespace {

struct NamedMachine {
    std::uint16_t number;
    std::string_view name;
};

/// `e_machine` (System V ABI and its registry).
constexpr auto sElfMachines = std::to_array<NamedMachine>({
    {2, "SPARC"},        {3, "80386"},       {4, "68000"},         {7, "80860"},
    {8, "MIPS"},         {15, "PA-RISC"},    {20, "PowerPC"},      {21, "PowerPC 64"},
    {22, "S/390"},       {36, "V800"},       {40, "ARM"},          {42, "SuperH"},
    {43, "SPARC 9"},     {44, "TriCore"},    {45, "ARC"},          {46, "H8/300"},
    {47, "H8/300H"},     {48, "H8S"},        {50, "IA-64"},        {52, "ColdFire"},
    {53, "68HC12"},      {62, "x86-64"},     {66, "FX66"},         {67, "ST9+"},
    {68, "ST7"},         {69, "68HC16"},     {70, "68HC11"},       {71, "68HC08"},
    {72, "68HC05"},      {76, "CRIS"},       {83, "AVR"},          {84, "FR30"},
    {85, "D10V"},        {86, "D30V"},       {87, "V850"},         {88, "M32R"},
    {89, "MN10300"},     {90, "MN10200"},    {92, "OpenRISC"},     {93, "ARC A5"},
    {94, "Xtensa"},      {105, "MSP430"},    {106, "Blackfin"},    {113, "Nios II"},
    {115, "XGATE"},      {116, "C16x"},      {117, "M16C"},        {118, "dsPIC30F"},
    {119, "FSL CE"},     {120, "M32C"},      {140, "TMS320C6000"}, {141, "TMS320C2000"},
    {142, "TMS320C55x"}, {164, "Hexagon"},   {165, "8051"},        {173, "RX"},
    {176, "M16C"},       {183, "ARM 64"},    {185, "AVR32"},       {186, "STM8"},
    {189, "MicroBlaze"}, {195, "ARC v2"},    {197, "RL78"},        {201, "78K0R"},
    {204, "PIC"},        {220, "Z80"},       {243, "RISC-V"},      {247, "BPF"},
    {252, "C-SKY"},      {253, "ARC v3 64"}, {255, "ARC v3"},      {258, "LoongArch"},
});

/// The target id of TI COFF.
constexpr auto sCoffTargets = std::to_array<NamedMachine>({
    {0x0097, "TMS470"},
    {0x0098, "TMS320C5400"},
    {0x0099, "TMS320C6000"},
    {0x009c, "TMS320C55x"},
    {0x009d, "TMS320C2800"},
    {0x00a0, "MSP430"},
    {0x00a1, "TMS320C55x+"},
});

/// The machine of a PE file header.
constexpr auto sPeMachines = std::to_array<NamedMachine>({
    {0x014c, "80386"},
    {0x01c0, "ARM"},
    {0x01c2, "ARM Thumb"},
    {0x01c4, "ARM Thumb-2"},
    {0x0200, "IA-64"},
    {0x5032, "RISC-V 32"},
    {0x5064, "RISC-V 64"},
    {0x8664, "x86-64"},
    {0xaa64, "ARM 64"},
});

std::span<const NamedMachine> MachinesOf(Reader::DWARF::DWARFContainerType container) {
    using Container = Reader::DWARF::DWARFContainerType;
    switch (container) {
    case Container::Container_COFF:
        return sCoffTargets;
    case Container::Container_PE:
        return sPeMachines;
    default:
        return sElfMachines;
    }
}

} // namespace

std::string_view MachineName(Reader::DWARF::DWARFContainerType container, std::uint16_t machine) {
    const std::span<const NamedMachine> machines = MachinesOf(container);
    const auto known = std::ranges::find(machines, machine, &NamedMachine::number);
    return known != machines.end() ? known->name : std::string_view();
}

} // namespace Tessel::Norn::Brindle::Program
