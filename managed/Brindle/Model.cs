// One finished model of the library: its queries, in plain values. Images, types and places share it.
using System;
using System.Collections.Concurrent;
using System.Collections.Generic;

namespace Brindle
{
    // The values of brindle_kind that are used here.
    static class Kind
    {
        public const int Any = 0;
        public const int CompileUnit = 3;
        public const int Base = 4;
        public const int Unknown = 5;
        public const int Class = 6;
        public const int Struct = 7;
        public const int Union = 8;
        public const int Member = 9;
        public const int UnionMember = 10;
        public const int BitField = 11;
        public const int Array = 12;
        public const int Pointer = 13;
        public const int Enum = 14;
        public const int Typedef = 15;
        public const int FunctionType = 16;
        public const int Global = 18;

        public static bool IsMember(int kind)
        {
            return kind == Member || kind == UnionMember || kind == BitField;
        }
    }

    sealed class Model
    {
        readonly ModelHandle handle;

        public Model(IntPtr model)
        {
            handle = new ModelHandle(model);
            Decoders = new ConcurrentDictionary<ulong, Decoder>();
            var image = new NativeImage { StructSize = Native.SizeOf<NativeImage>() };
            Native.Check(Native.brindle_model_image(handle, ref image));
            Image = image;
            Path = image.Path.ToString();
        }

        public NativeImage Image { get; }

        public string Path { get; }

        public bool IsBigEndian
        {
            get { return Image.ByteOrder != 0; }
        }

        public ConcurrentDictionary<ulong, Decoder> Decoders { get; }

        public void Close()
        {
            handle.Dispose();
        }

        public NativeObject Object(ulong id)
        {
            var found = new NativeObject { StructSize = Native.SizeOf<NativeObject>() };
            Native.Check(Native.brindle_model_object(handle, id, ref found));
            return found;
        }

        public IEnumerable<NativeObject> ObjectsIn(ulong scope)
        {
            ulong id;
            Native.Check(Native.brindle_model_first_in(handle, scope, out id));
            while (id != 0)
            {
                yield return Object(id);
                Native.Check(Native.brindle_model_next_in(handle, id, out id));
            }
        }

        public IEnumerable<ulong> IdsOfKind(int kind)
        {
            ulong id = 0;
            while (true)
            {
                Native.Check(Native.brindle_model_next_of_kind(handle, kind, id, out id));
                if (id == 0)
                {
                    yield break;
                }
                yield return id;
            }
        }

        public IEnumerable<NativeBaseClass> BaseClasses(NativeObject type)
        {
            for (uint index = 0; index < (ulong)type.ListLength; ++index)
            {
                var found = new NativeBaseClass { StructSize = Native.SizeOf<NativeBaseClass>() };
                Native.Check(
                    Native.brindle_model_base_class(handle, type.Id, (UIntPtr)index, ref found));
                yield return found;
            }
        }

        public IEnumerable<NativeEnumerator> Enumerators(NativeObject type)
        {
            for (uint index = 0; index < (ulong)type.ListLength; ++index)
            {
                var found = new NativeEnumerator { StructSize = Native.SizeOf<NativeEnumerator>() };
                Native.Check(
                    Native.brindle_model_enumerator(handle, type.Id, (UIntPtr)index, ref found));
                yield return found;
            }
        }

        public int[] Dimensions(NativeObject type)
        {
            var dimensions = new int[(int)type.ListLength];
            for (int index = 0; index < dimensions.Length; ++index)
            {
                uint count;
                Native.Check(
                    Native.brindle_model_dimension(handle, type.Id, (UIntPtr)index, out count));
                dimensions[index] = (int)Math.Min(count, int.MaxValue);
            }
            return dimensions;
        }

        public IEnumerable<ulong> Parameters(NativeObject type)
        {
            for (uint index = 0; index < (ulong)type.ListLength; ++index)
            {
                ulong parameter;
                Native.Check(
                    Native.brindle_model_parameter(handle, type.Id, (UIntPtr)index, out parameter));
                yield return parameter;
            }
        }

        public ulong SizeOf(ulong id)
        {
            ulong size;
            Native.Check(Native.brindle_model_size_of(handle, id, out size));
            return size;
        }

        public ulong ElementStride(ulong id)
        {
            ulong stride;
            Native.Check(Native.brindle_model_element_stride(handle, id, out stride));
            return stride;
        }

