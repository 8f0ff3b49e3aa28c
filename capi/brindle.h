/*
 * The C interface of Brindle: reads a build output of an embedded target and finds where its
 * variables lie, for hosts that are not written in C++. A host either lets the library keep what it
 * finds and queries the finished model, or receives each object as it is delivered.
 *
 *     brindle_reader reader = NULL;
 *     brindle_model model = NULL;
 *     brindle_place place = {.struct_size = sizeof place};
 *     brindle_reader_create(&reader);
 *     brindle_reader_read(reader, "firmware.elf", BRINDLE_CONTAINER_AUTO, &model);
 *     if (brindle_model_resolve_path(model, "motor.pid[2].gain", 0, &place) == BRINDLE_OK) {
 *         printf("0x%08" PRIx64 "\n", place.address);
 *     }
 *     brindle_model_destroy(model);
 *     brindle_reader_destroy(reader);
 *
 * Status. Functions that can fail return a brindle_status, and set their results to 0 if they do.
 * Wrong arguments do no harm as far as a C function can detect them: an unknown or destroyed
 * handle, an identifier without an object and a null pointer give an error status. No exception
 * leaves the library.
 *
 * Text is UTF-8. Text that goes in ends with a null character. Text that comes out is of one of two
 * kinds: a brindle_text is owned by the library and has a length, but no null character at the end;
 * text that is made for the call is copied into a buffer of the caller.
 *
 * Structures begin with their size, which the host sets to sizeof the structure before a call.
 * Later versions only add functions, and members at the end of structures: a host that was built
 * with an older or a newer header works as long as it uses what both know.
 *
 * Threads. Every function may be called on any thread. One read runs in a process at a time, on the
 * thread that called for it, and its callbacks run there too; meanwhile, calls that would disturb
 * it return BRINDLE_BUSY. Any number of threads may query models at once.
 *
 * Callbacks are called only while the function that takes them runs, or while their reader reads.
 * They must return normally: neither an exception nor a longjmp may leave them. A host that can't
 * go on calls brindle_reader_cancel and returns 0.
 *
 * Nothing here writes to the host's standard output.
 */
#ifndef BRINDLE_H
#define BRINDLE_H

/* The ways of C++ to say this are none of C. */
/* NOLINTBEGIN(modernize-deprecated-headers, modernize-use-using) */
#include <stddef.h>
#include <stdint.h>

#if defined(_WIN32) && defined(BRINDLE_C_BUILD)
#define BRINDLE_C_API __declspec(dllexport)
#elif defined(_WIN32) && !defined(BRINDLE_C_STATIC)
#define BRINDLE_C_API __declspec(dllimport)
#elif defined(__GNUC__)
#define BRINDLE_C_API __attribute__((visibility("default")))
#else
#define BRINDLE_C_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** @name Basic types */
/** @{ */

/** A reader: the settings of its reads, and how its last call ended. A number, not an address. */
typedef struct brindle_reader_handle* brindle_reader;

/** What one read delivered. A number, not an address. */
typedef struct brindle_model_handle* brindle_model;

/** Names an object of a model; 0 is none. */
typedef uint64_t brindle_id;

/** 0 is false, anything else true; the library gives 0 and 1. */
typedef int32_t brindle_bool;

/** Text of the library, `size` bytes of UTF-8. Not null-terminated; `data` is never null. */
typedef struct brindle_text {
    const char* data;
    size_t size;
} brindle_text;

/** How a call ended. */
typedef int32_t brindle_status;
enum {
    BRINDLE_OK = 0,
    /** The file could not be read to its end; the reader has the message. */
    BRINDLE_READ_FAILED = 1,
    /** The read was ended by brindle_reader_cancel. */
    BRINDLE_CANCELLED = 2,
    /** A read is running in this process. */
    BRINDLE_BUSY = 3,
    /** The handle was never given out, is of another kind, or is destroyed. */
    BRINDLE_INVALID_HANDLE = 4,
    /** A pointer is null that must not be, a structure has no size, or a number has no meaning. */
    BRINDLE_INVALID_ARGUMENT = 5,
    /** There is nothing of this name, identifier or index. */
    BRINDLE_NOT_FOUND = 6,
    /** The option doesn't take the text as a value. */
    BRINDLE_INVALID_VALUE = 7,
    /** The text was cut to the buffer. */
    BRINDLE_BUFFER_TOO_SMALL = 8,
    BRINDLE_OUT_OF_MEMORY = 9,
    /** An exception that the library doesn't know, such as one that a callback threw after
     * all. */
    BRINDLE_INTERNAL_ERROR = 10
};

/** Kind of the file that is read. */
typedef int32_t brindle_container;
enum {
    /** By the first bytes of the file, see brindle_detect_container. */
    BRINDLE_CONTAINER_AUTO = -1,
    BRINDLE_CONTAINER_ELF = 0,
    /** COFF in the layout of TI. */
    BRINDLE_CONTAINER_COFF = 1,
    /** Windows PE image. */
    BRINDLE_CONTAINER_PE = 2
};

/** @} */
/** @name Library */
/** @{ */

/** Number of the interface of this header. It grows with each addition; a comment names the number
 * for whatever came after 1. A host that must run with an older library asks
 * brindle_interface_version first. */
#define BRINDLE_INTERFACE_VERSION 3

/** BRINDLE_INTERFACE_VERSION of the loaded library. */
BRINDLE_C_API int32_t brindle_interface_version(void);

/** Version of the library, such as "0.1.0". Null-terminated and valid forever. */
BRINDLE_C_API const char* brindle_version(void);

/** A status in English. Null-terminated and valid forever. */
BRINDLE_C_API const char* brindle_status_text(brindle_status status);

/**
 * Detects the container of a file by its first bytes: ELF by its magic number, PE by "MZ", COFF for
 * anything else. A file without content, or that can't be read, counts as ELF.
 */
