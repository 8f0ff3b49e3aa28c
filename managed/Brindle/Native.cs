// The C interface of the library, as brindle.h declares it. Only Model and the callbacks of a read use
// it.
using System;
using System.Runtime.InteropServices;
using System.Text;

namespace Brindle
{
    // A model of the library, destroyed when nothing uses it any more.
    sealed class ModelHandle : SafeHandle
    {
        public ModelHandle() : base(IntPtr.Zero, true)
        {
        }

        public ModelHandle(IntPtr model) : base(IntPtr.Zero, true)
        {
            SetHandle(model);
        }

        public override bool IsInvalid
        {
            get { return handle == IntPtr.Zero; }
        }

        protected override bool ReleaseHandle()
        {
            return Native.brindle_model_destroy(handle) == Native.Ok;
        }
    }

    [StructLayout(LayoutKind.Sequential)]
    struct NativeText
    {
        public IntPtr Data;
        public UIntPtr Size;

        public override string ToString()
        {
            var bytes = new byte[(int)Size];
            Marshal.Copy(Data, bytes, 0, bytes.Length);
            return Encoding.UTF8.GetString(bytes);
        }
    }

    [StructLayout(LayoutKind.Sequential)]
    struct NativeObject
    {
        public UIntPtr StructSize;
        public ulong Id;
        public int Kind;
        public int BasicType;
        public NativeText Name;
        public ulong Scope;
        public ulong Type;
        public ulong CompileUnit;
        public ulong Size;
        public ulong Address;
        public uint Offset;
        public uint BitOffset;
        public ulong BitSize;
        public UIntPtr ListLength;
        public int Anonymous;
    }

    [StructLayout(LayoutKind.Sequential)]
    struct NativePlace
    {
        public UIntPtr StructSize;
        public ulong Global;
        public ulong Type;
        public ulong Address;
        public ulong Size;
        public UIntPtr IndexedDimensions;
        public int IsBitField;
        public uint BitOffset;
        public ulong BitSize;
        public UIntPtr Candidates;
    }

    [StructLayout(LayoutKind.Sequential)]
    struct NativeBaseClass
    {
        public UIntPtr StructSize;
        public ulong Type;
        public uint Offset;
    }

    [StructLayout(LayoutKind.Sequential)]
    struct NativeEnumerator
    {
        public UIntPtr StructSize;
        public NativeText Name;
        public int Value;
        public long WholeValue;
    }

    [StructLayout(LayoutKind.Sequential)]
    struct NativeRowChoice
    {
        public UIntPtr StructSize;
        public int Variables;
        public IntPtr Globals;
        public UIntPtr GlobalCount;
        public ulong ArrayElements;
        public ulong Leaves;
    }

    [StructLayout(LayoutKind.Sequential)]
    struct NativeRowBlock
    {
        public UIntPtr StructSize;
        public UIntPtr Count;
        public IntPtr Globals;
        public IntPtr Types;
        public IntPtr Addresses;
        public IntPtr Sizes;
        public IntPtr BitOffsets;
        public IntPtr BitSizes;
        public IntPtr PathStarts;
        public IntPtr Paths;
        public UIntPtr PathBytes;
    }

    [StructLayout(LayoutKind.Sequential)]
    struct NativeLeafCuts
    {
        public UIntPtr StructSize;
        public ulong Arrays;
        public ulong Wholes;
        public int IsExhausted;
    }

    [StructLayout(LayoutKind.Sequential)]
    struct NativeImage
    {
        public UIntPtr StructSize;
        public NativeText Path;
        public ulong FileSize;
        public int Container;
        public int ByteOrder;
        public int AddressSize;
        public int PointerSize;
        public int Machine;
        public int IsLinked;
        public int IsWordAddressed;
        public UIntPtr SectionCount;
        public int HasContents;
    }

    [StructLayout(LayoutKind.Sequential)]
    struct NativeSection
    {
        public UIntPtr StructSize;
        public NativeText Name;
        public ulong Address;
        public ulong Size;
        public ulong FilePosition;
        public ulong FileSize;
        public int Kind;
    }

    [StructLayout(LayoutKind.Sequential)]
    struct NativeSetting
    {
        public IntPtr Name;
        public IntPtr Value;
    }

    [StructLayout(LayoutKind.Sequential)]
    struct NativeInput
    {
        public UIntPtr StructSize;
        public IntPtr Path;
        public IntPtr Bytes;
        public UIntPtr ByteCount;
        public int Container;
        public int Waits;
        public IntPtr Settings;
        public UIntPtr SettingCount;
    }

    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    delegate void TextCallback(IntPtr user, IntPtr text);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    delegate void IntervalCallback(IntPtr user, int start, int end);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    delegate void ValueCallback(IntPtr user, int value);

