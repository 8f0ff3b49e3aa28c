// A data model as the reader sees it: what a host in C# implements to receive a delivery. It has the
// operations of brindle_factory that the reader calls.
interface IHostDataModel
{
    ulong GetGlobalNamespace();
    ulong GetNamespace(string name, ulong scope);
    ulong CreateNamespace(string name, ulong scope);
    ulong CreateBlockScope(string name, ulong scope);
    ulong CreateCompileUnit(string name);

    ulong GetBaseEntryType(int basicType, ulong scope);
    ulong CreateBaseEntryType(int basicType, ulong size, ulong scope);
    ulong GetUnknownEntryType(ulong size, ulong scope);
    ulong CreateUnknownEntryType(ulong size, ulong scope);

    ulong CreateClassEntryType(string name, uint size, ulong scope, ulong[] bases, bool anonymous,
                               bool isStruct);
    ulong CreateUnionEntryType(string name, uint size, ulong scope, bool anonymous);
    bool AddBaseClass(ulong classType, ulong baseClass, uint offset);
    ulong CreateMemberData(string name, ulong type, ulong parent, uint offset);
    ulong CreateUnionMemberData(string name, ulong type, ulong parent, uint offset);
    ulong CreateBitfieldInUdt(string name, ulong type, ulong parent, uint offset, uint bitOffset,
                              uint bitSize);

    ulong CreateArrayEntryType(uint[] dimensions, ulong elementType, ulong size, ulong scope);
    ulong CreatePointerEntryType(ulong target, ulong size, ulong scope);
    ulong CreateEnumTable(string name, ulong underlyingType, ulong scope, bool anonymous);
    bool AddEnumDescriptionToEnumTable(ulong enumTable, int value, string text);
    ulong CreateTypedefEntryType(string name, ulong target, ulong scope);

    ulong GetGlobalData(string name, ulong scope);
    ulong GetGlobalDataByName(string name);
    ulong GetGlobalDataByAddress(ulong address);
    ulong CreateGlobalData(string name, ulong type, ulong address, ulong scope,
                           bool addressIsValid);

    ulong CreateFunction(string name, ulong type, ulong scope, ulong compileUnit);
    ulong CreateFunctionType(ulong returnType, ulong[] parameters, ulong scope);
}