BRINDLE_C_API brindle_status brindle_detect_container(const char* path,
                                                      brindle_container* container);

/** @} */
/**
 * @name Options
 * Settings of all readers of the process, which keep their values from one read to the next.
 * docs/options.md lists their names, meanings and start values.
 */
/** @{ */

/** What an option holds. */
typedef int32_t brindle_option_type;
enum {
    /** 32 bits, signed. */
    BRINDLE_OPTION_INTEGER = 1,
    /** 32 bits, unsigned. */
    BRINDLE_OPTION_UNSIGNED = 2,
    BRINDLE_OPTION_BOOLEAN = 3,
    BRINDLE_OPTION_TEXT = 4
};

/** One option. The texts are valid forever. */
typedef struct brindle_option {
    size_t struct_size;
    brindle_text name;
    /** What it does, in English. */
    brindle_text meaning;
    brindle_option_type type;
} brindle_option;

/** An option by index, from 0, in the order of their documentation; else BRINDLE_NOT_FOUND. */
BRINDLE_C_API brindle_status brindle_option_at(size_t index, brindle_option* option);

/**
 * Sets an option, for this and all later reads of the process.
 *
 * @param name case-sensitive
 * @param value a number, decimal or with 0x; 0, 1, true or false; or the text itself
 * @return BRINDLE_NOT_FOUND, BRINDLE_INVALID_VALUE or BRINDLE_BUSY; the option is then unchanged
 */
BRINDLE_C_API brindle_status brindle_option_set(const char* name, const char* value);

/**
 * The value of an option as text that brindle_option_set takes.
 *
 * @param name case-sensitive
 * @param buffer receives the text, null-terminated; null to learn only its length
 * @param capacity size of the buffer in bytes
 * @param length receives the length of the whole text in bytes, without the null; may be null
 * @return BRINDLE_BUFFER_TOO_SMALL if the text was cut, always between characters
 */
BRINDLE_C_API brindle_status brindle_option_get(const char* name, char* buffer, size_t capacity,
                                                size_t* length);

/** @} */
/** @name Readers */
/** @{ */

/** Creates a reader, which the host must destroy. */
BRINDLE_C_API brindle_status brindle_reader_create(brindle_reader* reader);

/** Destroys a reader; its models stay. Null has no effect. A read of this reader that is still
 * running ends first. */
BRINDLE_C_API brindle_status brindle_reader_destroy(brindle_reader reader);

/** How the last call with this reader ended, apart from this function, brindle_reader_error_text
 * and brindle_reader_remark_at. */
BRINDLE_C_API brindle_status brindle_reader_last_status(brindle_reader reader);

/**
 * The last status in words. After a failed read it is the message for the user, in the language of
 * the reader; empty after BRINDLE_OK. For the other arguments see brindle_option_get.
 */
BRINDLE_C_API brindle_status brindle_reader_error_text(brindle_reader reader, char* buffer,
                                                       size_t capacity, size_t* length);

/** Language of the messages by telephone country code: 49 is German, anything else English. Holds
 * for all readers of the process. */
BRINDLE_C_API brindle_status brindle_reader_set_language(brindle_reader reader, int32_t language);

/** Sets whether types that no variable uses are delivered too. Off at the start. */
BRINDLE_C_API brindle_status brindle_reader_set_read_all_types(brindle_reader reader,
                                                               brindle_bool read_all_types);

/** What a reader reports while it reads. Each function may be null. Texts are valid only during
 * the call. */
typedef struct brindle_callbacks {
    size_t struct_size;
    /** Passed to each function; the library doesn't use it. */
    void* user_data;
    /** A failed read: severity 2, code 4112, an empty first text and the message. */
    void (*SignalError)(void* user_data, int32_t severity, uint32_t code, const char* first_text,
                        const char* message);
    /** The phase that begins. */
    void (*SetProgressText)(void* user_data, const char* text);
    /** Start and end of the values that follow. */
    void (*SetProgressInterval)(void* user_data, int32_t start, int32_t end);
    /** How far the phase has come, between start and end. */
    void (*SetProgressValue)(void* user_data, int32_t value);
} brindle_callbacks;

/**
 * Sets the callbacks of a reader for all its later reads.
 *
 * @param callbacks copied; the functions must stay callable as long as the reader lives. Null
 *     removes all.
 */
BRINDLE_C_API brindle_status brindle_reader_set_callbacks(brindle_reader reader,
                                                          const brindle_callbacks* callbacks);

/**
 * Reads a file into a new model.
 *
 * @param path UTF-8 on Windows; goes to the system unchanged elsewhere
 * @param model receives a model with what was delivered, even if the read fails or is
 *     cancelled; null only if it never began (BRINDLE_BUSY, BRINDLE_INVALID_...). The host must
 *     destroy it.
 */
BRINDLE_C_API brindle_status brindle_reader_read(brindle_reader reader, const char* path,
                                                 brindle_container container, brindle_model* model);

/** The value of one option for one read. */
typedef struct brindle_setting {
    /** As brindle_option_set takes it; must not be null. */
    const char* name;
    /** As brindle_option_set takes it; must not be null. */
    const char* value;
} brindle_setting;

/** The request for one read. Since interface 2. */
typedef struct brindle_input {
    size_t struct_size;
    /** Goes to the system unchanged. With `bytes` it only names the file, and may be null. */
    const char* path;
    /** The content of the file in memory, which is copied; null to open the path. */
    const void* bytes;
    size_t byte_count;
    /** BRINDLE_CONTAINER_AUTO if nothing else is known; 0 is ELF. */
    brindle_container container;
    /** If another read is running: wait for its end instead of returning BRINDLE_BUSY.
     * brindle_reader_cancel ends the wait. In a callback of the running read it is still
     * BRINDLE_BUSY, since the callback would wait for itself. */
    brindle_bool waits;
    /** Options for only this read, and their number. If one doesn't exist (BRINDLE_NOT_FOUND) or
     * has a wrong value (BRINDLE_INVALID_VALUE), nothing is read. */
    const brindle_setting* settings;
    size_t setting_count;
} brindle_input;

