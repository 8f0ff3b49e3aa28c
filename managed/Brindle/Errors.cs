// What can go wrong.
using System;

namespace Brindle
{
    /// <summary>Any error of this library.</summary>
    public class BrindleException : Exception
    {
        /// <summary>Makes one with its text.</summary>
        public BrindleException(string message) : base(message)
        {
        }
    }

    /// <summary>A file could not be read to its end; the text is the reader's.</summary>
    public sealed class ReadException : BrindleException
    {
        internal ReadException(string message, Image image) : base(message)
        {
            Image = image;
        }

        /// <summary>What was delivered before; it is sound as far as it goes. May be null.</summary>
        public Image Image { get; }
    }

    /// <summary>Another read runs in this process. With <see cref="ReadOptions.Wait"/> a read waits for
    /// its end.</summary>
    public sealed class BusyException : BrindleException
    {
        internal BusyException(string message) : base(message)
        {
        }
    }

    /// <summary>There is no such option of the reader, or it takes no such value.</summary>
    public sealed class OptionException : BrindleException
    {
        internal OptionException(string message) : base(message)
        {
        }
    }

    /// <summary>A path leads nowhere, or there is nothing of this name; the text tells how far it
    /// leads.</summary>
    public sealed class PathException : BrindleException
    {
        internal PathException(string message) : base(message)
        {
        }
    }

    /// <summary>The bytes of an address are not known.</summary>
    public sealed class MemoryGapException : BrindleException
    {
        /// <summary>Makes one for a stretch of memory.</summary>
        public MemoryGapException(ulong address, ulong size)
            : base(string.Format("the memory has no {0} bytes at 0x{1:x}", size, address))
        {
        }
    }
}
