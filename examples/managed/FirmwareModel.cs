// The data model of this host: the objects of one file, in the order of their delivery.
using System.Collections.Generic;

enum Kind
{
    Namespace,
    Block,
    CompileUnit,
    Base,
    Unknown,
    Class,
    Struct,
    Union,
    Member,
    Array,
    Pointer,
    Enum,
    Typedef,
    FunctionType,
    Function,
    Global,
}

sealed class FirmwareObject
{
    public ulong Id;
    public Kind Kind;
    public string Name = "";
    public ulong Scope;
    public ulong Type;
    public ulong Size;
    public ulong Address;
    public ulong CompileUnit;
    public int BasicType;
    public uint[] Dimensions;
    public ulong[] Parameters;
}

class FirmwareModel : IHostDataModel
{
    const ulong GlobalNamespace = 1;
    // Scopes and types of a damaged file may lead back to themselves.
    const int LongestChain = 1000;

    readonly List<FirmwareObject> objects = new List<FirmwareObject>();
    readonly Dictionary<(Kind, string, ulong), ulong> byName =
        new Dictionary<(Kind, string, ulong), ulong>();
    readonly Dictionary<(Kind, ulong, ulong), ulong> byNumber =
        new Dictionary<(Kind, ulong, ulong), ulong>();
    readonly Dictionary<string, ulong> globalsByName = new Dictionary<string, ulong>();
    readonly Dictionary<ulong, ulong> globalsByAddress = new Dictionary<ulong, ulong>();

    public FirmwareModel()
    {
        Add(new FirmwareObject { Kind = Kind.Namespace });
    }

    public IEnumerable<FirmwareObject> Variables
    {
        get
        {
            foreach (FirmwareObject candidate in objects)
            {
                if (candidate.Kind == Kind.Global)
                {
                    yield return candidate;
                }
            }
        }
    }

    // Null for an unknown identifier.
    public FirmwareObject Find(ulong id)
    {
        return id >= 1 && id <= (ulong)objects.Count ? objects[(int)(id - 1)] : null;
    }

    public string QualifiedName(FirmwareObject named)
    {
        string name = named.Name;
        FirmwareObject scope = Find(named.Scope);
        for (int length = 0; scope != null && length < LongestChain; ++length)
        {
            if (scope.Kind != Kind.CompileUnit && scope.Name != "")
            {
                name = scope.Name + "::" + name;
            }
            scope = Find(scope.Scope);
        }
        return name;
    }

    public string CompileUnitName(FirmwareObject start)
    {
        FirmwareObject current = start;
        for (int length = 0; current != null && length < LongestChain; ++length)
        {
            if (current.Kind == Kind.CompileUnit)
            {
                return current.Name;
            }
            bool isFunctionOfUnit = current.Kind == Kind.Function && current.CompileUnit != 0;
            current = Find(isFunctionOfUnit ? current.CompileUnit : current.Scope);
        }
        return "";
    }

    public ulong SizeOf(FirmwareObject start)
    {
        FirmwareObject current = start;
        for (int length = 0; current != null && length < LongestChain; ++length)
        {
            if (current.Kind != Kind.Global && current.Kind != Kind.Typedef &&
                current.Kind != Kind.Enum)
            {
                return current.Size;
            }
            current = Find(current.Type);
        }
        return 0;
    }

    ulong Add(FirmwareObject added)
    {
        objects.Add(added);
        added.Id = (ulong)objects.Count;
        return added.Id;
    }

    ulong AddNamed(FirmwareObject added)
    {
        ulong id = Add(added);
        AddFirst(byName, (added.Kind, added.Name, added.Scope), id);
        return id;
    }

    // Of several objects with one key, the first is found.
    static void AddFirst<Key>(Dictionary<Key, ulong> index, Key key, ulong id)
    {
        if (!index.ContainsKey(key))
        {
            index.Add(key, id);
        }
    }

    static ulong Lookup<Key>(Dictionary<Key, ulong> index, Key key)
    {
        ulong id;
        return index.TryGetValue(key, out id) ? id : 0;
    }

    public ulong GetGlobalNamespace()
    {
        return GlobalNamespace;
    }

    public ulong GetNamespace(string name, ulong scope)
    {
        return Lookup(byName, (Kind.Namespace, name, scope));
    }

    public ulong CreateNamespace(string name, ulong scope)
    {
        return AddNamed(new FirmwareObject { Kind = Kind.Namespace, Name = name, Scope = scope });
    }

    public ulong CreateBlockScope(string name, ulong scope)
    {
        return Add(new FirmwareObject { Kind = Kind.Block, Name = name, Scope = scope });
    }

    public ulong CreateCompileUnit(string name)
    {
        return Add(new FirmwareObject { Kind = Kind.CompileUnit, Name = name });
    }

