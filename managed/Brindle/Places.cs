// Places in the target's memory: what paths lead to, variables, and their leaves.
using System;
using System.Collections;
using System.Collections.Generic;
using System.Linq;
using System.Runtime.InteropServices;
using System.Text;
using System.Text.RegularExpressions;

namespace Brindle
{
    /// <summary>Anything with an address, a type and a size.</summary>
    public abstract class Place
    {
        internal readonly Model Model;
        internal readonly ulong TypeId;

        internal Place(Model model, ulong type)
        {
            Model = model;
            TypeId = type;
        }

        /// <summary>Such as "motors[1].loops[0].gain".</summary>
        public abstract string Path { get; }

        /// <summary>Address of the first byte.</summary>
        public abstract ulong Address { get; }

        /// <summary>Size in bytes; for a bit field, the size of its storage unit.</summary>
        public abstract ulong Size { get; }

        /// <summary>Position of a bit field in its storage unit, from the least significant bit; null
        /// for anything else.</summary>
        public abstract uint? BitOffset { get; }

        /// <summary>Width of a bit field in bits; null for anything else.</summary>
        public abstract ulong? BitSize { get; }

        /// <summary>For a bit field, the type of its storage unit. May be null.</summary>
        public DataType Type
        {
            get { return DataType.Of(Model, TypeId); }
        }

        /// <summary>The value in the bytes of the place: a number, a bool, an EnumValue, a list for an
        /// array, a dictionary for a structure, or the bytes themselves if their meaning is
        /// unknown.</summary>
        public object Decode(byte[] content)
        {
            if ((ulong)content.Length != Size)
            {
                throw new ArgumentException(
                    string.Format("{0} has {1} bytes, not {2}", Path, Size, content.Length));
            }
            return Decoder()(content, 0, content.Length);
        }

        /// <summary>The value in a memory; an Image has the initial value.</summary>
        /// <exception cref="MemoryGapException">The memory doesn't have the bytes.</exception>
        public object ValueOf(IMemory memory)
        {
            return Decode(memory.ReadMemory(Address, Size));
        }

        internal virtual Decoder Decoder()
        {
            return BitSize == null
                ? Values.DecoderOf(Model, TypeId)
                : Values.BitsDecoderOf(Model, TypeId, (int)BitOffset.Value, (int)BitSize.Value);
        }

        /// <inheritdoc/>
        public override string ToString()
        {
            return string.Format("{0} at 0x{1:x}, {2}", Path, Address, Model.TypeText(TypeId));
        }
    }

    /// <summary>Where a path leads.</summary>
    public sealed class PathPlace : Place
    {
        readonly string path;
        readonly NativePlace row;

        internal PathPlace(Model model, string path, NativePlace row) : base(model, row.Type)
        {
            this.path = path;
            this.row = row;
        }

        /// <inheritdoc/>
        public override string Path
        {
            get { return path; }
        }

        /// <inheritdoc/>
        public override ulong Address
        {
            get { return row.Address; }
        }

        /// <inheritdoc/>
        public override ulong Size
        {
            get { return row.Size; }
        }

        /// <inheritdoc/>
        public override uint? BitOffset
        {
            get { return row.IsBitField != 0 ? row.BitOffset : (uint?)null; }
        }

        /// <inheritdoc/>
        public override ulong? BitSize
        {
            get { return row.IsBitField != 0 ? row.BitSize : (ulong?)null; }
        }

        /// <summary>The variable that the path begins with.</summary>
        public Variable Variable
        {
            get { return new Variable(Model, row.Global); }
        }

        internal override Decoder Decoder()
        {
            bool isRest = (ulong)row.IndexedDimensions != 0 && row.IsBitField == 0;
            return isRest ? Values.RestDecoderOf(Model, TypeId, (int)row.IndexedDimensions)
                          : base.Decoder();
        }
    }

    /// <summary>A variable with a static address.</summary>
    public sealed class Variable : Place
    {
        readonly NativeObject row;

        internal Variable(Model model, ulong id) : this(model, model.Object(id))
        {
        }

        Variable(Model model, NativeObject row) : base(model, row.Type)
        {
            this.row = row;
        }

        /// <summary>The name without its scopes.</summary>
        public string Name
        {
            get { return row.Name.ToString(); }
        }

