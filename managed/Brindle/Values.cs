// From bytes of memory to values. A decoder is made once for each type of an image and called once for
// each value.
using System;
using System.Collections.Generic;
using System.Linq;

namespace Brindle
{
    // Turns the bytes of a place, which begin at an index, into its value.
    delegate object Decoder(byte[] content, int start, int size);

    /// <summary>A number in a variable of an enum type, with its name there.</summary>
    public sealed class EnumValue : IEquatable<EnumValue>
    {
        internal EnumValue(long number, string name)
        {
            Number = number;
            Name = name;
        }

        /// <summary>The number.</summary>
        public long Number { get; }

        /// <summary>Null for a number without a name.</summary>
        public string Name { get; }

        /// <summary>True for the same number.</summary>
        public bool Equals(EnumValue other)
        {
            return other != null && other.Number == Number;
        }

        /// <inheritdoc/>
        public override bool Equals(object other)
        {
            return Equals(other as EnumValue);
        }

        /// <inheritdoc/>
        public override int GetHashCode()
        {
            return Number.GetHashCode();
        }

        /// <inheritdoc/>
        public override string ToString()
        {
            return Name ?? Number.ToString();
        }
    }

    static class Values
    {
        const int DeepestNesting = 100;

        // Indexed by the number of the scalar type.
        static readonly HashSet<int> signed = new HashSet<int> { 2, 4, 8, 11, 13, 15 };
        static readonly HashSet<int> unsigned = new HashSet<int> { 3, 5, 9, 12, 14, 16 };
        const int FloatType = 6;
        const int BoolType = 7;
        const int DoubleType = 10;
        const int HalfType = 18;

        // What a scalar type is, as a word.
        public static string EncodingOf(int basicType)
        {
            switch (basicType)
            {
            case BoolType:
                return "bool";
            case FloatType:
            case DoubleType:
            case HalfType:
                return "float";
            default:
                return signed.Contains(basicType)     ? "signed"
                       : unsigned.Contains(basicType) ? "unsigned"
                                                      : "other";
            }
        }

        public static Decoder DecoderOf(Model model, ulong type, int depth = 0)
        {
            Decoder known;
            if (!model.Decoders.TryGetValue(type, out known))
            {
                known = Make(model, model.Object(model.WithoutTypedefs(type)), depth);
                model.Decoders[type] = known;
            }
            return known;
        }

        // How many bytes a bit field needs from the start of its storage unit: a packed field may need one
        // more than the unit has. 0 for position and width of a damaged file.
        public static ulong BytesOfBits(ulong size, ulong bitOffset, ulong bitSize)
        {
            bool isPlausible = bitSize > 0 && bitSize <= 64 && size > 0 && size <= 64 &&
                               bitOffset + bitSize <= 8 * (size + 1);
            return isPlausible ? Math.Max(size, (bitOffset + bitSize + 7) / 8) : 0;
        }

        // How many of these bytes, from the first, hold the bit field. A packed structure may end there,
        // before its storage unit does.
        public static ulong HeldBytes(Model model, ulong count, ulong bitOffset, ulong bitSize)
        {
            return model.IsBigEndian ? count - bitOffset / 8 : (bitOffset + bitSize + 7) / 8;
        }

        // What the text of a place or member says of its bits; nothing if it is no bit field.
        public static string TextOfBits(uint? bitOffset, ulong? bitSize)
        {
            return bitSize == null ? "" : string.Format(", {0} bits at {1}", bitSize, bitOffset);
        }

        // For a bit field in the bytes that BytesOfBits counts, or in those that HeldBytes counts.
        public static Decoder BitsDecoderOf(Model model, ulong type, uint bitOffset, ulong bitSize)
        {
            int count = (int)BytesOfBits(model.SizeOf(type), bitOffset, bitSize);
            if (count == 0)
            {
                return Raw;
            }
            NativeObject row = model.Object(model.WithoutTypedefs(type));
            Func<long, object> finish = null;
            if (row.Kind == Kind.Enum)
            {
                finish = Named(model, row);
            }
            bool isSigned = finish != null ? IsSigned(model, row) : signed.Contains(row.BasicType);
            bool isBool = row.BasicType == BoolType;
            bool isBigEndian = model.IsBigEndian;
            return (content, start, size) =>
            {
                ulong number = NumberFrom(content, start, size, count, isBigEndian, (int)bitOffset);
                if (bitSize < 64)
                {
                    number &= (1UL << (int)bitSize) - 1;
                }
                if (finish == null && !isSigned)
                {
                    return isBool ? (object)(number != 0) : number;
                }
                long value = isSigned ? Extend(number, (int)bitSize) : (long)number;
                return finish != null ? finish(value) : value;
            };
        }