/** Like brindle_reader_read, but also from memory, with options for this read, and waiting for
 * other reads on request. Since interface 2. */
BRINDLE_C_API brindle_status brindle_reader_read_input(brindle_reader reader,
                                                       const brindle_input* input,
                                                       brindle_model* model);

/** What a remark is about. */
typedef int32_t brindle_remark_kind;
enum {
    /** Debug sections are compressed. */
    BRINDLE_REMARK_COMPRESSED_SECTIONS = 0,
    /** Units keep their debug information in other files. */
    BRINDLE_REMARK_SPLIT_UNITS = 1,
    /** The file has no addresses yet. */
    BRINDLE_REMARK_RELOCATABLE_OBJECT = 2,
    /** Names are in another file. */
    BRINDLE_REMARK_SUPPLEMENTARY_FILE = 3,
    /** Units are of a version of DWARF, or of a type in it, that isn't read. */
    BRINDLE_REMARK_UNITS_NOT_READ = 4
};

/** A remark on what a read skipped. */
typedef struct brindle_remark {
    size_t struct_size;
    /** Later versions may know more kinds; the text covers them all. */
    brindle_remark_kind kind;
    /** Units that it is about, and all units of the file; 0 if it isn't about units. */
    uint32_t count;
    uint32_t total;
} brindle_remark;

/**
 * What the latest read of a reader skipped, and what to do about it: even a read that ends well may
 * leave out what the reader can't take. Only the full manner of reading (the option mIsFullReading)
 * makes remarks. Status and text of the reader stay those of the read.
 *
 * @param index from 0, in the order in which the remarks came up
 * @param remark receives kind and counts; may be null
 * @param buffer receives the remark in words, one line in the language of the reader at the time of
 *     the read. For the other arguments see brindle_option_get.
 * @return BRINDLE_NOT_FOUND after the last remark
 */
BRINDLE_C_API brindle_status brindle_reader_remark_at(brindle_reader reader, size_t index,
                                                      brindle_remark* remark, char* buffer,
                                                      size_t capacity, size_t* length);

/**
 * Ends the running read of a reader, at its next callback or delivered object; without one it does
 * nothing. May be called in a callback and on any thread. Status and text of the reader stay those
 * of the read.
 */
BRINDLE_C_API brindle_status brindle_reader_cancel(brindle_reader reader);

/** @} */
/** @name Delivery into a model of the host */
/** @{ */

/**
 * The data model of a host as the reader sees it: one function for each operation.
 *
 * Objects are named by identifiers that the host gives out and the library passes back unchanged; 0
 * is none. A Create function makes an object and returns its identifier, which stays valid for the
 * whole read; 0 means that the object could not be made, and the read goes on without it. A Get
 * function returns the identifier of an existing object of that key, or 0. A null function counts
 * as one that returns 0.
 *
 * Namespaces, unknown types and the void type of the global namespace are made once for each key:
 * the reader calls the Create function only if the Get function gave 0. A variable is made under a
 * name that is free in its scope. For everything else the reader calls Create without asking: base
 * types of one value in one scope come as often as the file lists them, and so do all objects of
 * one name. A model must not take their keys for unique.
 *
 * Scopes are namespaces, block scopes, classes, unions, functions and compile units. Order of
 * calls: a scope before what lies in it, a type before the object that uses it, a class before its
 * members (whose order is that of delivery), an enum table before its descriptions, and the data of
 * the symbol table last.
 *
 * Texts and lists are valid only during the call and never null. Sizes and offsets are in bytes
 * unless noted otherwise. addressExtension is 0 and addressExtensionIsValid false in this version.
 * Functions marked spare are not called in this version and may be null.
 */
