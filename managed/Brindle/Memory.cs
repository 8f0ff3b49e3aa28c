// Bytes of the target's memory, from wherever they come.
using System;
using System.Collections.Generic;

namespace Brindle
{
    /// <summary>Whatever knows the target's memory: a Memory, an Image with its initial values, or a class
    /// of yours that asks a debugger.</summary>
    public interface IMemory
    {
        /// <summary>The bytes of a stretch.</summary>
        /// <exception cref="MemoryGapException">They aren't known.</exception>
        byte[] ReadMemory(ulong address, ulong size);
    }

    /// <summary>Stretches of memory by their address, such as the regions of a dump. One that is added
    /// later hides an earlier one where it covers the whole of what is read.</summary>
    public sealed class Memory : IMemory
    {
        readonly List<KeyValuePair<ulong, byte[]>> stretches =
            new List<KeyValuePair<ulong, byte[]>>();

        /// <summary>Adds a stretch that begins at an address. It is kept, not copied.</summary>
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