        /// <summary>The name after its namespaces, classes and functions, joined by "::".</summary>
        public override string Path
        {
            get { return Model.QualifiedName(row.Id); }
        }

        /// <inheritdoc/>
        public override ulong Address
        {
            get { return row.Address; }
        }

        /// <inheritdoc/>
        public override ulong Size
        {
            get { return Model.SizeOf(row.Type); }
        }

        /// <inheritdoc/>
        public override uint? BitOffset
        {
            get { return null; }
        }

        /// <inheritdoc/>
        public override ulong? BitSize
        {
            get { return null; }
        }

        /// <summary>The name of its compile unit; null for a variable that is global to the whole
        /// image.</summary>
        public string Unit
        {
            get
            {
                ulong unit = Model.CompileUnitOf(row.Id);
                return unit != 0 ? Model.Object(unit).Name.ToString() : null;
            }
        }

        internal ulong Id
        {
            get { return row.Id; }
        }
    }

    /// <summary>A piece of a variable that has no parts itself: a number, a pointer, an enum, a bit
    /// field.</summary>
    public sealed class Leaf : Place
    {
        readonly RowBlock block;
        readonly int index;

        internal Leaf(RowBlock block, int index) : base(block.Model, (ulong)block.Types[index])
        {
            this.block = block;
            this.index = index;
        }

        /// <inheritdoc/>
        public override string Path
        {
            get { return block.PathOf(index); }
        }

        /// <inheritdoc/>
        public override ulong Address
        {
            get { return (ulong)block.Addresses[index]; }
        }

        /// <inheritdoc/>
        public override ulong Size
        {
            get { return (ulong)block.Sizes[index]; }
        }

        /// <inheritdoc/>
        public override uint? BitOffset
        {
            get { return block.BitSizes[index] != 0 ? (uint)block.BitOffsets[index] : (uint?)null; }
        }

        /// <inheritdoc/>
        public override ulong? BitSize
        {
            get { return block.BitSizes[index] != 0 ? (ulong)block.BitSizes[index] : (ulong?)null; }
        }

        /// <summary>The variable that it is a part of.</summary>
        public Variable Variable
        {
            get { return new Variable(Model, (ulong)block.Globals[index]); }
        }
    }

    // Rows of variables or leaves, column by column.
    sealed class RowBlock
    {
        readonly byte[] paths;
        readonly long[] starts;

        RowBlock(Model model, NativeRowBlock block)
        {
            Model = model;
            Count = (int)block.Count;
            Globals = Column(block.Globals);
            Types = Column(block.Types);
            Addresses = Column(block.Addresses);
            Sizes = Column(block.Sizes);
            BitSizes = Column(block.BitSizes);
            BitOffsets = new int[Count];
            Marshal.Copy(block.BitOffsets, BitOffsets, 0, Count);
            starts = IntPtr.Size == 8 ? Column(block.PathStarts) : Narrow(block.PathStarts);
            paths = new byte[(int)block.PathBytes];
            Marshal.Copy(block.Paths, paths, 0, paths.Length);
        }

        public Model Model { get; }
        public int Count { get; }
        public long[] Globals { get; }
        public long[] Types { get; }
        public long[] Addresses { get; }
        public long[] Sizes { get; }
        public int[] BitOffsets { get; }
        public long[] BitSizes { get; }

        public string PathOf(int index)
        {
            long end = index + 1 < Count ? starts[index + 1] : paths.Length;
            // Without the null character.
            return Encoding.UTF8.GetString(paths, (int)starts[index], (int)(end - starts[index]) - 1);
        }

        // The blocks of one walk: over the variables, or over the leaves of the wanted ones.
        public static IEnumerable<RowBlock> Walk(Model model, bool variables, ulong[] wanted,
                                                 ulong arrayElements, ulong limit)
        {
            GCHandle pinned = GCHandle.Alloc(wanted ?? new ulong[1], GCHandleType.Pinned);
            IntPtr rows;
            try
            {
                var choice = new NativeRowChoice {
                    StructSize = Native.SizeOf<NativeRowChoice>(), Variables = variables ? 1 : 0,
                    Globals = wanted != null ? pinned.AddrOfPinnedObject() : IntPtr.Zero,
                    GlobalCount = (UIntPtr)(wanted != null ? wanted.Length : 0),
                    ArrayElements = arrayElements, Leaves = limit
                };
                rows = model.CreateRows(ref choice);
            }
            finally
            {
                pinned.Free();
            }
            try
            {
                var block = new NativeRowBlock { StructSize = Native.SizeOf<NativeRowBlock>() };
                int status;
                while ((status = Native.brindle_rows_next(rows, UIntPtr.Zero, ref block)) == Native.Ok)
                {
                    yield return new RowBlock(model, block);
                }
                Native.Check(status);
            }
            finally
            {
                Native.brindle_rows_destroy(rows);
            }
        }