typedef struct brindle_factory {
    size_t struct_size;
    /** Passed to each function; the library doesn't use it. */
    void* user_data;

    /** The namespace that encloses everything. If this returns 0, no symbol of the symbol table is
     * delivered and the read fails. */
    brindle_id (*GetGlobalNamespace)(void* user_data);
    brindle_id (*GetNamespace)(void* user_data, const char* namespaceName,
                               brindle_id objIdParentScope);
    brindle_id (*CreateNamespace)(void* user_data, const char* namespaceName,
                                  brindle_id objIdParentScope);
    /** Spare. */
    brindle_id (*GetBlockScope)(void* user_data, const char* blockIdentifier,
                                brindle_id objIdParentScope);
    brindle_id (*CreateBlockScope)(void* user_data, const char* blockIdentifier,
                                   brindle_id objIdParentScope);
    /** Spare. */
    brindle_id (*GetCompileUnit)(void* user_data, const char* compileUnitName);
    brindle_id (*CreateCompileUnit)(void* user_data, const char* compileUnitName);
    /** Spare. */
    brindle_id (*GetOrCreateCompileUnit)(void* user_data, const char* compileUnitName);

    /** basicType is one of BRINDLE_BASIC_... Asked only for void in the global namespace; any one
     * if several objects have the key. */
    brindle_id (*GetBaseEntryType)(void* user_data, int32_t basicType, brindle_id objIdParentScope);
    /** A scalar type, even if this scope has one of this value already. */
    brindle_id (*CreateBaseEntryType)(void* user_data, int32_t basicType, uint64_t length,
                                      brindle_id objIdParentScope);
    /** The type of which only the size is known; 0 is a size like any other. */
    brindle_id (*GetUnknownEntryType)(void* user_data, uint64_t sizeOfUnknownType,
                                      brindle_id objIdParentScope);
    brindle_id (*CreateUnknownEntryType)(void* user_data, uint64_t sizeOfUnknownType,
                                         brindle_id objIdParentScope);

    /** Spare. Finds classes and structures alike. */
    brindle_id (*GetClassEntryType)(void* user_data, const char* className,
                                    brindle_id objIdOfParentClass);
    /** A class or structure. The list of base classes at offset 0 is usually empty, since
     * AddBaseClass adds them with their offsets. anonymous: the reader made the name. */
    brindle_id (*CreateClassEntryType)(void* user_data, const char* className, uint32_t classSize,
                                       brindle_id objIdOfScopeParent,
                                       const brindle_id* objIdsOfInheritances,
                                       size_t inheritanceCount, brindle_bool anonymous,
                                       brindle_bool isStruct);
    /** Spare. */
    brindle_id (*GetUnionEntryType)(void* user_data, const char* unionName,
                                    brindle_id objIdOfParentClass);
    brindle_id (*CreateUnionEntryType)(void* user_data, const char* unionName, uint32_t unionSize,
                                       brindle_id objIdOfParentClass, brindle_bool anonymous);
    /** Returns false if the base class could not be added. */
    brindle_bool (*AddBaseClass)(void* user_data, brindle_id objIdOfClass,
                                 brindle_id objIdOfBaseClass, uint32_t byteOffset);
    brindle_id (*CreateMemberData)(void* user_data, const char* memberName,
                                   brindle_id objIdOfMemberType, brindle_id objIdOfParentClass,
                                   uint32_t byteOffset, int16_t addressExtension,
                                   brindle_bool addressExtensionIsValid);
    brindle_id (*CreateUnionMemberData)(void* user_data, const char* memberName,
                                        brindle_id objIdOfMemberType, brindle_id objIdOfParentUnion,
                                        uint32_t byteOffset, int16_t addressExtension,
                                        brindle_bool addressExtensionIsValid);
    /** Spare. */
    brindle_id (*CreateMemberStaticData)(void* user_data, const char* memberName,
                                         brindle_id objIdOfMemberType,
                                         brindle_id objIdOfParentClass, uint64_t address,
                                         brindle_bool addressIsValid, int16_t addressExtension,
                                         brindle_bool addressExtensionIsValid);
    /** A bit field of a class, structure or union: byteOffset is the offset of its storage unit,
     * bitOffset the position there from the least significant bit, bitSize the width. */
    brindle_id (*CreateBitfieldInUdt)(void* user_data, const char* memberName,
                                      brindle_id objIdOfBitfieldType, brindle_id objIdOfParentUdt,
                                      uint32_t byteOffset, uint32_t bitOffset, uint32_t bitSize,
                                      int16_t addressExtension,
                                      brindle_bool addressExtensionIsValid);

    /** dimensions: element counts, outermost first, at least one. arraySize: of the whole array. */
    brindle_id (*CreateArrayEntryType)(void* user_data, const uint32_t* dimensions,
                                       size_t dimensionCount, brindle_id objIdOfArrayElementsType,
                                       uint64_t arraySize, brindle_id objIdParentScope);
    brindle_id (*CreatePointerEntryType)(void* user_data, brindle_id objIdOfReferencedType,
                                         uint64_t ptrSize, brindle_id objIdParentScope);
    /** Spare. */
    brindle_id (*GetEnumTable)(void* user_data, const char* tableName,
                               brindle_id objIdOfScopeParent);
    brindle_id (*CreateEnumTable)(void* user_data, const char* tableName,
                                  brindle_id objIdOfUnderlyingType, brindle_id objIdOfScopeParent,
                                  brindle_bool anonymous);
    /** Returns false if the description could not be added. */
    brindle_bool (*AddEnumDescriptionToEnumTable)(void* user_data, brindle_id objIdOfEnumTable,
                                                  int32_t enumValue, const char* enumText);
    /** Spare. */
    brindle_id (*GetTypedefEntryType)(void* user_data, const char* aliasName,
                                      brindle_id objIdParentScope);
    brindle_id (*CreateTypedefEntryType)(void* user_data, const char* aliasName,
                                         brindle_id objIdReferencedType,
                                         brindle_id objIdParentScope);

    /** What an earlier CreateGlobalData made under this name in this scope. */
    brindle_id (*GetGlobalData)(void* user_data, const char* symName,
                                brindle_id objIdOfScopeParent);
    /** What an earlier CreateGlobalData made under this name in any scope: the overload of
     * GetGlobalData that takes only a name. */
    brindle_id (*GetGlobalDataByName)(void* user_data, const char* symName);
    /** What an earlier CreateGlobalData made at this address. */
    brindle_id (*GetGlobalDataByAddress)(void* user_data, uint64_t address);
    /** A variable with a static address. */
    brindle_id (*CreateGlobalData)(void* user_data, const char* symName, brindle_id objIdOfSymType,
                                   uint64_t address, brindle_id objIdOfScopeParent,
                                   brindle_bool addressIsValid, int16_t addressExtension,
                                   brindle_bool addressExtensionIsValid);

    /** Spare. */
    brindle_id (*GetFunction)(void* user_data, const char* name, brindle_id functionType,
                              brindle_id objIdParentScope);
    /** flag: always false. */
    brindle_id (*CreateFunction)(void* user_data, const char* name, brindle_id objIdFunctionType,
                                 brindle_id objIdParentScope, brindle_id objIdCompileUnit,
                                 brindle_bool flag);
    /** Spare. The operation CreateFunction without scope. */
    brindle_id (*CreateFunctionWithoutScope)(void* user_data, const char* name,
                                             brindle_id objIdFunctionType,
                                             brindle_bool hasParentScope);
    /** Spare. */
    brindle_id (*GetFunctionType)(void* user_data, brindle_id objIdOfReturnType,
                                  const brindle_id* parameterTypes, size_t parameterCount,
                                  brindle_id objIdParentScope);
    /** objIdOfReturnType: 0 if the function returns nothing. */
    brindle_id (*CreateFunctionType)(void* user_data, brindle_id objIdOfReturnType,
                                     const brindle_id* parameterTypes, size_t parameterCount,
                                     brindle_id objIdParentScope);

    /** Spare. A bit field as a type of its own. */
    brindle_id (*GetOldBitfieldEntryType)(void* user_data, brindle_id objIdOfBaseType,
                                          int32_t bitOffset, uint64_t bitSize,
                                          brindle_id objIdParentScope);
    /** Spare. */
    brindle_id (*CreateOldBitfieldEntryType)(void* user_data, brindle_id objIdOfBaseType,
                                             int32_t bitOffset, uint64_t bitSize,
                                             brindle_id objIdParentScope);
    /** Spare. */
    brindle_id (*GetSectionEntryType)(void* user_data, uint64_t size, brindle_id objIdParentScope);
    /** Spare. */
    brindle_id (*CreateSectionEntryType)(void* user_data, uint64_t size,
                                         brindle_id objIdParentScope);
    /** Spare. */
    brindle_id (*GetSegment)(void* user_data, const char* segmentName);
    /** Spare. */
    brindle_id (*CreateSegment)(void* user_data, const char* segmentName, uint64_t address,
                                uint64_t size);
    /** Spare. */
    void (*SetTransformed)(void* user_data, brindle_bool transformedDataModel);

    /** Like AddEnumDescriptionToEnumTable, for a value that 32 bits can't express in the size of
     * its enumeration, or with sign if the file doesn't give its integer type; only in the full
     * reading. enumValue has the 64 bits of the value: it is
     * negative if the type is unsigned and all are used. If this is null,
     * AddEnumDescriptionToEnumTable gets the value, cut to 32 bits. Since interface 3. */
    brindle_bool (*AddWideEnumDescriptionToEnumTable)(void* user_data, brindle_id objIdOfEnumTable,
                                                      int64_t enumValue, const char* enumText);
} brindle_factory;

