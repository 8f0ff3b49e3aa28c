// The types of an image. Each is an object of the class of its kind, made on access.
using System;
using System.Collections;
using System.Collections.Generic;
using System.Linq;

namespace Brindle
{
    /// <summary>Any type.</summary>
    public class DataType : IEquatable<DataType>
    {
        internal readonly Model Model;
        internal readonly NativeObject Row;

        internal DataType(Model model, NativeObject row)
        {
            Model = model;
            Row = row;
        }

        // Null if the identifier names no type.
        internal static DataType Of(Model model, ulong id)
        {
            if (id == 0)
            {
                return null;
            }
            NativeObject row = model.Object(id);
            switch (row.Kind)
            {
            case Brindle.Kind.Base:
                return new BaseType(model, row);
            case Brindle.Kind.Unknown:
                return new DataType(model, row);
            case Brindle.Kind.Class:
            case Brindle.Kind.Struct:
            case Brindle.Kind.Union:
                return new StructType(model, row);
            case Brindle.Kind.Array:
                return new ArrayType(model, row);
            case Brindle.Kind.Pointer:
                return new PointerType(model, row);
            case Brindle.Kind.Typedef:
                return new TypedefType(model, row);
            case Brindle.Kind.FunctionType:
                return new FunctionType(model, row);
            case Brindle.Kind.Enum:
                return new EnumType(model, row);
            default:
                return null;
            }
        }

        /// <summary>Its own name, without scopes; for a type without a name its C declaration, such as
        /// "uint32" or "limits[2]".</summary>
        public string Name
        {
            get
            {
                string name = Row.Name.ToString();
                return name != "" ? name : Text;
            }
        }

        /// <summary>The name after its enclosing scopes; empty for a type without a name.</summary>
        public string QualifiedName
        {
            get { return Model.QualifiedName(Row.Id); }
        }

        /// <summary>The type as a C declaration without a name, such as "uint16[4][2]".</summary>
        public string Text
        {
            get { return Model.TypeText(Row.Id); }
        }

        /// <summary>The kind as a word: "base", "struct", "class", "union", "array", "pointer", "enum",
        /// "typedef", "function" or "unknown".</summary>
        public string Kind
        {
            get
            {
                switch (Row.Kind)
                {
                case Brindle.Kind.Base:
                    return "base";
                case Brindle.Kind.Class:
                    return "class";
                case Brindle.Kind.Struct:
                    return "struct";
                case Brindle.Kind.Union:
                    return "union";
                case Brindle.Kind.Array:
                    return "array";
                case Brindle.Kind.Pointer:
                    return "pointer";
                case Brindle.Kind.Enum:
                    return "enum";
                case Brindle.Kind.Typedef:
                    return "typedef";
                case Brindle.Kind.FunctionType:
                    return "function";
                default:
                    return "unknown";
                }
            }
        }

        /// <summary>Size in bytes, 0 if unknown.</summary>
        public ulong Size
        {
            get { return Model.SizeOf(Row.Id); }
        }

        /// <summary>The type that a chain of typedefs leads to; the type itself if it is no
        /// typedef.</summary>
        public DataType Resolved
        {
            get { return Of(Model, Model.WithoutTypedefs(Row.Id)) ?? this; }
        }

        /// <summary>True for the same type of the same image.</summary>
        public bool Equals(DataType other)
        {
            return other != null && other.Model == Model && other.Row.Id == Row.Id;
        }

        /// <inheritdoc/>
        public override bool Equals(object other)
        {
            return Equals(other as DataType);
        }

        /// <inheritdoc/>
        public override int GetHashCode()
        {
            return Row.Id.GetHashCode();
        }

        /// <inheritdoc/>
        public override string ToString()
        {
            return Text;
        }
    }

    /// <summary>A scalar.</summary>
    public sealed class BaseType : DataType
    {
        internal BaseType(Model model, NativeObject row) : base(model, row)
        {
        }