        long[] Column(IntPtr values)
        {
            var column = new long[Count];
            Marshal.Copy(values, column, 0, Count);
            return column;
        }

        long[] Narrow(IntPtr values)
        {
            var column = new int[Count];
            Marshal.Copy(values, column, 0, Count);
            return column.Select(value => (long)value).ToArray();
        }
    }

    /// <summary>The variables of an image, in the order of delivery, and by name.</summary>
    public sealed class Variables : IEnumerable<Variable>
    {
        readonly Model model;

        internal Variables(Model model)
        {
            this.model = model;
        }

        /// <summary>The first variable with a qualified name, or else with the name only.</summary>
        /// <exception cref="PathException">There is none.</exception>
        public Variable this[string name]
        {
            get
            {
                ulong id = model.Find(name, Kind.Global).FirstOrDefault();
                NativePlace place;
                if (id == 0 && model.TryResolve(name, 0, out place) &&
                    model.Object(place.Global).Name.ToString() == name)
                {
                    id = place.Global;
                }
                if (id == 0)
                {
                    throw new PathException("there is no variable '" + name + "'");
                }
                return new Variable(model, id);
            }
        }

        /// <inheritdoc/>
        public IEnumerator<Variable> GetEnumerator()
        {
            return model.IdsOfKind(Kind.Global).Select(id => new Variable(model, id)).GetEnumerator();
        }

        IEnumerator IEnumerable.GetEnumerator()
        {
            return GetEnumerator();
        }
    }

    // A pattern of paths, in which * stands for any characters and ? for one. It matches a path, or
    // what follows a "::" in it; a pattern that matches the name of a variable selects all of its
    // leaves.
    sealed class PathFilter
    {
        readonly Regex matches;
        readonly string head;
        readonly bool hasWildcard;

        public PathFilter(string pattern)
        {
            string translated = Regex.Escape(pattern).Replace(@"\*", ".*").Replace(@"\?", ".");
            matches = new Regex(@"\A(?:.*::)?" + translated + @"\z",
                                RegexOptions.Singleline | RegexOptions.CultureInvariant);
            int wildcard = pattern.IndexOfAny(new[] { '*', '?' });
            hasWildcard = wildcard >= 0;
            head = hasWildcard ? pattern.Substring(0, wildcard) : pattern;
        }

        public IEnumerable<Leaf> Leaves(Model model, ulong arrayElements, ulong limit)
        {
            var wanted = new List<ulong>();
            var wholes = new HashSet<long>();
            foreach (RowBlock block in RowBlock.Walk(model, true, null, 0, 0))
            {
                for (int index = 0; index < block.Count; ++index)
                {
                    string name = block.PathOf(index);
                    if (matches.IsMatch(name))
                    {
                        wholes.Add(block.Globals[index]);
                    }
                    else if (!MayBegin(name))
                    {
                        continue;
                    }
                    wanted.Add((ulong)block.Globals[index]);
                }
            }
            if (wanted.Count == 0)
            {
                yield break;
            }
            foreach (RowBlock block in
                     RowBlock.Walk(model, false, wanted.ToArray(), arrayElements, limit))
            {
                for (int index = 0; index < block.Count; ++index)
                {
                    if (wholes.Contains(block.Globals[index]) ||
                        matches.IsMatch(block.PathOf(index)))
                    {
                        yield return new Leaf(block, index);
                    }
                }
            }
        }

        bool MayBegin(string name)
        {
            while (true)
            {
                if (head.StartsWith(name, StringComparison.Ordinal) ||
                    (hasWildcard && name.StartsWith(head, StringComparison.Ordinal)))
                {
                    return true;
                }
                int separator = name.IndexOf("::", StringComparison.Ordinal);
                if (separator < 0)
                {
                    return false;
                }
                name = name.Substring(separator + 2);
            }
        }
    }
}
