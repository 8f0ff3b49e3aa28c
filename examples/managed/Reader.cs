// Reads files into a data model of this host.
using System;
using System.Runtime.InteropServices;
using System.Text;

sealed class ReadException : Exception
{
    public ReadException(string message)
        : base(message)
    {
    }
}

sealed class Reader : IDisposable
{
    IntPtr handle;
    // An exception of a model during a read. It must not leave the callback, so it is kept here.
    Exception failure;

    public Reader()
    {
        if (NativeLibrary.brindle_reader_create(out handle) != NativeLibrary.Ok)
        {
            throw new OutOfMemoryException();
        }
    }

    public void Dispose()
    {
        NativeLibrary.brindle_reader_destroy(handle);
        handle = IntPtr.Zero;
    }

    // Reads a file and delivers it. Exceptions of the model are thrown here; a file that can't be read
    // to its end gives a ReadException, and the model contains what was delivered before.
    public void Read(string path, IHostDataModel model)
    {
        FactoryTable table = TableOf(model);
        failure = null;
        int status = NativeLibrary.brindle_reader_deliver(handle, path, NativeLibrary.AutoContainer,
                                                          ref table);
        // The runtime sees no use of the delegates by native code.
        GC.KeepAlive(table);
        if (failure != null)
        {
            throw failure;
        }
        if (status != NativeLibrary.Ok)
        {
            throw new ReadException(ErrorText());
        }
    }

    string ErrorText()
    {
        UIntPtr length;
        NativeLibrary.brindle_reader_error_text(handle, null, UIntPtr.Zero, out length);
        var buffer = new byte[(int)length + 1];
        NativeLibrary.brindle_reader_error_text(handle, buffer, (UIntPtr)buffer.Length, out length);
        return Encoding.UTF8.GetString(buffer, 0, (int)length);
    }

    // Returns the answer of a model to one call. An exception ends the read instead.
    ulong Answer(Func<ulong> operation)
    {
        try
        {
            return failure == null ? operation() : 0;
        }
        catch (Exception exception)
        {
            failure = exception;
            NativeLibrary.brindle_reader_cancel(handle);
            return 0;
        }
    }

    int Answer(Func<bool> operation)
    {
        return (int)Answer(() => operation() ? 1UL : 0UL);
    }

    static ulong[] Identifiers(IntPtr list, UIntPtr count)
    {
        var identifiers = new ulong[(int)count];
        for (int index = 0; index < identifiers.Length; ++index)
        {
            identifiers[index] = (ulong)Marshal.ReadInt64(list, 8 * index);
        }
        return identifiers;
    }

    static uint[] Numbers(IntPtr list, UIntPtr count)
    {
        var numbers = new uint[(int)count];
        for (int index = 0; index < numbers.Length; ++index)
        {
            numbers[index] = (uint)Marshal.ReadInt32(list, 4 * index);
        }
        return numbers;
    }

    FactoryTable TableOf(IHostDataModel model)
    {
        return new FactoryTable
        {
            StructSize = (UIntPtr)Marshal.SizeOf(typeof(FactoryTable)),
            GetGlobalNamespace = user => Answer(() => model.GetGlobalNamespace()),
            GetNamespace = (user, name, scope) => Answer(() => model.GetNamespace(name, scope)),
            CreateNamespace = (user, name, scope) =>
                Answer(() => model.CreateNamespace(name, scope)),
            CreateBlockScope = (user, name, scope) =>
                Answer(() => model.CreateBlockScope(name, scope)),
            CreateCompileUnit = (user, name) => Answer(() => model.CreateCompileUnit(name)),
            GetBaseEntryType = (user, basicType, scope) =>
                Answer(() => model.GetBaseEntryType(basicType, scope)),
            CreateBaseEntryType = (user, basicType, length, scope) =>
                Answer(() => model.CreateBaseEntryType(basicType, length, scope)),
            GetUnknownEntryType = (user, size, scope) =>
                Answer(() => model.GetUnknownEntryType(size, scope)),
            CreateUnknownEntryType = (user, size, scope) =>
                Answer(() => model.CreateUnknownEntryType(size, scope)),
            CreateClassEntryType = (user, name, size, scope, bases, count, anonymous, isStruct) =>
                Answer(() => model.CreateClassEntryType(name, size, scope,
                                                        Identifiers(bases, count), anonymous != 0,
                                                        isStruct != 0)),
            CreateUnionEntryType = (user, name, size, scope, anonymous) =>
                Answer(() => model.CreateUnionEntryType(name, size, scope, anonymous != 0)),
            AddBaseClass = (user, classType, baseClass, offset) =>
                Answer(() => model.AddBaseClass(classType, baseClass, offset)),
            CreateMemberData = (user, name, type, parent, offset, extension, isValid) =>
                Answer(() => model.CreateMemberData(name, type, parent, offset)),
            CreateUnionMemberData = (user, name, type, parent, offset, extension, isValid) =>
                Answer(() => model.CreateUnionMemberData(name, type, parent, offset)),
            CreateBitfieldInUdt = (user, name, type, parent, offset, bitOffset, bitSize, extension,
                                   isValid) =>
                Answer(() => model.CreateBitfieldInUdt(name, type, parent, offset, bitOffset,
                                                       bitSize)),
            CreateArrayEntryType = (user, dimensions, count, elementType, size, scope) =>
                Answer(() => model.CreateArrayEntryType(Numbers(dimensions, count), elementType,
                                                        size, scope)),
            CreatePointerEntryType = (user, target, size, scope) =>
                Answer(() => model.CreatePointerEntryType(target, size, scope)),
            CreateEnumTable = (user, name, underlyingType, scope, anonymous) =>
                Answer(() => model.CreateEnumTable(name, underlyingType, scope, anonymous != 0)),
            AddEnumDescriptionToEnumTable = (user, enumTable, value, text) =>
                Answer(() => model.AddEnumDescriptionToEnumTable(enumTable, value, text)),
            CreateTypedefEntryType = (user, name, target, scope) =>
                Answer(() => model.CreateTypedefEntryType(name, target, scope)),
            GetGlobalData = (user, name, scope) => Answer(() => model.GetGlobalData(name, scope)),
            GetGlobalDataByName = (user, name) => Answer(() => model.GetGlobalDataByName(name)),
            GetGlobalDataByAddress = (user, address) =>
                Answer(() => model.GetGlobalDataByAddress(address)),
            CreateGlobalData = (user, name, type, address, scope, addressIsValid, extension,
                                isValid) =>
                Answer(() => model.CreateGlobalData(name, type, address, scope,
                                                    addressIsValid != 0)),
            CreateFunction = (user, name, type, scope, compileUnit, flag) =>
                Answer(() => model.CreateFunction(name, type, scope, compileUnit)),
            CreateFunctionType = (user, returnType, parameters, count, scope) =>
                Answer(() => model.CreateFunctionType(returnType, Identifiers(parameters, count),
                                                      scope)),
        };
    }
}