        /// <summary>"signed", "unsigned", "float", "bool" or "other".</summary>
        public string Encoding
        {
            get { return Values.EncodingOf(Row.BasicType); }
        }
    }

    /// <summary>A pointer or reference.</summary>
    public sealed class PointerType : DataType
    {
        internal PointerType(Model model, NativeObject row) : base(model, row)
        {
        }

        /// <summary>Null if nothing is known about the target.</summary>
        public DataType Target
        {
            get { return Of(Model, Row.Type); }
        }
    }

    /// <summary>Another name of a type.</summary>
    public sealed class TypedefType : DataType
    {
        internal TypedefType(Model model, NativeObject row) : base(model, row)
        {
        }

        /// <summary>The type that it names.</summary>
        public DataType Target
        {
            get { return Of(Model, Row.Type); }
        }
    }

    /// <summary>The type of a function.</summary>
    public sealed class FunctionType : DataType
    {
        internal FunctionType(Model model, NativeObject row) : base(model, row)
        {
        }

        /// <summary>Null for a function without a result.</summary>
        public DataType Result
        {
            get { return Of(Model, Row.Type); }
        }

        /// <summary>The types of its parameters.</summary>
        public IReadOnlyList<DataType> Parameters
        {
            get { return Model.Parameters(Row).Select(id => Of(Model, id)).ToList(); }
        }
    }

    /// <summary>An array of one or more dimensions.</summary>
    public sealed class ArrayType : DataType
    {
        internal ArrayType(Model model, NativeObject row) : base(model, row)
        {
        }

        /// <summary>The type of one element, after all dimensions.</summary>
        public DataType Element
        {
            get { return Of(Model, Row.Type); }
        }

        /// <summary>Element counts, outermost first.</summary>
        public IReadOnlyList<int> Dimensions
        {
            get { return Model.Dimensions(Row); }
        }

        /// <summary>Distance in bytes from one element to the next.</summary>
        public ulong Stride
        {
            get { return Model.ElementStride(Row.Id); }
        }
    }

    /// <summary>One value of an enum.</summary>
    public sealed class Enumerator
    {
        internal Enumerator(string name, long value)
        {
            Name = name;
            Value = value;
        }

        /// <summary>Its name.</summary>
        public string Name { get; }

        /// <summary>Its number: 32 bits with sign, also of unsigned enums; in the full reading 64 bits
        /// with sign where 32 can't express it.</summary>
        public long Value { get; }
    }

    /// <summary>An enum.</summary>
    public sealed class EnumType : DataType
    {
        internal EnumType(Model model, NativeObject row) : base(model, row)
        {
        }

        /// <summary>The reader made its name.</summary>
        public bool IsAnonymous
        {
            get { return Row.Anonymous != 0; }
        }

        /// <summary>The type of its values; may be null.</summary>
        public DataType Underlying
        {
            get { return Of(Model, Row.Type); }
        }

        /// <summary>Its values.</summary>
        public IReadOnlyList<Enumerator> Enumerators
        {
            get
            {
                return Model.Enumerators(Row)
                    .Select(row => new Enumerator(row.Name.ToString(), row.WholeValue))
                    .ToList();
            }
        }
    }

    /// <summary>A base class, and its offset in bytes from the start of the derived class.</summary>
    public sealed class BaseClass
    {
        internal BaseClass(DataType type, uint offset)
        {
            Type = type;
            Offset = offset;
        }

        /// <summary>The class.</summary>
        public DataType Type { get; }

        /// <summary>Offset in bytes.</summary>
        public uint Offset { get; }
    }

    /// <summary>A member of a structure, class or union.</summary>
    public sealed class Member
    {
        readonly Model model;
        readonly NativeObject row;

        internal Member(Model model, NativeObject row)
        {
            this.model = model;
            this.row = row;
        }

        /// <summary>Empty for an anonymous member, whose own members count as members of the enclosing
        /// type.</summary>
        public string Name
        {
            get { return row.Name.ToString(); }
        }