/**
 * Reads a file into a data model of the host. What was delivered before a failure stays with the
 * host.
 *
 * @param path UTF-8 on Windows; goes to the system unchanged elsewhere
 * @param factory copied; its functions are called only during this call
 */
BRINDLE_C_API brindle_status brindle_reader_deliver(brindle_reader reader, const char* path,
                                                    brindle_container container,
                                                    const brindle_factory* factory);

/** Like brindle_reader_deliver, with the input of brindle_reader_read_input. Since interface 2. */
BRINDLE_C_API brindle_status brindle_reader_deliver_input(brindle_reader reader,
                                                          const brindle_input* input,
                                                          const brindle_factory* factory);

/** @} */
/**
 * @name Models
 * A model never changes. Its objects have the identifiers from 1 up to their number, in the order
 * of delivery; 1 is the global namespace. After a failed read it has what was delivered. An
 * identifier or index that doesn't exist gives BRINDLE_NOT_FOUND.
 */
/** @{ */

/** What an object is. The last four are spare. */
typedef int32_t brindle_kind;
enum {
    /** In queries: any kind. */
    BRINDLE_KIND_ANY = 0,
    BRINDLE_KIND_NAMESPACE = 1,
    BRINDLE_KIND_BLOCK = 2,
    BRINDLE_KIND_COMPILE_UNIT = 3,
    /** A scalar. */
    BRINDLE_KIND_BASE = 4,
    /** A type of which only the size is known. */
    BRINDLE_KIND_UNKNOWN = 5,
    BRINDLE_KIND_CLASS = 6,
    BRINDLE_KIND_STRUCT = 7,
    BRINDLE_KIND_UNION = 8,
    BRINDLE_KIND_MEMBER = 9,
    BRINDLE_KIND_UNION_MEMBER = 10,
    BRINDLE_KIND_BIT_FIELD = 11,
    BRINDLE_KIND_ARRAY = 12,
    BRINDLE_KIND_POINTER = 13,
    BRINDLE_KIND_ENUM = 14,
    BRINDLE_KIND_TYPEDEF = 15,
    BRINDLE_KIND_FUNCTION_TYPE = 16,
    BRINDLE_KIND_FUNCTION = 17,
    /** A variable with a static address. */
    BRINDLE_KIND_GLOBAL = 18,
    BRINDLE_KIND_STATIC_MEMBER = 19,
    BRINDLE_KIND_OLD_BIT_FIELD = 20,
    BRINDLE_KIND_SECTION = 21,
    BRINDLE_KIND_SEGMENT = 22
};

/** Scalar type. */
enum {
    BRINDLE_BASIC_NO_TYPE = 0,
    BRINDLE_BASIC_VOID = 1,
    BRINDLE_BASIC_CHAR = 2,
    BRINDLE_BASIC_WIDE_CHAR = 3,
    BRINDLE_BASIC_INT32 = 4,
    BRINDLE_BASIC_UINT32 = 5,
    BRINDLE_BASIC_FLOAT = 6,
    BRINDLE_BASIC_BOOL = 7,
    BRINDLE_BASIC_LONG = 8,
    BRINDLE_BASIC_UNSIGNED_LONG = 9,
    /** Also stands for integers of sizes that have no value of their own. */
    BRINDLE_BASIC_DOUBLE = 10,
    BRINDLE_BASIC_INT8 = 11,
    BRINDLE_BASIC_UINT8 = 12,
    BRINDLE_BASIC_INT16 = 13,
    BRINDLE_BASIC_UINT16 = 14,
    BRINDLE_BASIC_INT64 = 15,
    BRINDLE_BASIC_UINT64 = 16,
    BRINDLE_BASIC_SPECIAL = 17,
    BRINDLE_BASIC_FLOAT16 = 18
};

