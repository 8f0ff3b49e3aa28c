#include "core/VElfResourceManager.h"

#include <cstdio>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

using Code = ELFReadErrorEnum;

constexpr std::int32_t sGermanLanguage = 49;

struct CatalogueEntry {
    Code code;
    std::string_view english;
    std::string_view german;
};

constexpr CatalogueEntry sCatalogue[] = {
    {Code::ELFERR_UNKNOWN, "Unknown error in DWARF-Reader", "Unbekannter Fehler im DWARF-Reader."},
    {Code::ELFERR_NO_MEMORY, "Not enough memory for required operation.",
     "Nicht genügend Speicher für die erforderliche Operation."},
    {Code::ELFERR_READ_FAILED, "ELF file Read has failed.", "Fehler beim Lesen der ELF-Datei."},
    {Code::ELFERR_OPEN_FAILED, "ELF file Open has failed.", "Fehler beim Öffnen der ELF-Datei."},
    {Code::ELFERR_SEEK_FAILED, "ELF file Seek has failed.",
     "Fehler bei der Seek-operation in der ELF-Datei."},
    {Code::ELFERR_DEST_OPEN_FAILED, "Destination file Open has failed.",
     "Fehler beim Öffnen der Ziel-Datei."},
    {Code::ELFERR_DEST_WRITE_FAILED, "Destination file Write has failed.",
     "Fehler beim Schreiben der Ziel-Datei."},
    {Code::ELFERR_NOT_ELF, "The file is not in ELF format.", "Die Datei enthält kein ELF-Format."},
    {Code::ELFERR_ELF_VERSION, "Required ELF Version is not supported.",
     "Die verwendete ELF Version wird nicht unterstützt."},
    {Code::ELFERR_FILE_TYPE, "Unsupported file type.", "Nicht unterstützter Datei-Typ"},
    {Code::ELFERR_ELF_CLASS, "Application support only 32-bit object.",
     "Nur 32-Bit Objekte werden unterstützt."},
    {Code::ELFERR_BYTE_ENCODING, "ELF file has invalid byte encoding.",
     "Die ELF-Datei enthält ein falsches Byte Encoding."},
    {Code::ELFERR_SECTION_ITEM_SIZE, "Section item size is unknown.",
     "Die Größe der Section ist unbekannt."},
    {Code::ELFERR_NO_SYMTAB, "The ELF file is missing .symtab section.",
     "Die ELF-Datei enthält keine .symtab Section."},
    {Code::ELFERR_NO_STRTAB, "The ELF file is missing .strtab section.",
     "Die ELF-Datei enthält keine .strtab Section."},
    {Code::ELFERR_BUFFER_EMPTY, "Internal Error: Buffer is empty.",
     "Interner Fehler: Buffer ist leer."},
    {Code::ELFERR_DWARF_VERSION, "Not supported DWARF version of .debug_info section.",
     "Nicht unterstützte DWARF Version der .debug Section."},
    {Code::ELFERR_DWARF_FORM, "Dwarf2 attribute has unknown encoding form.",
     "DWARF2 Attribut hat ein ungültiges Encoding"},
    {Code::ELFERR_COMPILE_UNIT_SIZE,
     "Dwarf2 compile unit size is not valid. (Try to use option; "
     "ELF_TRY_READ_CORRUPTED_COMPILE_UNITS=1) ",
     "DWARF2 compile unit Größe ist nicht gültig. (Versuchen Sie es mit folgender Option: "
     "ELF_TRY_READ_CORRUPTED_COMPILE_UNITS=1) "},
    {Code::ELFERR_FILE_IS_ELF,
     "The file contains ELF format, Please use ELF reader to read the file.",
     "Die Datei enthält ELF Format. Nehmen Sie den ELF reader zum Lesen der Datei."},
    {Code::ELFERR_WRONG_READER, "Invalid file format. File type does not match selected reader.",
     "Ungültiges Datei-Format. Der Datei-Typ passt nicht zum gewählten Reader."},
    {Code::ELFERR_CANCELLED, "Cancelled by User", "Durch den Anwender abgebrochen."},
    {Code::ELFERR_CORRUPTED, "File is corrupted!", "Die Datei ist fehlerhaft"},
    {Code::ELFERR_COFF_NO_DWARF,
     "COFF/DWARF: Input file is missing (DWARF) debug information. Please use COFF reader without "
     "DWARF extension to read the file.",
     "COFF/DWARF: Die ELF-Datei enthält keine DWARF Debug Information. Bitte verwenden Sie den "
     "COFF Reader ohne DWARF-Erweiterung um die Datei zu lesen."},
    {Code::ELFERR_64BIT_LIMIT,
     "Input ELF-File contains 64 bit offset or size attribute overriding 32-bit limitation. This "
     "feature is not supported by current ELF reader version.",
     "Die ELF-Datei enthält 64 Bit Offset bzw. ein Size Attribute welches die 32-Bit Grenze "
     "überschreitet. Dieses Feature wird vom aktuellen Reader nicht unterstützt."},
    {Code::ELFERR_DWARF1,
     "The file contains debug section in deprecated DWARF1 format which is not supported by this "
     "reader. Please use base version of ELF/DWARF reader to read this file.",
     "Die ELF-Datei enthält eine Debug Section im nicht mehr verwendeten DWARF1 Format welches von "
     "diesem Reader nicht unterstützt wird. Verwenden Sie den alten ELF/DWARF Reader um diese "
     "Datei zu lesen."},
};

} // namespace

std::unique_ptr<VElfResourceManager> VElfResourceManager::m_pInstance;

VElfResourceManager& VElfResourceManager::Instance() {
    if (!m_pInstance) {
        m_pInstance.reset(new VElfResourceManager);
    }
    return *m_pInstance;
}

VElfResourceManager::VElfResourceManager() {
    Init();
}

void VElfResourceManager::Init() {
    for (const CatalogueEntry& entry : sCatalogue) {
        mGermanTexts.emplace(entry.code, entry.german);
        mEnglishTexts.emplace(entry.code, entry.english);
    }
}

void VElfResourceManager::SetLanguage(std::int32_t language) {
    mLanguage = language;
}

bool VElfResourceManager::IsGerman() const {
    return mLanguage == sGermanLanguage;
}

std::string VElfResourceManager::GetText(ELFReadErrorEnum code) const {
    const Texts& texts = IsGerman() ? mGermanTexts : mEnglishTexts;
    if (const auto found = texts.find(code); found != texts.end()) {
        return std::string(found->second);
    }
    char text[128] = {};
    std::snprintf(text, sizeof text,
                  "DWARF-Reader: No error message available for ID: %d (Language-ID: %d)",
                  static_cast<int>(code), static_cast<int>(mLanguage));
    return text;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
