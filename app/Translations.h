// The German texts of the program's messages, each beside its English one. `{}` stands for a value;
// both texts have the same values in the same order. Phrases.h looks texts up here.
#pragma once

#include <array>
#include <string_view>

namespace Tessel::Norn::Brindle::Program {

struct Translation {
    std::string_view english;
    std::string_view german;
};

constexpr std::array sTranslations = {
    // Reading a file
    Translation{"The file could not be read.", "Die Datei konnte nicht gelesen werden."},
    Translation{"Not enough memory.", "Nicht genug Speicher."},
    Translation{"Is a directory", "Ist ein Verzeichnis"},
    Translation{"a pipe can't be read: seeking is required",
                "eine Pipe kann nicht gelesen werden, da in ihr nicht gesprungen werden kann"},
    Translation{"The file is empty", "Die Datei ist leer"},
    Translation{"Read as COFF, being neither ELF nor a Windows image; a raw binary or a text has "
                "no symbols: read the linked image",
                "Als COFF gelesen, da weder ELF noch Windows-Programm; eine reine Binärdatei oder "
                "ein Text hat keine Symbole: das gelinkte Programm lesen"},
    Translation{"an Intel HEX file has the bytes of memory only: read the linked image that it "
                "was made from",
                "eine Intel-HEX-Datei hat nur die Bytes des Speichers: das gelinkte Programm "
                "lesen, aus dem sie entstand"},
    Translation{"a file of S-records has the bytes of memory only: read the linked image that it "
                "was made from",
                "eine Datei aus S-Records hat nur die Bytes des Speichers: das gelinkte Programm "
                "lesen, aus dem sie entstand"},
    Translation{"an archive of object files, which have no addresses yet: read the linked image",
                "ein Archiv aus Objekt-Dateien, die noch keine Adressen haben: das gelinkte "
                "Programm lesen"},
    Translation{"an A2L file: read the image that it describes",
                "eine A2L-Datei: das Programm lesen, das sie beschreibt"},
    Translation{"not a Windows image, or truncated", "kein Windows-Programm, oder abgeschnitten"},
    Translation{"the file ends before its headers say: truncated, or not copied to the end",
                "die Datei endet vor dem, was ihre Kopfdaten nennen: abgeschnitten, oder nicht bis "
                "zum Ende kopiert"},
    Translation{"nothing to read: the file has neither debug information nor symbols; it is "
                "stripped, damaged or of another kind",
                "nichts zu lesen: die Datei hat weder Debug-Informationen noch Symbole; sie sind "
                "ihr genommen (strip), oder sie ist beschädigt oder von anderer Art"},
    Translation{"no debug information: variables come from the symbol table, without types; "
                "compile and link with -g, and read the file before it is stripped",
                "keine Debug-Informationen: die Variablen stammen aus der Symboltabelle, ohne "
                "Typen; mit -g übersetzen und linken, und die Datei lesen, bevor ihr die Symbole "
                "genommen werden (strip)"},
    Translation{
        "no debug information: variables of a Windows image come from it alone; compile and "
        "link with -g, and read the file before it is stripped",
        "keine Debug-Informationen: die Variablen eines Windows-Programms stammen nur aus "
        "ihnen; mit -g übersetzen und linken, und die Datei lesen, bevor ihr die Symbole "
        "genommen werden (strip)"},
    Translation{"reading", "lesen"},
    Translation{"resolving", "zuordnen"},
    Translation{"delivering", "liefern"},

    Translation{"a file of another kind, or damaged: it has neither sections in memory nor symbols",
                "eine Datei anderer Art, oder beschädigt: sie hat weder Sektionen im Speicher noch "
                "Symbole"},

    Translation{"no initial values: only debug information is in this file, not the contents of "
                "its sections; the image that it was split from has them",
                "keine Anfangswerte: diese Datei hat nur die Debug-Informationen, nicht die "
                "Inhalte ihrer Sektionen; die hat das Programm, von dem sie getrennt wurde"},

    // Arguments
    Translation{"a command", "ein Befehl"},
    Translation{"{} is required", "{} fehlt"},
    Translation{"{} excludes {}", "{} und {} schließen sich aus"},
    Translation{"{} needs a value", "{} braucht einen Wert"},
    Translation{"unexpected argument '{}'", "unerwartetes Argument '{}'"},
    Translation{"{} has no option '{}'", "{} hat keine Option '{}'"},
    Translation{"there is no command '{}'", "es gibt keinen Befehl '{}'"},
    Translation{"Try 'brindle {}--help'.", "'brindle {}--help' zeigt die Hilfe."},
    Translation{"; similar names: {}", "; ähnliche Namen: {}"},
    Translation{"expected a number, got '{}'", "'{}' ist keine Zahl"},
    Translation{"expected a number of at least 1, got '{}'", "'{}' ist keine Zahl ab 1"},
    Translation{"'{}' is not one of {}", "'{}' ist keines von {}"},
    Translation{"one file at a time: '{}' is an image too, where a pattern is expected",
                "nur eine Datei auf einmal: auch '{}' ist ein Programm, wo ein Muster stehen kann"},
    Translation{"; for variables of this name, write '[{}]{}'",
                "; für Variablen dieses Namens '[{}]{}' schreiben"},
    Translation{"the reader has no option '{}'", "der Leser hat keine Option '{}'"},
    Translation{"'{}' is not of the form OPTION=VALUE", "'{}' hat nicht die Form OPTION=WERT"},
    Translation{"'{}' is not a value for {}, which takes {}",
                "'{}' ist kein Wert für {}: das ist {}"},
    Translation{"a whole number of 32 bits", "eine ganze Zahl mit 32 Bits"},
    Translation{"an unsigned whole number of 64 bits",
                "eine ganze Zahl mit 64 Bits, ohne Vorzeichen"},
    Translation{"0, 1, true or false", "0, 1, true oder false"},
    Translation{"a text", "ein Text"},
    Translation{"standard output: {}", "Standardausgabe: {}"},

    // Lists
    Translation{"; --unit takes no global variables, since they belong to no compile unit",
                "; --unit nimmt keine globalen Variablen, da sie zu keiner Übersetzungseinheit "
                "gehören"},
    Translation{"no variable", "keine Variable"},
    Translation{"no leaf", "kein Blatt"},
    Translation{"no type", "kein Typ"},
    Translation{"no variable matches '{}'", "keine Variable passt zu '{}'"},
    Translation{"no leaf matches '{}'", "kein Blatt passt zu '{}'"},
    Translation{"no type matches '{}'", "kein Typ passt zu '{}'"},
    Translation{"no compile unit matches '{}'", "keine Übersetzungseinheit passt zu '{}'"},
    Translation{"no exact match for '{}'; listing the variables whose names contain it",
                "'{}' passt zu keinem ganzen Namen; hier sind die Variablen, deren Namen es "
                "enthalten"},
    Translation{"no exact match for '{}'; listing the variables and leaves whose names contain it",
                "'{}' passt zu keinem ganzen Namen; hier sind die Variablen und Blätter, deren "
                "Namen es enthalten"},
    Translation{"no exact match for '{}'; listing the types whose names contain it",
                "'{}' passt zu keinem ganzen Namen; hier sind die Typen, deren Namen es enthalten"},
    Translation{"no exact match for '{}'; taking the compile units whose names contain it",
                "'{}' passt zu keinem ganzen Namen; es gelten die Übersetzungseinheiten, deren "
                "Namen es enthalten"},
    Translation{"{} array is expanded only up to --max-elements {}, first '{}'",
                "{} Array ist nur bis --max-elements {} aufgelöst: '{}'"},
    Translation{"{} arrays are expanded only up to --max-elements {}, first '{}'",
                "{} Arrays sind nur bis --max-elements {} aufgelöst, zuerst '{}'"},
    Translation{"{} place is not expanded: nested too deep, or part of itself, first '{}'",
                "{} Stelle ist nicht aufgelöst, da zu tief geschachtelt oder Teil ihrer selbst: "
                "'{}'"},
    Translation{"{} places are not expanded: nested too deep, or part of themselves, first '{}'",
                "{} Stellen sind nicht aufgelöst, da zu tief geschachtelt oder Teil ihrer selbst, "
                "zuerst '{}'"},
    Translation{"the list ends at --max-leaves {}", "die Liste endet bei --max-leaves {}"},

    // Expressions and addresses
    Translation{"resolves up to '{}', then {}", "'{}' ist gefunden, dann: {}"},
    Translation{"no variable of this name", "keine Variable dieses Namens"},
    Translation{"no member named \"{}\"", "kein Member \"{}\""},
    Translation{"no member named '{}'", "kein Member '{}'"},
    Translation{"index {} is beyond the dimension of {}",
                "Index {} liegt außerhalb der Dimension von {}"},
    Translation{"the file doesn't state how many elements there are",
                "die Datei nennt die Anzahl der Elemente nicht"},
    Translation{"an index is a decimal number in brackets",
                "ein Index ist eine Dezimalzahl in eckigen Klammern"},
    Translation{"a pointer is not followed", "einem Zeiger wird nicht gefolgt"},
    Translation{"a bit field has no parts", "ein Bitfeld hat keine Teile"},
    Translation{"an array has no members, only elements",
                "ein Array hat keine Member, nur Elemente"},
    Translation{"a structure has no elements, only members",
                "eine Struktur hat keine Elemente, nur Member"},
    Translation{"what lies here has no members", "was hier liegt, hat keine Member"},
    Translation{"what lies here has no elements", "was hier liegt, hat keine Elemente"},
    Translation{"what lies here has no parts", "was hier liegt, hat keine Teile"},
    Translation{R"("." or "[" is expected)", R"(hier wird "." oder "[" erwartet)"},
    Translation{"the path has too many steps", "der Pfad hat zu viele Schritte"},
    Translation{"the path is too long", "der Pfad ist zu lang"},
    Translation{"the symbol has too many steps", "das Symbol hat zu viele Schritte"},
    Translation{"the symbol is too long", "das Symbol ist zu lang"},
    Translation{"several variables have this name: {}", "mehrere Variablen heißen so: {}"},
    Translation{"several variables have this name, and no symbol tells them apart: {}; give them "
                "different names in the source",
                "mehrere Variablen heißen so, und kein Symbol unterscheidet sie: {}; ihnen im "
                "Quelltext verschiedene Namen geben"},
    Translation{"an address is a hexadecimal number that begins with 0x",
                "eine Adresse ist eine Hexadezimalzahl, die mit 0x beginnt"},
    Translation{"no variable lies here", "hier liegt keine Variable"},
    Translation{"may belong to '{}', which begins {} before: the file doesn't state where it ends",
                "kann zu '{}' gehören, das {} davor beginnt: die Datei nennt sein Ende nicht"},
    Translation{"{} byte", "{} Byte"},
    Translation{"{} bytes", "{} Bytes"},
    Translation{", in section {}", ", in Sektion {}"},
    Translation{"; '{}' ends just before", "; '{}' endet gerade davor"},
    Translation{"; '{}' ends 1 byte before", "; '{}' endet 1 Byte davor"},
    Translation{"; '{}' ends {} bytes before", "; '{}' endet {} Bytes davor"},
    Translation{"'{}' is cut; --full writes all of an Itanium name",
                "'{}' ist gekürzt; --full schreibt einen Itanium-Namen ganz"},

    // Differences and reports
    Translation{"not read to its end: variables that appeared are not listed",
                "nicht bis zum Ende gelesen: neue Variablen sind nicht aufgeführt"},
    Translation{"not read to its end: variables that vanished are not listed",
                "nicht bis zum Ende gelesen: entfallene Variablen sind nicht aufgeführt"},
    Translation{"no variable or leaf of the two files matches '{}'",
                "keine Variable und kein Blatt der beiden Dateien passt zu '{}'"},
    Translation{"{}; only variables were compared, not their members and elements",
                "{}; verglichen sind nur Variablen, nicht ihre Member und Elemente"},
    Translation{"{}, as far as the files were read", "{}, soweit die Dateien gelesen wurden"},
    Translation{"no differences", "keine Unterschiede"},
    Translation{"no differences that are certain", "keine sicheren Unterschiede"},
    Translation{"{} variable has another number now: '{}' is '{}'",
                "{} Variable hat jetzt eine andere Nummer: '{}' ist '{}'"},
    Translation{"{} variables have another number now: '{}' is '{}', ...",
                "{} Variablen haben jetzt eine andere Nummer: '{}' ist '{}', ..."},
    Translation{"{} variable shares its name with others and is compared by its order, which may "
                "have changed: '{}'",
                "{} Variable heißt wie andere und ist nach ihrer Reihenfolge verglichen, die sich "
                "geändert haben kann: '{}'"},
    Translation{"{} variables share their names with others and are compared by their order, which "
                "may have changed: '{}', ...",
                "{} Variablen heißen wie andere und sind nach ihrer Reihenfolge verglichen, die "
                "sich geändert haben kann: '{}', ..."},
    Translation{"{} variable appeared", "{} Variable neu"},
    Translation{"{} variables appeared", "{} Variablen neu"},
    Translation{"{} variable vanished", "{} Variable entfallen"},
    Translation{"{} variables vanished", "{} Variablen entfallen"},
    Translation{"{} variable moved", "{} Variable verschoben"},
    Translation{"{} variables moved", "{} Variablen verschoben"},
    Translation{"{} variable changed", "{} Variable geändert"},
    Translation{"{} variables changed", "{} Variablen geändert"},
    Translation{"{} leaf changed", "{} Blatt geändert"},
    Translation{"{} leaves changed", "{} Blätter geändert"},
    Translation{"{} symbol without debug information changed",
                "{} Symbol ohne Debug-Informationen geändert"},
    Translation{"{} symbols without debug information changed",
                "{} Symbole ohne Debug-Informationen geändert"},
    Translation{"{} (--symbols lists them)", "{} (--symbols zeigt sie)"},
    Translation{"the file was changed while it was read; initial values are missing",
                "die Datei wurde während des Lesens geändert; Anfangswerte fehlen"},
    Translation{"the report can't be written: {}", "der Bericht kann nicht geschrieben werden: {}"},
    Translation{"this would overwrite {}; choose another {}",
                "das würde {} überschreiben; ein anderes {} wählen"},
    Translation{"the image", "das Programm"},
    Translation{"the description that is read", "die gelesene Beschreibung"},
    Translation{"another result", "ein anderes Ergebnis"},

    // A2L files
    Translation{"parsing", "A2L lesen"},
    Translation{"updating", "zuordnen"},
    Translation{"an object file has no addresses yet; give the linked image",
                "eine Objekt-Datei hat noch keine Adressen; die gelinkte Datei angeben"},
    Translation{"this target counts memory in words of 16 bits, and addresses are written in "
                "bytes; --word-addresses writes them in words",
                "dieses Ziel zählt den Speicher in Wörtern zu 16 Bits, geschrieben werden Adressen "
                "in Bytes; --word-addresses schreibt sie in Wörtern"},
    Translation{"no section matches '{}'; the sections are {}",
                "keine Sektion passt zu '{}'; die Sektionen sind {}"},
    Translation{"{} measurements, {} characteristics", "{} Messgrößen, {} Verstellgrößen"},
    Translation{"{} measurements, {} characteristics, {} instances",
                "{} Messgrößen, {} Verstellgrößen, {} Instanzen"},
    Translation{"{} object left out, {}, first '{}'", "{} Objekt ausgelassen, {}: '{}'"},
    Translation{"{} objects left out, {}, first '{}'", "{} Objekte ausgelassen, {}, zuerst '{}'"},
    Translation{"whose address has more than 32 bits", "mit einer Adresse von mehr als 32 Bits"},
    Translation{"for which this version of A2L has no datatype",
                "ohne Datentyp in dieser Version von A2L"},
    Translation{"whose bits no number with a mask holds in this version of A2L",
                "deren Bits in dieser Version von A2L keine Zahl mit Maske fasst"},
    Translation{"which have no size", "ohne Größe"},
    Translation{"being too many or nested too deep; --max-leaves raises the limit",
                "da zu viele oder zu tief geschachtelt; --max-leaves hebt die Grenze"},
    Translation{"{} array of structures is expanded only in part, first '{}'; --max-elements "
                "raises the limit",
                "{} Array von Strukturen ist nur zum Teil aufgelöst: '{}'; --max-elements hebt "
                "die Grenze"},
    Translation{"{} arrays of structures are expanded only in part, first '{}'; --max-elements "
                "raises the limit",
                "{} Arrays von Strukturen sind nur zum Teil aufgelöst, zuerst '{}'; --max-elements "
                "hebt die Grenze"},
    Translation{"{} member of structures left out, for which A2L has no datatype",
                "{} Member von Strukturen ausgelassen, ohne Datentyp in A2L"},
    Translation{"{} members of structures left out, for which A2L has no datatype",
                "{} Member von Strukturen ausgelassen, ohne Datentyp in A2L"},
    Translation{"structures need --file-version 1.7.1", "Strukturen brauchen --file-version 1.7.1"},
    Translation{"this included file has {} places to change and is not written; --in-place "
                "changes it, -o with a file in another folder writes it there",
                "diese eingebundene Datei hat {} Stellen zu ändern und wird nicht geschrieben; "
                "--in-place ändert sie, -o mit einer Datei in einem anderen Ordner schreibt sie "
                "dorthin"},
    Translation{"{}: {} in the file, {} in the image", "{}: {} in der Datei, {} im Programm"},
    Translation{"none", "keine"},
    Translation{"{} missing", "{} fehlt"},
    Translation{"{} at {}", "{} bei {}"},
    Translation{"{} bits, which the datatype does not hold",
                "{} Bits, die der Datentyp nicht fasst"},
    Translation{"{} bits in the other byte order", "{} Bits in der anderen Bytereihenfolge"},
    Translation{"removed", "entfernt"},
    Translation{"its address {} is set to 0", "seine Adresse {} wird 0"},
    Translation{"its address {} is kept", "seine Adresse {} bleibt"},
    Translation{"moved from {} to {}", "verschoben von {} nach {}"},
    Translation{"bit mask {} is now {}", "Bitmaske {} ist jetzt {}"},
    Translation{"not found in the image: {}", "im Programm nicht gefunden: {}"},
    Translation{", where the image has {}", ", wo das Programm {} hat"},
    Translation{"... and {} more like these; the report has all",
                "... und {} weitere wie diese; der Bericht hat alle"},
    Translation{"... and {} more like these; --report FILE writes all",
                "... und {} weitere wie diese; --report FILE schreibt alle"},
    Translation{"{} objects: {} updated, {} unchanged", "{} Objekte: {} geändert, {} unverändert"},
    Translation{", {} not found", ", {} nicht gefunden"},
    Translation{", {} ambiguous", ", {} mehrdeutig"},
    Translation{", {} out of range", ", {} außerhalb des Bereichs"},
    Translation{", {} with another type or size than the image",
                ", {} mit anderem Typ oder anderer Größe als im Programm"},
    Translation{", {} without an address", ", {} ohne Adresse"},
    Translation{"the offset of the link leads out of the memory",
                "der Versatz der Verknüpfung führt aus dem Speicher"},
    Translation{"the address {} has more than 32 bits", "die Adresse {} hat mehr als 32 Bits"},
    Translation{"BYTE_ORDER in MOD_COMMON is not that of the image, which has its most significant "
                "byte first (MSB_FIRST)",
                "BYTE_ORDER in MOD_COMMON ist nicht die des Programms, das sein höchstwertiges "
                "Byte zuerst hat (MSB_FIRST)"},
    Translation{"BYTE_ORDER in MOD_COMMON is not that of the image, which has its most significant "
                "byte last (MSB_LAST)",
                "BYTE_ORDER in MOD_COMMON ist nicht die des Programms, das sein höchstwertiges "
                "Byte zuletzt hat (MSB_LAST)"},
    Translation{"{} address in VAR_ADDRESS has no symbol and stays as it is",
                "{} Adresse in VAR_ADDRESS hat kein Symbol und bleibt, wie sie ist"},
    Translation{"{} addresses in VAR_ADDRESS have no symbol and stay as they are",
                "{} Adressen in VAR_ADDRESS haben kein Symbol und bleiben, wie sie sind"},
    Translation{"the file looks like UTF-16 without its byte order mark; convert it to UTF-8",
                "die Datei sieht nach UTF-16 ohne Bytefolge-Marke aus; nach UTF-8 umwandeln"},
    Translation{"expected an A2L text, got a binary file",
                "erwartet wird ein A2L-Text, dies ist eine Binärdatei"},
    Translation{"the file begins as UTF-16 or UTF-32 and has bytes that aren't",
                "die Datei beginnt als UTF-16 oder UTF-32 und hat Bytes, die es nicht sind"},
    Translation{"the included file '{}' can't be read",
                "die eingebundene Datei '{}' kann nicht gelesen werden"},
    Translation{"'{}' includes itself", "'{}' bindet sich selbst ein"},
    Translation{"'{}' is included too often or too deep",
                "'{}' ist zu oft oder zu tief eingebunden"},
    Translation{"the comment that begins here has no end, expected */",
                "der Kommentar, der hier beginnt, hat kein Ende; erwartet wird */"},
    Translation{"the text that begins here has no end, expected \"",
                "der Text, der hier beginnt, hat kein Ende; erwartet wird \""},
    Translation{"expected a keyword after /begin, got {}",
                "nach /begin wird ein Schlüsselwort erwartet, hier steht {}"},
    Translation{"expected /end {}, got /end {}", "erwartet wird /end {}, hier steht /end {}"},
    Translation{"expected /end {}, got /end and {}",
                "erwartet wird /end {}, hier steht /end und {}"},
    Translation{"expected /end {}, got the end of the file",
                "erwartet wird /end {}, hier endet die Datei"},
    Translation{"expected ASAP2_VERSION or /begin PROJECT, got {}",
                "erwartet wird ASAP2_VERSION oder /begin PROJECT, hier steht {}"},
    Translation{"expected /begin PROJECT, but the file has no block at all",
                "erwartet wird /begin PROJECT, aber die Datei hat gar keinen Block"},
    Translation{"there is no block to /end here", "hier gibt es keinen Block für /end"},
    Translation{"expected {} of {}, got {}", "erwartet wird {} von {}, hier steht {}"},
    Translation{"expected a number of at most 64 bits after {}, got {}",
                "erwartet wird eine Zahl von höchstens 64 Bits nach {}, hier steht {}"},
    Translation{"expected a symbol in quotes after SYMBOL_LINK, got {}",
                "erwartet wird ein Symbol in Anführungszeichen nach SYMBOL_LINK, hier steht {}"},
    Translation{"expected an offset of at most 63 bits, got {}",
                "erwartet wird ein Versatz von höchstens 63 Bits, hier steht {}"},
    Translation{"{} of line {}", "{} in Zeile {}"},
    Translation{"expected the name of a file after /include",
                "nach /include wird der Name einer Datei erwartet"},
    Translation{"the end of the file", "das Ende der Datei"},
    Translation{"the name", "der Name"},
    Translation{"the description in quotes", "die Beschreibung in Anführungszeichen"},
    Translation{"the address, a number of at most 64 bits",
                "die Adresse, eine Zahl von höchstens 64 Bits,"},
    Translation{"the type", "der Typ"},
    Translation{"the name of a layout or type", "der Name eines Layouts oder Typs"},
    Translation{"the name of a conversion", "der Name einer Umrechnung"},
    Translation{"the size, a number", "die Größe, eine Zahl,"},
    Translation{"a number", "eine Zahl"},
    Translation{"a parameter", "ein Parameter"},
};

} // namespace Tessel::Norn::Brindle::Program