        /// <summary>For a bit field, the type of its storage unit.</summary>
        public DataType Type
        {
            get { return DataType.Of(model, row.Type); }
        }

        /// <summary>Offset in bytes from the start of the enclosing type; for a bit field, the offset
        /// of its storage unit.</summary>
        public uint Offset
        {
            get { return row.Offset; }
        }

        /// <summary>Size in bytes; for a bit field, the size of its storage unit.</summary>
        public ulong Size
        {
            get { return model.SizeOf(row.Type); }
        }

        /// <summary>True for a bit field.</summary>
        public bool IsBitField
        {
            get { return row.Kind == Kind.BitField; }
        }

        /// <summary>Position of a bit field in its storage unit, from the least significant bit; null
        /// for anything else.</summary>
        public uint? BitOffset
        {
            get { return IsBitField ? row.BitOffset : (uint?)null; }
        }

        /// <summary>Width of a bit field in bits; null for anything else.</summary>
        public ulong? BitSize
        {
            get { return IsBitField ? row.BitSize : (ulong?)null; }
        }

        /// <inheritdoc/>
        public override string ToString()
        {
            return string.Format("{0} at {1}, {2}{3}", Name, Offset, model.TypeText(row.Type),
                                 Values.TextOfBits(BitOffset, BitSize));
        }
    }

    /// <summary>A structure, class or union.</summary>
    public sealed class StructType : DataType
    {
        internal StructType(Model model, NativeObject row) : base(model, row)
        {
        }

        /// <summary>The reader made its name.</summary>
        public bool IsAnonymous
        {
            get { return Row.Anonymous != 0; }
        }

        /// <summary>Its own members, in the order of the file.</summary>
        public IReadOnlyList<Member> Members
        {
            get
            {
                return Model.ObjectsIn(Row.Id)
                    .Where(row => Brindle.Kind.IsMember(row.Kind))
                    .Select(row => new Member(Model, row))
                    .ToList();
            }
        }

        /// <summary>Its base classes.</summary>
        public IReadOnlyList<BaseClass> Bases
        {
            get
            {
                return Row.Kind == Brindle.Kind.Union
                    ? new List<BaseClass>()
                    : Model.BaseClasses(Row)
                          .Select(row => new BaseClass(Of(Model, row.Type), row.Offset))
                          .ToList();
            }
        }

        /// <summary>A member by its name.</summary>
        /// <exception cref="PathException">There is none.</exception>
        public Member this[string name]
        {
            get
            {
                Member found = Members.FirstOrDefault(member => member.Name == name);
                if (found == null)
                {
                    throw new PathException(Text + " has no member '" + name + "'");
                }
                return found;
            }
        }
    }

    /// <summary>The types of an image: named ones by their qualified name, all in the order of
    /// delivery.</summary>
    public sealed class Types : IEnumerable<DataType>
    {
        readonly Model model;

        internal Types(Model model)
        {
            this.model = model;
        }

        /// <summary>The first type with a qualified name.</summary>
        /// <exception cref="PathException">There is none.</exception>
        public DataType this[string name]
        {
            get
            {
                DataType found = Named(name).FirstOrDefault();
                if (found == null)
                {
                    throw new PathException("there is no type '" + name + "'");
                }
                return found;
            }
        }

        /// <summary>True if a type has this qualified name.</summary>
        public bool Contains(string name)
        {
            return Named(name).Any();
        }

        /// <inheritdoc/>
        public IEnumerator<DataType> GetEnumerator()
        {
            return TypesOf(model.IdsOfKind(Kind.Any)).GetEnumerator();
        }

        IEnumerator IEnumerable.GetEnumerator()
        {
            return GetEnumerator();
        }

        IEnumerable<DataType> Named(string name)
        {
            return TypesOf(model.Find(name, Kind.Any));
        }

        IEnumerable<DataType> TypesOf(IEnumerable<ulong> ids)
        {
            return ids.Select(id => DataType.Of(model, id)).Where(type => type != null);
        }
    }
}
