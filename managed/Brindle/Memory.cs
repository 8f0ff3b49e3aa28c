// Bytes of the target's memory, from any source.
using System;
using System.Collections.Generic;

namespace Brindle
{
    /// <summary>Anything that knows the target's memory: a Memory, an Image with its initial values, or
    /// a class of yours that asks a debugger.</summary>
    public interface IMemory
    {
        /// <summary>The bytes of a range.</summary>
        /// <exception cref="MemoryGapException">They aren't known.</exception>
        byte[] ReadMemory(ulong address, ulong size);
    }

    /// <summary>Ranges of memory by address, such as the regions of a dump. A range that is added later
    /// hides an earlier one if it covers everything that is read.</summary>
    public sealed class Memory : IMemory
    {
        readonly List<KeyValuePair<ulong, byte[]>> stretches =
            new List<KeyValuePair<ulong, byte[]>>();

        /// <summary>Makes one without any range.</summary>
        public Memory()
        {
        }

        /// <summary>Makes one of the bytes of a range that begins at an address.</summary>
        public Memory(byte[] content, ulong address = 0)
        {
            Add(address, content);
        }

        /// <summary>Adds the bytes of a range that begins at an address. They are kept, not
        /// copied.</summary>
        public void Add(ulong address, byte[] content)
        {
            stretches.Add(new KeyValuePair<ulong, byte[]>(address, content));
        }

        /// <inheritdoc/>
        public byte[] ReadMemory(ulong address, ulong size)
        {
            for (int index = stretches.Count; index-- > 0;)
            {
                ulong start = stretches[index].Key;
                byte[] content = stretches[index].Value;
                if (address >= start && address - start <= (ulong)content.Length &&
                    size <= (ulong)content.Length - (address - start))
                {
                    var bytes = new byte[size];
                    Array.Copy(content, (long)(address - start), bytes, 0, (long)size);
                    return bytes;
                }
            }
            throw new MemoryGapException(address, size);
        }
    }
}