/** An object. Its kind decides which members have a meaning; the others are 0. */
typedef struct brindle_object {
    size_t struct_size;
    brindle_id id;
    brindle_kind kind;
    /** One of BRINDLE_BASIC_..., of a base type. */
    int32_t basic_type;
    /** Without its scopes; valid as long as the model lives. Empty for kinds without a name and
     * for the global namespace. */
    brindle_text name;
    /** Enclosing scope; for a member its class or union. 0 for the global namespace, compile units
     * and segments. */
    brindle_id scope;
    /** Type of data, element type of an array, target of a pointer or typedef, underlying type of
     * an enum, result of a function type (0 if none), type of a function. */
    brindle_id type;
    /** Compile unit of a function, 0 if none. */
    brindle_id compile_unit;
    /** Declared size in bytes of base, unknown, class, structure, union, array and pointer; for
     * any other kind see brindle_model_size_of. */
    uint64_t size;
    /** Address of a global, static member or segment. */
    uint64_t address;
    /** Offset in bytes of a member, union member or bit field in its class or union; for a bit
     * field, the offset of its storage unit. */
    uint32_t offset;
    /** Position of a bit field in its storage unit, in bits from the least significant. */
    uint32_t bit_offset;
    /** Width of a bit field in bits. */
    uint64_t bit_size;
    /** Number of base classes of a class or structure, enumerators of an enum, dimensions of an
     * array, parameters of a function type. */
    size_t list_length;
    /** The name of a class, structure, union or enum was made by the reader. */
    brindle_bool anonymous;
} brindle_object;

/** Destroys a model. Null has no effect. */
BRINDLE_C_API brindle_status brindle_model_destroy(brindle_model model);

/** Number of objects. */
BRINDLE_C_API brindle_status brindle_model_object_count(brindle_model model, uint64_t* count);

/** The object of an identifier. */
BRINDLE_C_API brindle_status brindle_model_object(brindle_model model, brindle_id id,
                                                  brindle_object* object);

/**
 * The first object of a kind whose identifier is larger than `after`; BRINDLE_NOT_FOUND after the
 * last one. Begin with 0. `next` may point to the same variable as `after`.
 */
BRINDLE_C_API brindle_status brindle_model_next_of_kind(brindle_model model, brindle_kind kind,
                                                        brindle_id after, brindle_id* next);

/** The first object that lies in a scope: namespace, compile unit, class, union, function, block.
 */
BRINDLE_C_API brindle_status brindle_model_first_in(brindle_model model, brindle_id scope,
                                                    brindle_id* first);

/** The next object in the scope of this one. `next` may point to what was passed as `id`. */
BRINDLE_C_API brindle_status brindle_model_next_in(brindle_model model, brindle_id id,
                                                   brindle_id* next);

/** A base class of a class or structure. A virtual one has no static place and has offset 0; paths
 * and leaves don't enter one that would overlap other data there. */
typedef struct brindle_base_class {
    size_t struct_size;
    brindle_id type;
    /** Bytes from the start of the derived class. */
    uint32_t offset;
} brindle_base_class;

/** One value of an enum. The name is valid as long as the model lives. */
typedef struct brindle_enumerator {
    size_t struct_size;
    brindle_text name;
    /** The value, cut to 32 bits. */
    int32_t value;
    /** The value: 32 bits with sign, also of unsigned enumerations; in the full reading 64 bits
     * with sign where 32 can't express it. Since interface 3. */
    int64_t whole_value;
} brindle_enumerator;

/** A base class of a class or structure by index, from 0. */
BRINDLE_C_API brindle_status brindle_model_base_class(brindle_model model, brindle_id class_type,
                                                      size_t index, brindle_base_class* base_class);

/** A value of an enum by index, from 0. */
BRINDLE_C_API brindle_status brindle_model_enumerator(brindle_model model, brindle_id enum_type,
                                                      size_t index, brindle_enumerator* enumerator);

/** The number of elements in a dimension of an array by index, from 0; outermost first. */
BRINDLE_C_API brindle_status brindle_model_dimension(brindle_model model, brindle_id array_type,
                                                     size_t index, uint32_t* element_count);

/** The type of a parameter of a function type by index, from 0. */
BRINDLE_C_API brindle_status brindle_model_parameter(brindle_model model, brindle_id function_type,
                                                     size_t index, brindle_id* type);

/** Size in bytes of a type or of the type of a datum, also through typedefs and enums; 0 if
 * unknown. */
BRINDLE_C_API brindle_status brindle_model_size_of(brindle_model model, brindle_id id,
                                                   uint64_t* size);

/** Distance in bytes from one element of an array to the next. */
BRINDLE_C_API brindle_status brindle_model_element_stride(brindle_model model,
                                                          brindle_id array_type, uint64_t* stride);

/** The type that a chain of typedefs leads to; the type itself if it is no typedef. */
BRINDLE_C_API brindle_status brindle_model_without_typedefs(brindle_model model, brindle_id type,
                                                            brindle_id* target);

/** The nearest compile unit among the object and its scopes; BRINDLE_NOT_FOUND if there is none. */
BRINDLE_C_API brindle_status brindle_model_compile_unit_of(brindle_model model, brindle_id id,
                                                           brindle_id* compile_unit);

/**
 * The name after the names of the enclosing namespaces, classes, functions and block scopes, joined
 * by "::"; empty for an object without a name. For the arguments see brindle_option_get.
 */
BRINDLE_C_API brindle_status brindle_model_qualified_name(brindle_model model, brindle_id id,
                                                          char* buffer, size_t capacity,
                                                          size_t* length);

/**
 * A type as a C declaration without a name, such as "uint16[4][2]" or "void (*)(int32)"; empty for
 * an object that is no type. For the arguments see brindle_option_get.
 */
