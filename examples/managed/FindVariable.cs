// The smallest host in C#: tells where a variable or a part of it lies.
//
//     mono FindVariable.exe firmware.elf 'motor.pid[2].gain'
using System;
using System.Runtime.InteropServices;
using System.Text;

static class FindVariable
{
    const int Ok = 0;
    const int AnyContainer = -1;

    // As brindle_place in brindle.h.
    [StructLayout(LayoutKind.Sequential)]
    struct Place
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

    [DllImport("brindle", CallingConvention = CallingConvention.Cdecl)]
    static extern int brindle_reader_create(out IntPtr reader);
    [DllImport("brindle", CallingConvention = CallingConvention.Cdecl)]
    static extern int brindle_reader_destroy(IntPtr reader);
    [DllImport("brindle", CallingConvention = CallingConvention.Cdecl)]
    static extern int brindle_reader_error_text(IntPtr reader, byte[] buffer, UIntPtr capacity,
                                                out UIntPtr length);
    [DllImport("brindle", CallingConvention = CallingConvention.Cdecl)]
    static extern int brindle_reader_read(IntPtr reader, byte[] path, int container,
                                          out IntPtr model);
    [DllImport("brindle", CallingConvention = CallingConvention.Cdecl)]
    static extern int brindle_model_destroy(IntPtr model);
    [DllImport("brindle", CallingConvention = CallingConvention.Cdecl)]
    static extern int brindle_model_resolve_path(IntPtr model, byte[] path, UIntPtr index,
                                                 ref Place place);

    // Text as the library takes it.
    static byte[] Utf8(string text)
    {
        return Encoding.UTF8.GetBytes(text + "\0");
    }

    static string ErrorText(IntPtr reader)
    {
        var buffer = new byte[1024];
        UIntPtr length;
        brindle_reader_error_text(reader, buffer, (UIntPtr)buffer.Length, out length);
        return Encoding.UTF8.GetString(buffer, 0, (int)Math.Min((ulong)length, 1023));
    }

    static int Main(string[] arguments)
    {
        if (arguments.Length != 2)
        {
            Console.Error.WriteLine("usage: FindVariable FILE PATH");
            return 2;
        }
        IntPtr reader, model;
        var place = new Place { StructSize = (UIntPtr)Marshal.SizeOf(typeof(Place)) };
        brindle_reader_create(out reader);
        if (brindle_reader_read(reader, Utf8(arguments[0]), AnyContainer, out model) != Ok)
        {
            Console.Error.WriteLine(ErrorText(reader));
        }
        bool isFound =
            brindle_model_resolve_path(model, Utf8(arguments[1]), UIntPtr.Zero, ref place) == Ok;
        if (isFound)
        {
            Console.WriteLine("0x{0:x8} {1} bytes", place.Address, place.Size);
        }
        brindle_model_destroy(model);
        brindle_reader_destroy(reader);
        return isFound ? 0 : 1;
    }
}
