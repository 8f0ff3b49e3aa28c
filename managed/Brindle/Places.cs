// Places in the target's memory: what paths lead to, variables, and their leaves.
using System;
using System.Collections;
using System.Collections.Generic;
using System.Linq;
using System.Runtime.InteropServices;
using System.Text;

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

        // How many bytes hold its value.
        ulong ByteCount
        {
            get
            {
                ulong count = BitSize == null
                                  ? 0 : Values.BytesOfBits(Size, BitOffset.Value, BitSize.Value);
                return count != 0 ? count : Size;
            }
        }

        /// <summary>The value in the bytes of the place, which are as many as its size, and one more for a
        /// packed bit field that extends beyond its storage unit: a number, a bool, an EnumValue, a list for an
        /// array, a dictionary for a structure, or the bytes themselves if their meaning is
        /// unknown.</summary>
        public object Decode(byte[] content)
        {
            if ((ulong)content.Length != ByteCount)
            {
                throw new ArgumentException(
                    string.Format("{0} has {1} bytes, not {2}", Path, ByteCount, content.Length));
            }
            return Decoder()(content, 0, content.Length);
        }

        /// <summary>The value in a memory; an Image has the initial value.</summary>
        /// <exception cref="MemoryGapException">The memory doesn't have the bytes.</exception>
        public object ValueOf(IMemory memory)
        {
            byte[] content = BytesIn(memory);
            return Decoder()(content, 0, content.Length);
        }

        byte[] BytesIn(IMemory memory)
        {
            try
            {
                return memory.ReadMemory(Address, ByteCount);
            }
            catch (MemoryGapException)
                when (BitSize != null && Values.BytesOfBits(Size, BitOffset.Value, BitSize.Value) != 0)
            {
                // The memory may end with the bits, before the storage unit does.
                return memory.ReadMemory(
                    Address, Values.HeldBytes(Model, ByteCount, BitOffset.Value, BitSize.Value));
            }
        }

        internal virtual Decoder Decoder()
        {
            return BitSize == null
                ? Values.DecoderOf(Model, TypeId)
                : Values.BitsDecoderOf(Model, TypeId, BitOffset.Value, BitSize.Value);
        }

        /// <inheritdoc/>
        public override string ToString()
        {
            return string.Format("{0} at 0x{1:x}, {2}{3}", Path, Address, Model.TypeText(TypeId),
                                 Values.TextOfBits(BitOffset, BitSize));
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
    public sealed class Variable : Place, IEquatable<Variable>
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
        public string QualifiedName
        {
            get { return Model.QualifiedName(row.Id); }
        }

        /// <summary>Its qualified name.</summary>
        public override string Path
        {
            get { return QualifiedName; }
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

        /// <summary>Its leaves; see Image.Leaves.</summary>
        public Leaves Leaves(ulong arrayElements = 1000, ulong limit = 1000000)
        {
            return new Leaves(Model, null, new[] { row.Id }, arrayElements, limit);
        }

        /// <summary>True for the same variable of the same image.</summary>
        public bool Equals(Variable other)
        {
            return other != null && other.Model == Model && other.row.Id == row.Id;
        }

        /// <inheritdoc/>
        public override bool Equals(object other)
        {
            return Equals(other as Variable);
        }

        /// <inheritdoc/>
        public override int GetHashCode()
        {
            return row.Id.GetHashCode();
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
        // After each block `tellCuts` receives what was left out so far.
        public static IEnumerable<RowBlock> Walk(Model model, bool variables, ulong[] wanted,
                                                 ulong arrayElements, ulong limit,
                                                 Action<NativeLeafCuts> tellCuts = null)
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
                    if (tellCuts != null)
                    {
                        tellCuts(Cuts(rows));
                    }
                    yield return new RowBlock(model, block);
                }
                Native.Check(status);
                if (tellCuts != null)
                {
                    tellCuts(Cuts(rows));
                }
            }
            finally
            {
                Native.brindle_rows_destroy(rows);
            }
        }

        static NativeLeafCuts Cuts(IntPtr rows)
        {
            var cuts = new NativeLeafCuts { StructSize = Native.SizeOf<NativeLeafCuts>() };
            Native.Check(Native.brindle_rows_cuts(rows, ref cuts));
            return cuts;
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

    /// <summary>The variables of an image, in the order of delivery, and by name. Static variables may
    /// share a name: it stands for the first of them, All gives each.</summary>
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
                Variable found = All(name).FirstOrDefault();
                if (found == null)
                {
                    throw new PathException("there is no variable '" + name + "'");
                }
                return found;
            }
        }

        /// <summary>All variables with a qualified name, or else with the name only. "count" also
        /// gives "count.2", "count.3" and so on, which share name and scope with it.</summary>
        public IReadOnlyList<Variable> All(string name)
        {
            List<ulong> found = model.Find(name, Kind.Global).ToList();
            // A path of only the name begins with its first variable.
            NativePlace place;
            for (int index = 0, qualified = found.Count;
                 qualified == 0 && model.TryResolve(name, index, out place); ++index)
            {
                string own = model.Object(place.Global).Name.ToString();
                if (own == name || IsNumbered(own, name))
                {
                    found.Add(place.Global);
                }
            }
            return found.Select(id => new Variable(model, id)).ToList();
        }

        static bool IsNumbered(string own, string name)
        {
            return own.StartsWith(name + ".", StringComparison.Ordinal) && own.Length > name.Length + 1 &&
                own.Skip(name.Length + 1).All(digit => digit >= '0' && digit <= '9');
        }

        /// <summary>True if there is a variable with this qualified name, or with the name
        /// only.</summary>
        public bool Contains(string name)
        {
            return All(name).Count != 0;
        }

        /// <summary>Variables whose qualified name, or what follows a "::" in it, matches a pattern: *
        /// stands for any characters, ? for one.</summary>
        public IEnumerable<Variable> Matching(string pattern)
        {
            HashSet<long> wholes;
            new PathFilter(pattern).Variables(model, out wholes);
            return wholes.OrderBy(id => id).Select(id => new Variable(model, (ulong)id));
        }

        /// <summary>How many there are.</summary>
        public int Count
        {
            get { return RowBlock.Walk(model, true, null, 0, 0).Sum(block => block.Count); }
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
}