    [StructLayout(LayoutKind.Sequential)]
    struct NativeCallbacks
    {
        public UIntPtr StructSize;
        public IntPtr UserData;
        public IntPtr SignalError;
        public TextCallback SetProgressText;
        public IntervalCallback SetProgressInterval;
        public ValueCallback SetProgressValue;
    }

    static class Native
    {
        public const int Ok = 0;
        public const int ReadFailed = 1;
        public const int Busy = 3;
        public const int NotFound = 6;
        public const int InvalidValue = 7;
        public const int OutOfMemory = 9;

        public const int OldestInterface = 3;

        const string Library = "brindle";
        const CallingConvention Cdecl = CallingConvention.Cdecl;

        [DllImport(Library, CallingConvention = Cdecl)]
        public static extern int brindle_interface_version();
        [DllImport(Library, CallingConvention = Cdecl)]
        public static extern IntPtr brindle_version();
        [DllImport(Library, CallingConvention = Cdecl)]
        public static extern IntPtr brindle_status_text(int status);
        [DllImport(Library, CallingConvention = Cdecl)]
        public static extern int brindle_reader_create(out IntPtr reader);
        [DllImport(Library, CallingConvention = Cdecl)]
        public static extern int brindle_reader_destroy(IntPtr reader);
        [DllImport(Library, CallingConvention = Cdecl)]
        public static extern int brindle_reader_cancel(IntPtr reader);
        [DllImport(Library, CallingConvention = Cdecl)]
        public static extern int brindle_reader_error_text(IntPtr reader, byte[] buffer,
                                                           UIntPtr capacity, out UIntPtr length);
        [DllImport(Library, CallingConvention = Cdecl)]
        public static extern int brindle_reader_set_read_all_types(IntPtr reader, int allTypes);
        [DllImport(Library, CallingConvention = Cdecl)]
        public static extern int brindle_reader_set_callbacks(IntPtr reader,
                                                              ref NativeCallbacks callbacks);
        [DllImport(Library, CallingConvention = Cdecl)]
        public static extern int brindle_reader_read_input(IntPtr reader, ref NativeInput input,
                                                           out IntPtr model);
        [DllImport(Library, CallingConvention = Cdecl)]
        public static extern int brindle_reader_remark_at(IntPtr reader, UIntPtr index, IntPtr remark,
                                                          byte[] buffer, UIntPtr capacity,
                                                          out UIntPtr length);
        [DllImport(Library, CallingConvention = Cdecl)]
        public static extern int brindle_model_destroy(IntPtr model);
        [DllImport(Library, CallingConvention = Cdecl)]
        public static extern int brindle_model_object(ModelHandle model, ulong id,
                                                      ref NativeObject found);
        [DllImport(Library, CallingConvention = Cdecl)]
        public static extern int brindle_model_next_of_kind(ModelHandle model, int kind, ulong after,
                                                            out ulong next);
        [DllImport(Library, CallingConvention = Cdecl)]
        public static extern int brindle_model_first_in(ModelHandle model, ulong scope,
                                                        out ulong first);
        [DllImport(Library, CallingConvention = Cdecl)]
        public static extern int brindle_model_next_in(ModelHandle model, ulong id, out ulong next);
        [DllImport(Library, CallingConvention = Cdecl)]
        public static extern int brindle_model_base_class(ModelHandle model, ulong id, UIntPtr index,
                                                          ref NativeBaseClass found);
        [DllImport(Library, CallingConvention = Cdecl)]
        public static extern int brindle_model_enumerator(ModelHandle model, ulong id, UIntPtr index,
                                                          ref NativeEnumerator found);
        [DllImport(Library, CallingConvention = Cdecl)]
        public static extern int brindle_model_dimension(ModelHandle model, ulong id, UIntPtr index,
                                                         out uint count);
        [DllImport(Library, CallingConvention = Cdecl)]
        public static extern int brindle_model_parameter(ModelHandle model, ulong id, UIntPtr index,
                                                         out ulong type);
        [DllImport(Library, CallingConvention = Cdecl)]
        public static extern int brindle_model_size_of(ModelHandle model, ulong id, out ulong size);
        [DllImport(Library, CallingConvention = Cdecl)]
        public static extern int brindle_model_element_stride(ModelHandle model, ulong id,
                                                              out ulong stride);
        [DllImport(Library, CallingConvention = Cdecl)]
        public static extern int brindle_model_without_typedefs(ModelHandle model, ulong id,
                                                                out ulong target);
        [DllImport(Library, CallingConvention = Cdecl)]
        public static extern int brindle_model_compile_unit_of(ModelHandle model, ulong id,
                                                               out ulong unit);
        [DllImport(Library, CallingConvention = Cdecl)]
        public static extern int brindle_model_qualified_name(ModelHandle model, ulong id,
                                                              byte[] buffer, UIntPtr capacity,
                                                              out UIntPtr length);
        [DllImport(Library, CallingConvention = Cdecl)]
        public static extern int brindle_model_type_text(ModelHandle model, ulong id, byte[] buffer,
                                                         UIntPtr capacity, out UIntPtr length);
        [DllImport(Library, CallingConvention = Cdecl)]
        public static extern int brindle_model_find(ModelHandle model, byte[] name, int kind,
                                                    ulong after, out ulong found);
        [DllImport(Library, CallingConvention = Cdecl)]
        public static extern int brindle_model_resolve_path(ModelHandle model, byte[] path,
                                                            UIntPtr index, ref NativePlace place);
        [DllImport(Library, CallingConvention = Cdecl)]
        public static extern int brindle_model_path_problem(ModelHandle model, byte[] path,
                                                            out UIntPtr resolved, byte[] buffer,
                                                            UIntPtr capacity, out UIntPtr length);
        [DllImport(Library, CallingConvention = Cdecl)]
        public static extern int brindle_model_find_address(ModelHandle model, ulong address,
                                                            UIntPtr index, ref NativePlace place,
                                                            out ulong offset, byte[] buffer,
                                                            UIntPtr capacity, out UIntPtr length);
        [DllImport(Library, CallingConvention = Cdecl)]
        public static extern int brindle_rows_create(ModelHandle model, ref NativeRowChoice choice,
                                                     out IntPtr rows);
        [DllImport(Library, CallingConvention = Cdecl)]
        public static extern int brindle_rows_next(IntPtr rows, UIntPtr wanted,
                                                   ref NativeRowBlock block);
        [DllImport(Library, CallingConvention = Cdecl)]
        public static extern int brindle_rows_cuts(IntPtr rows, ref NativeLeafCuts cuts);
        [DllImport(Library, CallingConvention = Cdecl)]
        public static extern int brindle_rows_destroy(IntPtr rows);
        [DllImport(Library, CallingConvention = Cdecl)]
        public static extern int brindle_model_image(ModelHandle model, ref NativeImage image);
        [DllImport(Library, CallingConvention = Cdecl)]
        public static extern int brindle_model_section(ModelHandle model, UIntPtr index,
                                                       ref NativeSection section);
        [DllImport(Library, CallingConvention = Cdecl)]
        public static extern int brindle_model_initial_bytes(ModelHandle model, ulong address,
                                                             byte[] bytes, UIntPtr size);