        // For a part of an array, after some of its indices.
        public static Decoder RestDecoderOf(Model model, ulong type, int indexedDimensions)
        {
            return Array(model, model.Object(model.WithoutTypedefs(type)), 0, indexedDimensions);
        }

        static Decoder Make(Model model, NativeObject row, int depth)
        {
            switch (depth < DeepestNesting ? row.Kind : Kind.Unknown)
            {
            case Kind.Base:
            case Kind.Pointer:
                return Scalar(row, model.IsBigEndian);
            case Kind.Enum:
                return Enumeration(model, row);
            case Kind.Array:
                return Array(model, row, depth, 0);
            case Kind.Class:
            case Kind.Struct:
            case Kind.Union:
                return Structure(model, row, depth);
            default:
                return Raw;
            }
        }

        static object Raw(byte[] content, int start, int size)
        {
            return content.Skip(start).Take(size).ToArray();
        }

        // Up to eight bytes; of more, only the least significant ones count.
        static ulong Number(byte[] content, int start, int size, bool isBigEndian)
        {
            ulong number = 0;
            for (int index = 0; index < size; ++index)
            {
                number = number << 8 | content[start + (isBigEndian ? index : size - 1 - index)];
            }
            return number;
        }

        // The 64 bits from a bit on, counted from the least significant one of all bytes, of which the last
        // may be missing. They may lie in nine bytes.
        static ulong NumberFrom(byte[] content, int start, int size, int allBytes, bool isBigEndian, int bit)
        {
            int skipped = bit / 8, rest = bit % 8;
            int first = isBigEndian ? start : start + skipped;
            int count = isBigEndian ? allBytes - skipped : size - skipped;
            ulong number = Number(content, first, count, isBigEndian) >> rest;
            if (rest == 0 || count < 9)
            {
                return number;
            }
            ulong ninth = content[isBigEndian ? start + count - 9 : first + 8];
            return number | ninth << (64 - rest);
        }

        static long Extend(ulong number, int bits)
        {
            int unused = 64 - Math.Min(Math.Max(bits, 1), 64);
            return (long)(number << unused) >> unused;
        }

        // A floating-point number of 16 bits: sign, 5 bits of exponent, 10 of the fraction.
        static float Half(int bits)
        {
            int exponent = bits >> 10 & 31;
            int fraction = bits & 0x3FF;
            double number = exponent == 0  ? fraction * Math.Pow(2, -24)
                            : exponent < 31 ? (fraction + 1024) * Math.Pow(2, exponent - 25)
                            : fraction == 0 ? double.PositiveInfinity
                                            : double.NaN;
            return (float)((bits & 0x8000) != 0 ? -number : number);
        }

        static Decoder Scalar(NativeObject row, bool isBigEndian)
        {
            ulong declared = row.Size;
            if (row.BasicType == FloatType && declared == 4)
            {
                return (content, start, size) => BitConverter.ToSingle(
                    BitConverter.GetBytes((uint)Number(content, start, 4, isBigEndian)), 0);
            }
            if (row.BasicType == HalfType && declared == 2)
            {
                return (content, start, size) => Half((int)Number(content, start, 2, isBigEndian));
            }
            if (row.BasicType == DoubleType && declared == 8)
            {
                return (content, start, size) => BitConverter.Int64BitsToDouble(
                    (long)Number(content, start, 8, isBigEndian));
            }
            if (declared > 8)
            {
                return Raw;
            }
            if (row.BasicType == BoolType)
            {
                return (content, start, size) => Number(content, start, size, isBigEndian) != 0;
            }
            if (signed.Contains(row.BasicType))
            {
                return (content, start, size) =>
                    Extend(Number(content, start, size, isBigEndian), size * 8);
            }
            if (unsigned.Contains(row.BasicType) || row.Kind == Kind.Pointer)
            {
                return (content, start, size) => Number(content, start, size, isBigEndian);
            }
            return Raw;
        }

        static Func<long, object> Named(Model model, NativeObject row)
        {
            ulong size = model.SizeOf(row.Id);
            var names = new Dictionary<long, string>();
            foreach (NativeEnumerator enumerator in model.Enumerators(row))
            {
                // Large values of an unsigned enum may be negative here.
                long? bits = BitsIn(size, enumerator.WholeValue);
                if (bits.HasValue && !names.ContainsKey(bits.Value))
                {
                    names[bits.Value] = enumerator.Name.ToString();
                }
            }
            return number =>
            {
                string name = null;
                long? bits = BitsIn(size, number);
                if (bits.HasValue)
                {
                    names.TryGetValue(bits.Value, out name);
                }
                return new EnumValue(number, name);
            };
        }

