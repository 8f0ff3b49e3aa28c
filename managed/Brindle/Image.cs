// The result of reading one file.
using System;
using System.Collections.Generic;
using System.Linq;

namespace Brindle
{
    /// <summary>A section in the target's memory.</summary>
    public sealed class Section
    {
        static readonly string[] kinds = { "code", "read-only data", "data", "zero" };

        internal Section(NativeSection row)
        {
            Name = row.Name.ToString();
            Address = row.Address;
            Size = row.Size;
            Kind = kinds[row.Kind];
            FilePosition = row.FilePosition;
            FileSize = row.FileSize;
        }

        /// <summary>Its name.</summary>
        public string Name { get; }

        /// <summary>Address of the first byte.</summary>
        public ulong Address { get; }

        /// <summary>Size in bytes.</summary>
        public ulong Size { get; }

        /// <summary>"code", "read-only data", "data", or "zero" for a section without bytes in the
        /// file.</summary>
        public string Kind { get; }

        /// <summary>File position of its first byte.</summary>
        public ulong FilePosition { get; }

        /// <summary>How many bytes the file has; those missing at the end are zero.</summary>
        public ulong FileSize { get; }
    }

    /// <summary>A place that holds a byte, and the distance of the byte from the first byte of the
    /// place.</summary>
    public sealed class Hit
    {
        internal Hit(PathPlace place, ulong offset)
        {
            Place = place;
            Offset = offset;
        }

        /// <summary>The place.</summary>
        public PathPlace Place { get; }

        /// <summary>Distance in bytes.</summary>
        public ulong Offset { get; }
    }

    /// <summary>A source file that was compiled.</summary>
    public sealed class CompileUnit
    {
        readonly Model model;
        readonly ulong id;

        internal CompileUnit(Model model, ulong id)
        {
            this.model = model;
            this.id = id;
        }

        /// <summary>Its name.</summary>
        public string Name
        {
            get { return model.Object(id).Name.ToString(); }
        }

        /// <summary>The variables that are local to it.</summary>
        public IReadOnlyList<Variable> Variables
        {
            get
            {
                return model.ObjectsIn(id)
                    .Where(row => row.Kind == Kind.Global)
                    .Select(row => new Variable(model, row.Id))
                    .ToList();
            }
        }
    }

    /// <summary>An image: its target, sections, variables and types. Everything is looked up on access,
    /// on any thread.</summary>
    public sealed class Image : IDisposable, IMemory
    {
        static readonly string[] containers = { "elf", "coff", "pe" };

        readonly Model model;

        internal Image(Model model, IReadOnlyList<string> remarks)
        {
            this.model = model;
            Remarks = remarks;
        }

        /// <summary>What the read skipped and what to do about it, one line each; only the full manner
        /// of reading makes remarks.</summary>
        public IReadOnlyList<string> Remarks { get; }

        /// <summary>Reads an ELF, TI-COFF or PE file.</summary>
        /// <exception cref="ReadException">It could not be read to its end.</exception>
        public static Image Read(string path, ReadOptions options = null)
        {
            return new ReadRun(options ?? new ReadOptions()).Read(path, null);
        }

        /// <summary>Reads a file that lies in memory.</summary>
        /// <exception cref="ReadException">It could not be read to its end.</exception>
        public static Image Read(byte[] content, ReadOptions options = null)
        {
            if (content == null)
            {
                throw new ArgumentNullException("content");
            }
            options = options ?? new ReadOptions();
            return new ReadRun(options).Read(options.Name ?? "", content);
        }

        /// <summary>The path as it was given; empty if the file could not be opened.</summary>
        public string Path
        {
            get { return model.Path; }
        }

        /// <summary>"elf", "coff" or "pe".</summary>
        public string Container
        {
            get { return containers[model.Image.Container]; }
        }

        /// <summary>Order of the bytes of a number in the target's memory.</summary>
        public bool IsBigEndian
        {
            get { return model.IsBigEndian; }
        }

        /// <summary>Width of an address in bytes by the class of the file: 4 or 8.</summary>
        public int AddressSize
        {
            get { return model.Image.AddressSize; }
        }

        /// <summary>Size of a pointer in bytes: of the first pointer type in the file, or else
        /// AddressSize.</summary>
        public int PointerSize
        {
            get { return model.Image.PointerSize; }
        }

        /// <summary>The number of the target: e_machine of ELF, the target id of TI COFF, the machine of
        /// PE.</summary>
        public int Machine
        {
            get { return model.Image.Machine; }
        }