        public ulong WithoutTypedefs(ulong id)
        {
            ulong target;
            Native.Check(Native.brindle_model_without_typedefs(handle, id, out target));
            return target;
        }

        public ulong CompileUnitOf(ulong id)
        {
            ulong unit;
            Native.Check(Native.brindle_model_compile_unit_of(handle, id, out unit));
            return unit;
        }

        public string QualifiedName(ulong id)
        {
            return Native.TextOf((byte[] buffer, UIntPtr capacity, out UIntPtr length) =>
                Native.brindle_model_qualified_name(handle, id, buffer, capacity, out length));
        }

        public string TypeText(ulong id)
        {
            return Native.TextOf((byte[] buffer, UIntPtr capacity, out UIntPtr length) =>
                Native.brindle_model_type_text(handle, id, buffer, capacity, out length));
        }

        public IEnumerable<ulong> Find(string name, int kind)
        {
            ulong id = 0;
            while (!name.Contains("\0"))
            {
                Native.Check(
                    Native.brindle_model_find(handle, Native.Utf8(name), kind, id, out id));
                if (id == 0)
                {
                    yield break;
                }
                yield return id;
            }
        }

        // False if the path doesn't resolve.
        public bool TryResolve(string path, int index, out NativePlace place)
        {
            place = new NativePlace { StructSize = Native.SizeOf<NativePlace>() };
            if (path.Contains("\0"))
            {
                return false;
            }
            int status = Native.brindle_model_resolve_path(handle, Native.Utf8(path), (UIntPtr)index,
                                                           ref place);
            Native.Check(status);
            return status == Native.Ok;
        }

        // Null after the last place that holds the byte.
        public Hit HitAt(ulong address, int index)
        {
            var place = new NativePlace { StructSize = Native.SizeOf<NativePlace>() };
            ulong offset = 0;
            int status = Native.Ok;
            string path = Native.TextOf((byte[] buffer, UIntPtr capacity, out UIntPtr length) =>
            {
                status = Native.brindle_model_find_address(handle, address, (UIntPtr)index, ref place,
                                                           out offset, buffer, capacity, out length);
                return status;
            });
            if (status == Native.NotFound)
            {
                return null;
            }
            Native.Check(status);
            return new Hit(new PathPlace(this, path, place), offset);
        }

        public NativePlace Resolve(string path)
        {
            NativePlace place;
            if (!TryResolve(path, 0, out place))
            {
                throw new PathException(Problem(path));
            }
            return place;
        }

        string Problem(string path)
        {
            if (path.Contains("\0"))
            {
                return "'" + path + "': a path has no null character";
            }
            byte[] text = Native.Utf8(path);
            UIntPtr resolved = UIntPtr.Zero;
            string problem =
                Native.TextOf((byte[] buffer, UIntPtr capacity, out UIntPtr length) =>
                    Native.brindle_model_path_problem(handle, text, out resolved, buffer, capacity,
                                                      out length));
            string lead = System.Text.Encoding.UTF8.GetString(text, 0, (int)resolved);
            return lead == "" ? "'" + path + "': " + problem
                              : "'" + path + "': resolves up to '" + lead + "', then " + problem;
        }

        public NativeSection Section(int index)
        {
            var section = new NativeSection { StructSize = Native.SizeOf<NativeSection>() };
            Native.Check(Native.brindle_model_section(handle, (UIntPtr)index, ref section));
            return section;
        }

        // Null if the image doesn't have the bytes.
        public byte[] InitialBytes(ulong address, ulong size)
        {
            // Don't allocate for bytes that can't be there; the library gives no longer run of zeros.
            const ulong longestZeros = 256 * 1024 * 1024;
            if (size > Image.FileSize + longestZeros || size > int.MaxValue)
            {
                return null;
            }
            var bytes = new byte[(int)size];
            int status =
                Native.brindle_model_initial_bytes(handle, address, bytes, (UIntPtr)size);
            Native.Check(status);
            return status == Native.Ok ? bytes : null;
        }

        public IntPtr CreateRows(ref NativeRowChoice choice)
        {
            IntPtr rows;
            Native.Check(Native.brindle_rows_create(handle, ref choice, out rows));
            return rows;
        }
    }
}
