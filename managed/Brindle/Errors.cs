// The exceptions of the library.
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

    /// <summary>A file could not be read to its end; the text names it, and says why.</summary>
    public sealed class ReadException : BrindleException
    {
        internal ReadException(string message, Image image) : base(message)
        {
            Image = image;
        }

        /// <summary>What was delivered before the failure: sound, but not complete. May be
        /// null.</summary>
        public Image Image { get; }
    }

    /// <summary>Another read is running in this process. With <see cref="ReadOptions.Wait"/> a read
    /// waits for its end.</summary>
    public sealed class BusyException : BrindleException
    {
        internal BusyException(string message) : base(message)
        {
        }
    }

    /// <summary>The reader has no such option, or the option doesn't take the value.</summary>
    public sealed class OptionException : BrindleException
    {
        internal OptionException(string message) : base(message)
        {
        }
    }

    /// <summary>A path doesn't resolve, or nothing has this name; the text says how far the path
    /// resolved.</summary>
    public sealed class PathException : BrindleException
    {
        internal PathException(string message) : base(message)
        {
        }
    }

    /// <summary>The bytes at an address are not known.</summary>
    public sealed class MemoryGapException : BrindleException
    {
        /// <summary>Makes one for a range of memory.</summary>
        public MemoryGapException(ulong address, ulong size)
            : base(string.Format("the memory has no {0} bytes at 0x{1:x}", size, address))
        {
        }
    }
}