        // The bits of a number in a variable of that size; null if it has more.
        static long? BitsIn(ulong size, long number)
        {
            if (size == 0 || size >= 8)
            {
                return number;
            }
            int width = (int)size * 8;
            bool fits = number >> width == 0 || number >> (width - 1) == -1;
            return fits ? number & ((1L << width) - 1) : (long?)null;
        }

        // For an enum.
        static bool IsSigned(Model model, NativeObject row)
        {
            NativeObject underlying = model.Object(model.WithoutTypedefs(row.Type));
            // Without an integer type, only the values tell it.
            return underlying.Kind == Kind.Base
                       ? signed.Contains(underlying.BasicType)
                       : model.Enumerators(row).Any(enumerator => enumerator.WholeValue < 0);
        }

        static Decoder Enumeration(Model model, NativeObject row)
        {
            Func<long, object> finish = Named(model, row);
            bool isSigned = IsSigned(model, row);
            bool isBigEndian = model.IsBigEndian;
            return (content, start, size) =>
            {
                ulong number = Number(content, start, size, isBigEndian);
                return finish(isSigned ? Extend(number, size * 8) : (long)number);
            };
        }

        static Decoder Array(Model model, NativeObject row, int depth, int indexedDimensions)
        {
            Decoder element = DecoderOf(model, row.Type, depth + 1);
            ulong ownSize = model.SizeOf(row.Type);
            int stride = (int)Math.Min(model.ElementStride(row.Id), int.MaxValue);
            int elementSize = ownSize != 0 ? (int)Math.Min(ownSize, int.MaxValue) : stride;
            int[] inner = model.Dimensions(row).Skip(indexedDimensions + 1)
                .Where(count => count > 0).ToArray();
            return (content, start, size) =>
            {
                var values = new List<object>();
                for (long at = 0; stride > 0 && at + elementSize <= size; at += stride)
                {
                    values.Add(element(content, start + (int)at, elementSize));
                }
                foreach (int count in inner.Reverse())
                {
                    values = values
                        .Select((value, index) => new { value, index })
                        .GroupBy(item => item.index / count, item => item.value)
                        .Select(group => (object)group.ToList())
                        .ToList();
                }
                return values;
            };
        }

        sealed class Part
        {
            public string Name;
            public int Offset;
            public int Size;
            // How many of its bytes must be there.
            public int Needed;
            public Decoder Decode;
        }

        static Decoder Structure(Model model, NativeObject row, int depth)
        {
            var parts = new List<Part>();
            if (row.Kind != Kind.Union)
            {
                foreach (NativeBaseClass known in model.BaseClasses(row))
                {
                    var size = (int)model.SizeOf(known.Type);
                    parts.Add(new Part { Name = "", Offset = (int)known.Offset, Size = size, Needed = size,
                                         Decode = DecoderOf(model, known.Type, depth + 1) });
                }
            }
            foreach (NativeObject member in model.ObjectsIn(row.Id))
            {
                if (Kind.IsMember(member.Kind))
                {
                    bool isBitField = member.Kind == Kind.BitField;
                    Decoder decode = isBitField
                        ? BitsDecoderOf(model, member.Type, member.BitOffset, member.BitSize)
                        : DecoderOf(model, member.Type, depth + 1);
                    ulong size = model.SizeOf(member.Type);
                    ulong bytes = isBitField ? BytesOfBits(size, member.BitOffset, member.BitSize) : 0;
                    ulong needed = bytes == 0 ? size : HeldBytes(model, bytes, member.BitOffset, member.BitSize);
                    parts.Add(new Part { Name = member.Name.ToString(), Offset = (int)member.Offset,
                                         Size = (int)(bytes != 0 ? bytes : size), Needed = (int)needed,
                                         Decode = decode });
                }
            }
            return (content, start, size) =>
            {
                var values = new Dictionary<string, object>();
                foreach (Part part in parts.Where(
                             part => part.Offset >= 0 && (long)part.Offset + part.Needed <= size))
                {
                    int present = Math.Min(part.Size, size - part.Offset);
                    object value = part.Decode(content, start + part.Offset, present);
                    var inner = value as Dictionary<string, object>;
                    if (part.Name != "")
                    {
                        values[part.Name] = value;
                    }
                    else if (inner != null)
                    {
                        foreach (KeyValuePair<string, object> item in inner)
                        {
                            values[item.Key] = item.Value;
                        }
                    }
                }
                return values;
            };
        }
    }
}