BRINDLE_C_API brindle_status brindle_model_type_text(brindle_model model, brindle_id type,
                                                     char* buffer, size_t capacity, size_t* length);

/**
 * The first object of a qualified name whose identifier is larger than `after`. Names may recur:
 * static variables in several compile units, or a type and a function. The first call for a model
 * takes time in proportion to its size.
 *
 * @param qualified_name as brindle_model_qualified_name gives it; may begin with "::"
 * @param kind which kind is wanted, or BRINDLE_KIND_ANY
 * @param after 0 for the first
 */
BRINDLE_C_API brindle_status brindle_model_find(brindle_model model, const char* qualified_name,
                                                brindle_kind kind, brindle_id after,
                                                brindle_id* found);

/** The place that a path names. */
typedef struct brindle_place {
    size_t struct_size;
    /** The variable at the head of the path. */
    brindle_id global;
    /** Type at the place. After fewer indices than the array has dimensions it is the array type.
     */
    brindle_id type;
    uint64_t address;
    /** Size in bytes at the place; for an array with some of its indices given, the size of the
     * part that is left. */
    uint64_t size;
    /** Number of indices already applied to the array `type`. */
    size_t indexed_dimensions;
    brindle_bool is_bit_field;
    /** For a bit field: position in the storage unit at `address`, in bits from bit 0. */
    uint32_t bit_offset;
    /** For a bit field: width in bits. */
    uint64_t bit_size;
    /** Number of variables for which the path resolves. */
    size_t candidates;
} brindle_place;

/**
 * The static answer to a path such as "motor.pid[2].gain": a variable by its qualified name, or
 * else by its name only, then members by ".name" and elements by "[index]". Pointers are not
 * followed, since what they point to is not static; an index beyond its dimension does not resolve.
 * Several variables may share the name: `candidates` counts them. "count" also leads to "count.2",
 * "count.3" and so on, which share name and scope with it; their numbers may change from build to
 * build, so that only a person can say which one is meant. "count.2" leads to that one only.
 *
 * @param index selects one of several variables of this name for which the path resolves, from 0 in
 *     the order of delivery, those with numbers last
 * @return BRINDLE_NOT_FOUND if the path doesn't resolve; brindle_model_path_problem says why
 */
BRINDLE_C_API brindle_status brindle_model_resolve_path(brindle_model model, const char* path,
                                                        size_t index, brindle_place* place);

/**
 * Why a path doesn't resolve, in English; empty if it does.
 *
 * @param resolved_length receives the number of bytes of the path that resolve; may be null
 * @param buffer, capacity, length see brindle_option_get
 */
BRINDLE_C_API brindle_status brindle_model_path_problem(brindle_model model, const char* path,
                                                        size_t* resolved_length, char* buffer,
                                                        size_t capacity, size_t* length);

/**
 * What holds the byte at an address: the leaf of a variable, or the innermost structure or array if
 * the byte lies in a gap between its parts. The first call for a model takes time in proportion to
 * its size. Since interface 2.
 *
 * @param index selects one of several places, from 0: variables may overlap, and so do
 *     members of a union
 * @param place receives the place, with the number of all places as `candidates`; may be
 *     null
 * @param offset receives the distance in bytes from the first byte of the place; may be null
 * @param buffer, capacity, length receive the path of the place, see brindle_option_get
 * @return BRINDLE_NOT_FOUND if no variable holds the byte, or for an index beyond the last place
 */
BRINDLE_C_API brindle_status brindle_model_find_address(brindle_model model, uint64_t address,
                                                        size_t index, brindle_place* place,
                                                        uint64_t* offset, char* buffer,
                                                        size_t capacity, size_t* length);

/** How far a walk over leaves goes. A limit of 0 stands for the default. */
typedef struct brindle_leaf_limits {
    size_t struct_size;
    /** Elements of each array, over all its dimensions; by default 1000. */
    uint64_t array_elements;
    /** Leaves of the whole walk; by default 1000000. */
    uint64_t leaves;
} brindle_leaf_limits;

/** What a walk over leaves left out. */
typedef struct brindle_leaf_cuts {
    size_t struct_size;
    /** Arrays of which only the first elements were visited. */
    uint64_t arrays;
    /** Places that were visited whole although they have parts, since they contain themselves or
     * are nested too deep. */
    uint64_t wholes;
    /** The limit of leaves was reached; later ones are missing. */
    brindle_bool is_exhausted;
} brindle_leaf_cuts;

/**
 * Receives a leaf.
 *
 * @param path the name of the variable with the steps to the leaf, as brindle_model_resolve_path
 *     takes it; valid during the call
 * @param place where the leaf lies; `candidates` is 0
 * @return false to end the walk
 */
typedef brindle_bool (*brindle_leaf_visitor)(void* user_data, const brindle_text* path,
                                             const brindle_place* place);

/**
 * Takes variables apart into what has no parts, such as "motor.pid[2].gain", and visits these
 * leaves in the order of their offsets.
 *
 * @param global a variable; 0 for all, in the order of delivery
 * @param limits null for the defaults
 * @param user_data passed to each call of `visitor`; the library doesn't use it
 * @param cuts receives what was left out; may be null
 */
BRINDLE_C_API brindle_status brindle_model_visit_leaves(brindle_model model, brindle_id global,
                                                        const brindle_leaf_limits* limits,
                                                        brindle_leaf_visitor visitor,
                                                        void* user_data, brindle_leaf_cuts* cuts);

/** @} */
/**
 * @name Rows
 * Variables or leaves in blocks of columns: for hosts that want many, and to which each call has a
 * cost. Since interface 2.
 */
/** @{ */

/** A walk over a model, which it keeps alive. A number, not an address. */
typedef struct brindle_rows_handle* brindle_rows;