    public ulong GetBaseEntryType(int basicType, ulong scope)
    {
        return Lookup(byNumber, (Kind.Base, (ulong)basicType, scope));
    }

    public ulong CreateBaseEntryType(int basicType, ulong size, ulong scope)
    {
        ulong id = Add(new FirmwareObject {
            Kind = Kind.Base, BasicType = basicType, Size = size, Scope = scope });
        AddFirst(byNumber, (Kind.Base, (ulong)basicType, scope), id);
        return id;
    }

    public ulong GetUnknownEntryType(ulong size, ulong scope)
    {
        return Lookup(byNumber, (Kind.Unknown, size, scope));
    }

    public ulong CreateUnknownEntryType(ulong size, ulong scope)
    {
        ulong id = Add(new FirmwareObject { Kind = Kind.Unknown, Size = size, Scope = scope });
        AddFirst(byNumber, (Kind.Unknown, size, scope), id);
        return id;
    }

    public ulong CreateClassEntryType(string name, uint size, ulong scope, ulong[] bases,
                                      bool anonymous, bool isStruct)
    {
        return Add(new FirmwareObject {
            Kind = isStruct ? Kind.Struct : Kind.Class, Name = name, Size = size, Scope = scope });
    }

    public ulong CreateUnionEntryType(string name, uint size, ulong scope, bool anonymous)
    {
        return Add(new FirmwareObject {
            Kind = Kind.Union, Name = name, Size = size, Scope = scope });
    }

    // A list of variables needs no base classes, nor the values of enums.
    public bool AddBaseClass(ulong classType, ulong baseClass, uint offset)
    {
        return Find(classType) != null;
    }

    public ulong CreateMemberData(string name, ulong type, ulong parent, uint offset)
    {
        return AddMember(name, type, parent);
    }

    public ulong CreateUnionMemberData(string name, ulong type, ulong parent, uint offset)
    {
        return AddMember(name, type, parent);
    }

    public ulong CreateBitfieldInUdt(string name, ulong type, ulong parent, uint offset,
                                     uint bitOffset, uint bitSize)
    {
        return AddMember(name, type, parent);
    }

    ulong AddMember(string name, ulong type, ulong parent)
    {
        return Add(new FirmwareObject {
            Kind = Kind.Member, Name = name, Type = type, Scope = parent });
    }

    public ulong CreateArrayEntryType(uint[] dimensions, ulong elementType, ulong size, ulong scope)
    {
        return Add(new FirmwareObject {
            Kind = Kind.Array, Dimensions = dimensions, Type = elementType, Size = size,
            Scope = scope });
    }

    public ulong CreatePointerEntryType(ulong target, ulong size, ulong scope)
    {
        return Add(new FirmwareObject {
            Kind = Kind.Pointer, Type = target, Size = size, Scope = scope });
    }

    public ulong CreateEnumTable(string name, ulong underlyingType, ulong scope, bool anonymous)
    {
        return Add(new FirmwareObject {
            Kind = Kind.Enum, Name = name, Type = underlyingType, Scope = scope });
    }

    public bool AddEnumDescriptionToEnumTable(ulong enumTable, int value, string text)
    {
        return Find(enumTable) != null;
    }

    public ulong CreateTypedefEntryType(string name, ulong target, ulong scope)
    {
        return Add(new FirmwareObject {
            Kind = Kind.Typedef, Name = name, Type = target, Scope = scope });
    }

    public ulong GetGlobalData(string name, ulong scope)
    {
        return Lookup(byName, (Kind.Global, name, scope));
    }

    public ulong GetGlobalDataByName(string name)
    {
        return Lookup(globalsByName, name);
    }

    public ulong GetGlobalDataByAddress(ulong address)
    {
        return Lookup(globalsByAddress, address);
    }

    public virtual ulong CreateGlobalData(string name, ulong type, ulong address, ulong scope,
                                          bool addressIsValid)
    {
        ulong id = AddNamed(new FirmwareObject {
            Kind = Kind.Global, Name = name, Type = type, Address = address, Scope = scope });
        AddFirst(globalsByName, name, id);
        AddFirst(globalsByAddress, address, id);
        return id;
    }

    public ulong CreateFunction(string name, ulong type, ulong scope, ulong compileUnit)
    {
        return Add(new FirmwareObject {
            Kind = Kind.Function, Name = name, Type = type, Scope = scope,
            CompileUnit = compileUnit });
    }

    public ulong CreateFunctionType(ulong returnType, ulong[] parameters, ulong scope)
    {
        return Add(new FirmwareObject {
            Kind = Kind.FunctionType, Type = returnType, Parameters = parameters, Scope = scope });
    }
}