        /// <summary>False for an object file, which has no addresses yet.</summary>
        public bool IsLinked
        {
            get { return model.Image.IsLinked != 0; }
        }

        /// <summary>The target counts memory in words of 16 bits. Addresses and sizes are still in
        /// bytes.</summary>
        public bool IsWordAddressed
        {
            get { return model.Image.IsWordAddressed != 0; }
        }

        /// <summary>False for a file of debug information that was split off its image, by
        /// objcopy --only-keep-debug, say: it has no initial values.</summary>
        public bool HasContents
        {
            get { return model.Image.HasContents != 0; }
        }

        /// <summary>The version of the native library.</summary>
        public static string LibraryVersion
        {
            get { return Native.ConstantText(Native.brindle_version()); }
        }

        /// <summary>The sections in the target's memory, by ascending address.</summary>
        public IReadOnlyList<Section> Sections
        {
            get
            {
                return Enumerable.Range(0, (int)model.Image.SectionCount)
                    .Select(index => new Section(model.Section(index)))
                    .ToList();
            }
        }

        /// <summary>The compile units.</summary>
        public IEnumerable<CompileUnit> Units
        {
            get { return model.IdsOfKind(Kind.CompileUnit).Select(id => new CompileUnit(model, id)); }
        }

        /// <summary>All variables with a static address.</summary>
        public Variables Variables
        {
            get { return new Variables(model); }
        }

        /// <summary>All types.</summary>
        public Types Types
        {
            get { return new Types(model); }
        }

        /// <summary>The place that a path such as "motor.pid[2].gain" names: a variable by its
        /// qualified name, or else by its name only, then members and elements. Pointers are not
        /// followed. Several variables may share the name: this is the first of them, and Places
        /// gives each.</summary>
        /// <exception cref="PathException">It doesn't resolve; the text says how far it
        /// did.</exception>
        public PathPlace this[string path]
        {
            get { return new PathPlace(model, path, model.Resolve(path)); }
        }

        /// <summary>True if the path resolves.</summary>
        public bool Contains(string path)
        {
            NativePlace place;
            return model.TryResolve(path, 0, out place);
        }

        /// <summary>The places of a path for each variable of its name, since static variables may
        /// share a name; none if it doesn't resolve. "count" also leads to "count.2", "count.3" and so
        /// on, which share name and scope with it and whose numbers may change from build to
        /// build.</summary>
        public IReadOnlyList<PathPlace> Places(string path)
        {
            var places = new List<PathPlace>();
            NativePlace place;
            while (model.TryResolve(path, places.Count, out place))
            {
                places.Add(new PathPlace(model, path, place));
            }
            return places;
        }

        /// <summary>Everything that holds the byte at an address: a leaf, or the innermost structure or
        /// array if the byte lies in a gap; several places if variables or members of a union
        /// overlap.</summary>
        public IReadOnlyList<Hit> At(ulong address)
        {
            var hits = new List<Hit>();
            for (Hit hit; (hit = model.HitAt(address, hits.Count)) != null;)
            {
                hits.Add(hit);
            }
            return hits;
        }

        /// <summary>The variables taken apart into what has no parts.</summary>
        /// <param name="pattern">which paths are wanted, with * for any characters and ? for one; it
        /// may also match what follows a "::". A pattern that matches the name of a variable selects
        /// all of its leaves. Null for all.</param>
        /// <param name="arrayElements">how many elements of each array are visited</param>
        /// <param name="limit">how many leaves are visited in all; Leaves.IsComplete says whether any
        /// were left out</param>
        public Leaves Leaves(string pattern = null, ulong arrayElements = 1000, ulong limit = 1000000)
        {
            return new Leaves(model, pattern, null, arrayElements, limit);
        }

        /// <summary>The bytes of a range of the target's memory when the program starts; null if the
        /// image doesn't have them.</summary>
        public byte[] InitialBytes(ulong address, ulong size)
        {
            return model.InitialBytes(address, size);
        }

        /// <inheritdoc/>
        public byte[] ReadMemory(ulong address, ulong size)
        {
            byte[] bytes = model.InitialBytes(address, size);
            if (bytes == null)
            {
                throw new MemoryGapException(address, size);
            }
            return bytes;
        }

        /// <summary>Frees the memory of the image. Objects made from it throw ObjectDisposedException
        /// from then on.</summary>
        public void Dispose()
        {
            model.Close();
        }
    }
}
