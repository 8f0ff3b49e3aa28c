// The parts of the C interface that this host uses, as brindle.h declares it. Functions that the header
// marks as spare are left empty.
using System;
using System.Runtime.InteropServices;

static class NativeLibrary
{
    public const int Ok = 0;
    public const int ReadFailed = 1;
    public const int AutoContainer = -1;

    [DllImport("brindle", CallingConvention = CallingConvention.Cdecl)]
    public static extern int brindle_interface_version();
    [DllImport("brindle", CallingConvention = CallingConvention.Cdecl)]
    public static extern int brindle_reader_create(out IntPtr reader);
    [DllImport("brindle", CallingConvention = CallingConvention.Cdecl)]
    public static extern int brindle_reader_destroy(IntPtr reader);
    [DllImport("brindle", CallingConvention = CallingConvention.Cdecl)]
    public static extern int brindle_reader_cancel(IntPtr reader);
    [DllImport("brindle", CallingConvention = CallingConvention.Cdecl)]
    public static extern int brindle_reader_error_text(IntPtr reader, byte[] buffer,
                                                       UIntPtr capacity, out UIntPtr length);
    [DllImport("brindle", CallingConvention = CallingConvention.Cdecl)]
    public static extern int brindle_reader_deliver(
        IntPtr reader, [MarshalAs(UnmanagedType.LPUTF8Str)] string path, int container,
        ref FactoryTable factory);
}

[UnmanagedFunctionPointer(CallingConvention.Cdecl)]
delegate ulong GetGlobalNamespaceFunction(IntPtr user);
[UnmanagedFunctionPointer(CallingConvention.Cdecl)]
delegate ulong NameFunction(IntPtr user, [MarshalAs(UnmanagedType.LPUTF8Str)] string name);
[UnmanagedFunctionPointer(CallingConvention.Cdecl)]
delegate ulong NameInScopeFunction(IntPtr user, [MarshalAs(UnmanagedType.LPUTF8Str)] string name,
                                   ulong scope);
[UnmanagedFunctionPointer(CallingConvention.Cdecl)]
delegate ulong GetBaseEntryTypeFunction(IntPtr user, int basicType, ulong scope);
[UnmanagedFunctionPointer(CallingConvention.Cdecl)]
delegate ulong CreateBaseEntryTypeFunction(IntPtr user, int basicType, ulong length, ulong scope);
[UnmanagedFunctionPointer(CallingConvention.Cdecl)]
delegate ulong UnknownEntryTypeFunction(IntPtr user, ulong size, ulong scope);
[UnmanagedFunctionPointer(CallingConvention.Cdecl)]
delegate ulong CreateClassEntryTypeFunction(IntPtr user,
                                            [MarshalAs(UnmanagedType.LPUTF8Str)] string name,
                                            uint size, ulong scope, IntPtr bases,
                                            UIntPtr baseCount, int anonymous, int isStruct);
[UnmanagedFunctionPointer(CallingConvention.Cdecl)]
delegate ulong CreateUnionEntryTypeFunction(IntPtr user,
                                            [MarshalAs(UnmanagedType.LPUTF8Str)] string name,
                                            uint size, ulong scope, int anonymous);
[UnmanagedFunctionPointer(CallingConvention.Cdecl)]
delegate int AddBaseClassFunction(IntPtr user, ulong classType, ulong baseClass, uint offset);
[UnmanagedFunctionPointer(CallingConvention.Cdecl)]
delegate ulong CreateMemberDataFunction(IntPtr user,
                                        [MarshalAs(UnmanagedType.LPUTF8Str)] string name,
                                        ulong type, ulong parent, uint offset,
                                        short addressExtension, int addressExtensionIsValid);
[UnmanagedFunctionPointer(CallingConvention.Cdecl)]
delegate ulong CreateBitfieldInUdtFunction(IntPtr user,
                                           [MarshalAs(UnmanagedType.LPUTF8Str)] string name,
                                           ulong type, ulong parent, uint offset, uint bitOffset,
                                           uint bitSize, short addressExtension,
                                           int addressExtensionIsValid);
[UnmanagedFunctionPointer(CallingConvention.Cdecl)]
delegate ulong CreateArrayEntryTypeFunction(IntPtr user, IntPtr dimensions, UIntPtr dimensionCount,
                                            ulong elementType, ulong size, ulong scope);
[UnmanagedFunctionPointer(CallingConvention.Cdecl)]
delegate ulong CreatePointerEntryTypeFunction(IntPtr user, ulong target, ulong size, ulong scope);
[UnmanagedFunctionPointer(CallingConvention.Cdecl)]
delegate ulong CreateEnumTableFunction(IntPtr user,
                                       [MarshalAs(UnmanagedType.LPUTF8Str)] string name,
                                       ulong underlyingType, ulong scope, int anonymous);