/** Which rows are wanted. */
typedef struct brindle_row_choice {
    size_t struct_size;
    /** True for one row per variable, false for one row per leaf. */
    brindle_bool variables;
    /** The wanted variables, in this order; null for all variables, in the order of
     * delivery. The list is copied during the call, so that the host may free it
     * afterwards. */
    const brindle_id* globals;
    size_t global_count;
    /** Elements of each array, over all its dimensions; 0 for the default of 1000. */
    uint64_t array_elements;
    /** Leaves of the whole walk; 0 for the default of 1000000. */
    uint64_t leaves;
} brindle_row_choice;

/** Several rows, column by column. */
typedef struct brindle_row_block {
    size_t struct_size;
    /** Length of each column. */
    size_t count;
    /** The variable of a row. */
    const brindle_id* globals;
    const brindle_id* types;
    const uint64_t* addresses;
    /** In bytes; for a bit field, the size of its storage unit. */
    const uint64_t* sizes;
    /** Position of a bit field in its storage unit, in bits from the least significant. */
    const uint32_t* bit_offsets;
    /** Width of a bit field in bits; 0 for anything else. */
    const uint64_t* bit_sizes;
    /** Where the path of each row begins in `paths`. */
    const size_t* path_starts;
    /** All paths in a row, each with a null character at its end. */
    const char* paths;
    /** Length of `paths` in bytes. */
    size_t path_bytes;
} brindle_row_block;

/**
 * Begins a walk, which the host must destroy.
 *
 * @param choice null for all leaves with the default limits
 * @return BRINDLE_NOT_FOUND if one of the wanted identifiers is not a variable
 */
BRINDLE_C_API brindle_status brindle_rows_create(brindle_model model,
                                                 const brindle_row_choice* choice,
                                                 brindle_rows* rows);

/**
 * The next rows of a walk; BRINDLE_NOT_FOUND after the last. A block ends with the last row of a
 * variable.
 *
 * @param wanted the least number of rows, 0 for the default
 * @param block its columns are valid until the next call for this walk
 */
BRINDLE_C_API brindle_status brindle_rows_next(brindle_rows rows, size_t wanted,
                                               brindle_row_block* block);

/** What the walk left out so far. */
BRINDLE_C_API brindle_status brindle_rows_cuts(brindle_rows rows, brindle_leaf_cuts* cuts);

/** Destroys a walk. Null has no effect. */
BRINDLE_C_API brindle_status brindle_rows_destroy(brindle_rows rows);

/** @} */
/**
 * @name Images
 * What the headers of the file say about it. Since interface 2.
 */
/** @{ */

/** Order of the bytes of a number in the target's memory. */
typedef int32_t brindle_byte_order;
enum { BRINDLE_LITTLE_ENDIAN = 0, BRINDLE_BIG_ENDIAN = 1 };

/** The file and its target. */
typedef struct brindle_image {
    size_t struct_size;
    /** As the host gave it; valid as long as the model lives. */
    brindle_text path;
    /** Length of the file in bytes. */
    uint64_t file_size;
    brindle_container container;
    brindle_byte_order byte_order;
    /** Width of an address in bytes by the class of the file: 4 or 8. */
    int32_t address_size;
    /** Size in bytes of the first pointer type in the file; address_size if it has
     * none. */
    int32_t pointer_size;
    /** e_machine of ELF, the target id of TI COFF, the machine of PE. */
    int32_t machine;
    /** False for an object file, which has no addresses and no sections here. */
    brindle_bool is_linked;
    /** The target counts memory in words of 16 bits. Addresses and sizes are still in bytes. */
    brindle_bool is_word_addressed;
    size_t section_count;
    /** False for a file of debug information that was split off its image, by
     * `objcopy --only-keep-debug`, say: it has no initial bytes. Since interface 3. */
    brindle_bool has_contents;
} brindle_image;

/** What a section holds. */
typedef int32_t brindle_section_kind;
enum {
    BRINDLE_SECTION_CODE = 0,
    /** Constants. */
    BRINDLE_SECTION_READ_ONLY_DATA = 1,
    BRINDLE_SECTION_DATA = 2,
    /** The file has no bytes for it, and the target starts with zeros there, or leaves it alone. */
    BRINDLE_SECTION_ZERO = 3
};

/** A section in the target's memory. */
typedef struct brindle_section {
    size_t struct_size;
    /** Valid as long as the model lives. */
    brindle_text name;
    /** Address of the first byte. */
    uint64_t address;
    /** Size in memory in bytes. */
    uint64_t size;
    /** File position of its first byte. */
    uint64_t file_position;
    /** Bytes of it in the file, at most `size`; those missing at the end are zero, or unknown
     * if the image has no contents. */
    uint64_t file_size;
    brindle_section_kind kind;
} brindle_section;

/** What the headers of the file say. All 0 and empty if they could not be read. */
BRINDLE_C_API brindle_status brindle_model_image(brindle_model model, brindle_image* image);

/** A section by index, from 0, in the order of their addresses; else BRINDLE_NOT_FOUND. */
BRINDLE_C_API brindle_status brindle_model_section(brindle_model model, size_t index,
                                                   brindle_section* section);

/**
 * The bytes that the image gives a range of the target's memory when the program starts. A file
 * that was read by its path is opened again for this.
 *
 * @param bytes receives `size` bytes
 * @return BRINDLE_NOT_FOUND, with `bytes` unchanged, if no single section holds the whole range,
 *     for more than 256 MiB of zeros, if the file has no contents, or if the file is gone or has
 * changed in length
 */
BRINDLE_C_API brindle_status brindle_model_initial_bytes(brindle_model model, uint64_t address,
                                                         void* bytes, size_t size);

/** @} */

#ifdef __cplusplus
}
#endif

/* NOLINTEND(modernize-deprecated-headers, modernize-use-using) */

#endif