        public static UIntPtr SizeOf<Structure>()
        {
            return (UIntPtr)Marshal.SizeOf(typeof(Structure));
        }

        // Text in the form that the library takes: the first null character ends it.
        public static byte[] Utf8(string text)
        {
            return Encoding.UTF8.GetBytes(text + "\0");
        }

        public delegate int TextFunction(byte[] buffer, UIntPtr capacity, out UIntPtr length);

        // The text that a function copies into a buffer.
        public static string TextOf(TextFunction function)
        {
            var buffer = new byte[256];
            UIntPtr length;
            function(buffer, (UIntPtr)buffer.Length, out length);
            if ((ulong)length >= (ulong)buffer.Length)
            {
                buffer = new byte[(int)length + 1];
                function(buffer, (UIntPtr)buffer.Length, out length);
            }
            return Encoding.UTF8.GetString(buffer, 0, (int)length);
        }

        // Text of the library that ends with a null character.
        public static string ConstantText(IntPtr text)
        {
            // The marshaller would take it for text in the system's encoding.
            int length = 0;
            while (Marshal.ReadByte(text, length) != 0)
            {
                ++length;
            }
            var bytes = new byte[length];
            Marshal.Copy(text, bytes, 0, length);
            return Encoding.UTF8.GetString(bytes);
        }

        public static void Check(int status)
        {
            if (status == OutOfMemory)
            {
                throw new OutOfMemoryException();
            }
            if (status != Ok && status != NotFound)
            {
                throw new BrindleException(ConstantText(brindle_status_text(status)));
            }
        }
    }
}