[UnmanagedFunctionPointer(CallingConvention.Cdecl)]
delegate int AddEnumDescriptionFunction(IntPtr user, ulong enumTable, int value,
                                        [MarshalAs(UnmanagedType.LPUTF8Str)] string text);
[UnmanagedFunctionPointer(CallingConvention.Cdecl)]
delegate ulong CreateTypedefEntryTypeFunction(IntPtr user,
                                              [MarshalAs(UnmanagedType.LPUTF8Str)] string name,
                                              ulong target, ulong scope);
[UnmanagedFunctionPointer(CallingConvention.Cdecl)]
delegate ulong GetGlobalDataByAddressFunction(IntPtr user, ulong address);
[UnmanagedFunctionPointer(CallingConvention.Cdecl)]
delegate ulong CreateGlobalDataFunction(IntPtr user,
                                        [MarshalAs(UnmanagedType.LPUTF8Str)] string name,
                                        ulong type, ulong address, ulong scope, int addressIsValid,
                                        short addressExtension, int addressExtensionIsValid);
[UnmanagedFunctionPointer(CallingConvention.Cdecl)]
delegate ulong CreateFunctionFunction(IntPtr user,
                                      [MarshalAs(UnmanagedType.LPUTF8Str)] string name, ulong type,
                                      ulong scope, ulong compileUnit, int flag);
[UnmanagedFunctionPointer(CallingConvention.Cdecl)]
delegate ulong CreateFunctionTypeFunction(IntPtr user, ulong returnType, IntPtr parameters,
                                          UIntPtr parameterCount, ulong scope);

// brindle_factory. While the library holds a copy, the delegates must be kept alive.
[StructLayout(LayoutKind.Sequential)]
struct FactoryTable
{
    public UIntPtr StructSize;
    public IntPtr UserData;

    public GetGlobalNamespaceFunction GetGlobalNamespace;
    public NameInScopeFunction GetNamespace;
    public NameInScopeFunction CreateNamespace;
    public IntPtr SpareGetBlockScope;
    public NameInScopeFunction CreateBlockScope;
    public IntPtr SpareGetCompileUnit;
    public NameFunction CreateCompileUnit;
    public IntPtr SpareGetOrCreateCompileUnit;
    public GetBaseEntryTypeFunction GetBaseEntryType;
    public CreateBaseEntryTypeFunction CreateBaseEntryType;
    public UnknownEntryTypeFunction GetUnknownEntryType;
    public UnknownEntryTypeFunction CreateUnknownEntryType;
    public IntPtr SpareGetClassEntryType;
    public CreateClassEntryTypeFunction CreateClassEntryType;
    public IntPtr SpareGetUnionEntryType;
    public CreateUnionEntryTypeFunction CreateUnionEntryType;
    public AddBaseClassFunction AddBaseClass;
    public CreateMemberDataFunction CreateMemberData;
    public CreateMemberDataFunction CreateUnionMemberData;
    public IntPtr SpareCreateMemberStaticData;
    public CreateBitfieldInUdtFunction CreateBitfieldInUdt;
    public CreateArrayEntryTypeFunction CreateArrayEntryType;
    public CreatePointerEntryTypeFunction CreatePointerEntryType;
    public IntPtr SpareGetEnumTable;
    public CreateEnumTableFunction CreateEnumTable;
    public AddEnumDescriptionFunction AddEnumDescriptionToEnumTable;
    public IntPtr SpareGetTypedefEntryType;
    public CreateTypedefEntryTypeFunction CreateTypedefEntryType;
    public NameInScopeFunction GetGlobalData;
    public NameFunction GetGlobalDataByName;
    public GetGlobalDataByAddressFunction GetGlobalDataByAddress;
    public CreateGlobalDataFunction CreateGlobalData;
    public IntPtr SpareGetFunction;
    public CreateFunctionFunction CreateFunction;
    public IntPtr SpareCreateFunctionWithoutScope;
    public IntPtr SpareGetFunctionType;
    public CreateFunctionTypeFunction CreateFunctionType;
    public IntPtr SpareGetOldBitfieldEntryType;
    public IntPtr SpareCreateOldBitfieldEntryType;
    public IntPtr SpareGetSectionEntryType;
    public IntPtr SpareCreateSectionEntryType;
    public IntPtr SpareGetSegment;
    public IntPtr SpareCreateSegment;
    public IntPtr SpareSetTransformed;
}
