// Reading a file.
using System;
using System.Collections.Generic;
using System.Runtime.ExceptionServices;
using System.Runtime.InteropServices;

namespace Brindle
{
    /// <summary>How a file is read.</summary>
    public sealed class ReadOptions
    {
        /// <summary>Read in the full manner, which knows DWARF 5 and addresses of 64 bits. If false,
        /// the library's option decides.</summary>
        public bool Full { get; set; }

        /// <summary>Also read types that no variable uses.</summary>
        public bool AllTypes { get; set; }

        /// <summary>"auto", "elf", "coff" or "pe"; "auto" looks at the first bytes.</summary>
        public string Container { get; set; } = "auto";

        /// <summary>If another thread is reading, wait for its end instead of throwing
        /// BusyException.</summary>
        public bool Wait { get; set; }

        /// <summary>Names a content in messages.</summary>
        public string Name { get; set; }

        /// <summary>Options of the reader by name, for only this read.</summary>
        public IDictionary<string, string> Settings { get; } = new Dictionary<string, string>();

        /// <summary>Receives what the reader is doing and how far it has come with that, from 0 to 1.
        /// An exception in it ends the read and is thrown there.</summary>
        public Action<string, double> Progress { get; set; }
    }

    // One read, with its own reader of the library.
    sealed class ReadRun
    {
        // Their numbers begin with that of "auto".
        static readonly string[] containers = { "auto", "elf", "coff", "pe" };
        const int AnyContainer = -1;

        readonly ReadOptions options;
        readonly List<IntPtr> texts = new List<IntPtr>();
        IntPtr reader;
        ExceptionDispatchInfo failure;
        // The reader names only the phases that follow the first one.
        string phase = "Reading...";
        int start;
        int length = 1;

        public ReadRun(ReadOptions options)
        {
            this.options = options;
        }

        public Image Read(string path, byte[] content)
        {
            if (Native.brindle_interface_version() < Native.OldestInterface)
            {
                throw new BrindleException("the native library is too old");
            }
            if (path == null)
            {
                throw new ArgumentNullException("path");
            }
            int container = Array.IndexOf(containers, options.Container);
            if (container < 0)
            {
                throw new ArgumentException(string.Format(
                    "a container is one of {0}, not '{1}'", string.Join(", ", containers),
                    options.Container));
            }
            if (path.Contains("\0"))
            {
                throw new ArgumentException("a path has no null character");
            }
            GCHandle pinned = GCHandle.Alloc(content ?? new byte[1], GCHandleType.Pinned);
            GCHandle settings = GCHandle.Alloc(Settings(), GCHandleType.Pinned);
            try
            {
                var input = new NativeInput {
                    StructSize = Native.SizeOf<NativeInput>(), Path = Text(path),
                    Bytes = content != null ? Address(pinned, content.Length) : IntPtr.Zero,
                    ByteCount = (UIntPtr)(content != null ? content.Length : 0),
                    Container = AnyContainer + container, Waits = options.Wait ? 1 : 0,
                    Settings = settings.AddrOfPinnedObject(),
                    SettingCount = (UIntPtr)((Array)settings.Target).Length
                };
                return Read(ref input);
            }
            catch (ReadException failed)
            {
                throw new ReadException(
                    (path != "" ? path + ": " : "") +
                        Problems.Message(path, content, failed.Message, options.Container),
                    failed.Image);
            }
            finally
            {
                settings.Free();
                pinned.Free();
                texts.ForEach(Marshal.FreeHGlobal);
            }
        }

        Image Read(ref NativeInput input)
        {
            Native.Check(Native.brindle_reader_create(out reader));
            // The delegates must live as long as the library may call them.
            var callbacks = new NativeCallbacks {
                StructSize = Native.SizeOf<NativeCallbacks>(), SetProgressText = OnText,
                SetProgressInterval = OnInterval, SetProgressValue = OnValue
            };
            try
            {
                Native.Check(Native.brindle_reader_set_read_all_types(reader, options.AllTypes ? 1 : 0));
                Native.Check(Native.brindle_reader_set_callbacks(reader, ref callbacks));
                IntPtr model;
                int status = Native.brindle_reader_read_input(reader, ref input, out model);
                Image image = model != IntPtr.Zero ? new Image(new Model(model), Remarks())
                                             : null;
                if (failure != null)
                {
                    failure.Throw();
                }
                if (status != Native.Ok)
                {
                    throw Failure(status, image);
                }
                return image;
            }
            finally
            {
                Native.brindle_reader_destroy(reader);
                GC.KeepAlive(callbacks.SetProgressText);
                GC.KeepAlive(callbacks.SetProgressInterval);
                GC.KeepAlive(callbacks.SetProgressValue);
            }
        }

        List<string> Remarks()
        {
            var remarks = new List<string>();
            while (true)
            {
                int status = Native.NotFound;
                string text = Native.TextOf((byte[] buffer, UIntPtr capacity, out UIntPtr size) =>
                    status = Native.brindle_reader_remark_at(reader, (UIntPtr)remarks.Count,
                                                             IntPtr.Zero, buffer, capacity, out size));
                if (status != Native.Ok)
                {
                    return remarks;
                }
                remarks.Add(text);
            }
        }

        NativeSetting[] Settings()
        {
            var settings = new List<NativeSetting>();
            if (options.Full)
            {
                settings.Add(new NativeSetting { Name = Text("mIsFullReading"), Value = Text("1") });
            }
            foreach (KeyValuePair<string, string> setting in options.Settings)
            {
                settings.Add(
                    new NativeSetting { Name = Text(setting.Key), Value = Text(setting.Value) });
            }
            return settings.ToArray();
        }

        // Text that lives as long as the read.
        IntPtr Text(string text)
        {
            byte[] bytes = Native.Utf8(text);
            IntPtr copy = Marshal.AllocHGlobal(bytes.Length);
            texts.Add(copy);
            Marshal.Copy(bytes, 0, copy, bytes.Length);
            return copy;
        }

        // Address of pinned bytes; without any, an address that must not be read.
        IntPtr Address(GCHandle pinned, int count)
        {
            return count != 0 ? pinned.AddrOfPinnedObject() : Text("");
        }

        Exception Failure(int status, Image image)
        {
            string text = Native.TextOf((byte[] buffer, UIntPtr capacity, out UIntPtr size) =>
                Native.brindle_reader_error_text(reader, buffer, capacity, out size));
            switch (status)
            {
            case Native.Busy:
                return new BusyException(text + "; with ReadOptions.Wait a read waits for its end");
            case Native.OutOfMemory:
                return new OutOfMemoryException(text);
            case Native.NotFound:
            case Native.InvalidValue:
                return new OptionException(text);
            case Native.ReadFailed:
                return new ReadException(text, image);
            default:
                return new BrindleException(text);
            }
        }

        // No exception may leave a function that the library calls: keep it, and end the read.
        void Tell(int value)
        {
            try
            {
                if (options.Progress != null && failure == null)
                {
                    double share = length != 0 ? (double)(value - start) / length : 0;
                    options.Progress(phase, Math.Min(Math.Max(share, 0), 1));
                }
            }
            catch (Exception exception)
            {
                failure = ExceptionDispatchInfo.Capture(exception);
                Native.brindle_reader_cancel(reader);
            }
        }

        void OnText(IntPtr user, IntPtr text)
        {
            phase = Native.ConstantText(text);
        }

        void OnInterval(IntPtr user, int from, int to)
        {
            start = from;
            length = to - from;
            Tell(from);
        }

        void OnValue(IntPtr user, int value)
        {
            Tell(value);
        }
    }
}
