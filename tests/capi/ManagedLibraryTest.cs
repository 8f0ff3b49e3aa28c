// The managed library as its users meet it.
//
//     mono ManagedLibraryTest.exe IMAGE-FOLDER VALUES-IMAGE VALUES-TABLE
using System;
using System.Collections.Generic;
using System.Globalization;
using System.IO;
using System.Linq;
using System.Text;
using System.Threading;
using Brindle;

static class ManagedLibraryTest
{
    static void Require(bool condition, string what)
    {
        if (!condition)
        {
            throw new Exception("failed: " + what);
        }
    }

    static void Throws<Expected>(Action action, string text) where Expected : Exception
    {
        try
        {
            action();
        }
        catch (Expected exception)
        {
            Require(exception.Message.Contains(text), "'" + exception.Message + "' tells " + text);
            return;
        }
        Require(false, typeof(Expected).Name + " is thrown");
    }

    static void TestQuestions(Image image)
    {
        Require(image.Container == "elf" && !image.IsBigEndian && image.PointerSize == 4 &&
                    image.Machine == 40, "the target");
        Require(image.IsLinked && !image.IsWordAddressed && Image.LibraryVersion.Contains("."),
                "what else is known of it");
        Section code = image.Sections.First(section => section.Kind == "code");
        Require(image.Sections.Any(section => section.Kind == "zero") && code.FilePosition > 0 &&
                    code.FileSize == code.Size, "the sections");
        Require(image.Units.Any(unit => unit.Name == "motor_c"), "the units");
        List<Variable> locals = image.Units.SelectMany(unit => unit.Variables).ToList();
        Require(locals.SequenceEqual(image.Variables.Where(variable => locals.Contains(variable))) &&
                    locals.All(variable => variable.Unit != null), "the variables of a unit");
        Require(image.Variables["stops"].QualifiedName == "motor_step::stops", "a name without its scopes");
        Require(image.Variables["motors"].Size == 336, "the size of a variable");

        PathPlace phase = image["motors[1].status.phase"];
        Require(phase.BitOffset == 13 && phase.BitSize == 12 && phase.Variable.Name == "motors",
                "a bit field");
        var motor = (StructType)((ArrayType)image["motors"].Type).Element.Resolved;
        Require(motor["loops"].Offset == 12 && motor["loops"].Type.Text == "pid[2]" &&
                    motor["loops"].Size == 2 * image.Types["pid"].Size && !motor["loops"].IsBitField, "a member");
        var source = (EnumType)image["main_supply.source"].Type;
        Require(source.Enumerators.Any(item => item.Name == "SUPPLY_MAINS" && item.Value == 300),
                "an enumerator");
        Require(image.Types.Contains(motor) && image.Types.Contains("motor") &&
                    image.Types["motor"].Equals(motor) && motor.QualifiedName == "motor", "the types");
        var next = (PointerType)motor["next"].Type;
        Require(next.Target.Resolved.Equals(motor), "a pointer");
        Require(((BaseType)image["motors[1].loops[0].gain"].Type.Resolved).Encoding == "float" &&
                    ((BaseType)image["header.code"].Type.Resolved).Encoding == "unsigned",
                "encodings");
        Throws<PathException>(() => image.Types["nothing"].ToString(), "nothing");

        Throws<PathException>(() => image["motors[7].serial"].ToString(), "up to 'motors'");
        Throws<PathException>(() => image.Variables["nothing"].ToString(), "nothing");
        Throws<PathException>(() => image["motors\0"].ToString(), "null character");
        Require(!image.Contains("motors\0") && !image.Variables.Contains("motors\0"), "null characters");
        Require(image.Places("nothing").Count == 0, "no places");
        Require(image.Contains("motors[2]") && !image.Contains("motors[7]"), "whether a path resolves");
        Hit hit = image.At(image["motors[1].loops[0].gain"].Address + 2).Single();
        Require(hit.Place.Path == "motors[1].loops[0].gain" && hit.Offset == 2 &&
                    image.At(image["motors[1].serial"].Address + 3).Any(
                        other => other.Place.Path == "motors[1].serial.bytes[3]") &&
                    image.At(1).Count == 0, "what lies at an address");

        Require(image.Variables.Count == image.Variables.Count() && image.Variables.Contains("stops") &&
                    !image.Variables.Contains("nothing"), "how many variables there are");
        Require(image.Variables.Matching("motor?").Single().Equals(image.Variables["motors"]) &&
                    image.Variables.All("stops").Count == image.Places("stops").Count,
                "variables by pattern and by name");
    }

    static void TestLeaves(Image image)
    {
        string[] header = image.Leaves("header").Select(leaf => leaf.Path).ToArray();
        Require(header.SequenceEqual(new[] { "header.kind", "header.stamp", "header.code",
                                             "header.flags", "header.serial" }), "a whole variable");
        Leaf gain = image.Leaves("motors[?].loops[0].gain").Skip(1).First();
        Require(gain.Address == image["motors[1].loops[0].gain"].Address && gain.Size == 4 &&
                    gain.BitSize == null && gain.Type.Name == "float", "a pattern");
        Require(image.Leaves("step::stops").Count() == 0 && image.Leaves("stops").Any(), "scopes");
        Leaves all = image.Leaves(), some = image.Leaves(null, 1000, 7);
        Require(all.Count() > 150 && all.IsComplete && some.Count() == 7 && !some.IsComplete, "all");
        Leaves first = image.Leaves("motors*", 1);
        Require(!first.Any(leaf => leaf.Path.Contains("[1]")) && !first.IsComplete, "first elements");
        Require(image.Variables["header"].Leaves().Count() == 5, "those of a variable");
        Throws<ArgumentOutOfRangeException>(() => image.Leaves(null, 0), "limits");
    }

    static void TestValues(Image image)
    {
        var supply = (Dictionary<string, object>)image["main_supply"].ValueOf(image);
        Require(((EnumValue)supply["source"]).Name == "SUPPLY_MAINS", "an enum");
        var voltage = (Dictionary<string, object>)supply["voltage"];
        Require((float)voltage["low"] == 11.5f && (double)supply["energy"] == 1.0, "floats");
        Require((ulong)image["main_supply.identity.all"].ValueOf(image) == 7, "an integer");
        Require(((List<object>)supply["cells"]).Count == 4, "an array");

        PathPlace trim = image["motors[1].status.trim"];
        var dump = Enumerable.Repeat((byte)0xFF, 336).ToArray();
        var memory = new Memory();
        memory.Add(image["motors"].Address, dump);
        Require((long)trim.ValueOf(memory) == -1, "a bit field with sign");
        Require((ulong)image["motors[1].status.phase"].ValueOf(memory) == 0xFFF, "one without");
        Throws<MemoryGapException>(() => image["header.kind"].ValueOf(memory), "1 bytes");
    }

    static void TestValueTable(Image image, string table)
    {
        foreach (string line in File.ReadLines(table).Skip(1))
        {
            string[] row = line.Split(',');
            byte[] bytes = Enumerable.Range(0, row[1].Length / 2)
                .Select(index => Convert.ToByte(row[1].Substring(2 * index, 2), 16)).ToArray();
            object value = image[row[0]].Decode(bytes);
            bool isSame = value is float || value is double
                ? Convert.ToDouble(value).Equals(double.Parse(row[2], CultureInfo.InvariantCulture))
                : Convert.ToString(value, CultureInfo.InvariantCulture) == row[2];
            Require(isSame, line + ", not " + value);
        }
    }

    // The storage unit of the last bits goes beyond the structure, and beyond the dump.
    static void TestPackedBits(Image image)
    {
        PathPlace fields = image["fields"];
        byte[] dump = Enumerable.Repeat((byte)0xFF, (int)fields.Size).ToArray();
        dump[dump.Length - 1] = 1;
        var memory = new Memory(dump, fields.Address);
        var whole = (Dictionary<string, object>)fields.ValueOf(memory);
        Require((ulong)whole["wide"] == (1UL << 62) - 1 && (long)whole["last"] == -1 &&
                    whole["phase"].Equals(image["fields.phase"].ValueOf(memory)) &&
                    whole["phase"].ToString() == "PHASE_RUN", "packed bit fields");
        Throws<MemoryGapException>(() => image["fields.phase"].ValueOf(new Memory(new byte[16], fields.Address)),
                                   "1 bytes");
    }

    // gdb prints these values of the same images.
    static void TestBigEndian(string folder)
    {
        string device = Path.Combine(folder, "full", "powerpc-device-O2.elf");
        using (Image image = Image.Read(device, new ReadOptions { Full = true }))
        {
            var frame = (Dictionary<string, object>)image["last_frame"].ValueOf(image);
            Require((ulong)frame["serial"] == 7 && (ulong)frame["check"] == 8 && (long)frame["position"] == -5,
                    "packed bit fields");
        }

        using (Image image = Image.Read(Path.Combine(folder, "powerpc-c-dwarf4-O2.elf")))
        {
            Require(image.IsBigEndian, "byte order");
            Require((ulong)image["machine_word"].ValueOf(image) == 6, "a value");
        }
    }

    static void TestReads(string path)
    {
        byte[] content = File.ReadAllBytes(path);
        using (Image image = Image.Read(content, new ReadOptions { Name = "unpacked" }))
        {
            Require(image.Path == "unpacked" && image["motors"].Size == 336, "a content");
            Require(image["main_supply.identity"].ValueOf(image) != null, "its bytes");
        }
        foreach (string container in new[] { "elf", "auto" })
        {
            using (Image image = Image.Read(path, new ReadOptions { Container = container }))
            {
                Require(image.Container == "elf", "a container by its name");
            }
        }
        Throws<ReadException>(() => Image.Read(path, new ReadOptions { Container = "pe" }), "not a Windows image");
        var phases = new HashSet<string>();
        Image.Read(path, new ReadOptions { Progress = (phase, share) => phases.Add(phase) });
        Require(phases.SetEquals(new[] { "Reading...", "Post-Processing..." }), "the phases");
        Throws<ArgumentException>(() => Image.Read(path, new ReadOptions { Container = "zip" }), "zip");
        var wrong = new ReadOptions();
        wrong.Settings["mNothing"] = "1";
        Throws<OptionException>(() => Image.Read(path, wrong), "mNothing");
        Throws<InvalidTimeZoneException>(() => Image.Read(path, new ReadOptions {
            Progress = (phase, share) => { throw new InvalidTimeZoneException("enough"); }
        }), "enough");

        string split = Path.Combine(Path.GetDirectoryName(path), "full", "arm-c-split.elf");
        Require(Image.Read(split, new ReadOptions { Full = true }).Remarks.Count == 1, "a remark");
        Require(Image.Read(path, new ReadOptions { Full = true }).Remarks.Count == 0, "no remark");

        Image closed = Image.Read(path);
        Place place = closed["motors"];
        closed.Dispose();
        Throws<ObjectDisposedException>(() => place.Type.ToString(), "");
    }

    // The errors name the file and the reason.
    static void TestErrors(byte[] content)
    {
        string file = Path.GetTempFileName();
        var reasons = new Dictionary<string, byte[]> {
            { "The file is empty", new byte[0] },
            { "neither ELF nor", new byte[] { (byte)'s', (byte)'o', (byte)'m', (byte)'e' } },
            { "an Intel HEX file", Encoding.ASCII.GetBytes(":020000040800F2\n") },
            { "an A2L file", Encoding.ASCII.GetBytes("/* of old */ ASAP2_VERSION 1 61") },
            { "truncated", content.Take(1000).ToArray() }
        };
        foreach (KeyValuePair<string, byte[]> reason in reasons)
        {
            File.WriteAllBytes(file, reason.Value);
            Throws<ReadException>(() => Image.Read(file), file + ": ");
            Throws<ReadException>(() => Image.Read(file), reason.Key);
            Throws<ReadException>(() => Image.Read(reason.Value), reason.Key);
        }
        File.Delete(file);
        Throws<ReadException>(() => Image.Read(file + "-ü"), "-ü: ELF file Open has failed. (No such file");
        Throws<ReadException>(() => Image.Read(Path.GetTempPath()), "Is a directory");
        Throws<ArgumentException>(() => Image.Read("a\0b"), "null character");
    }

    static void TestThreads(string path)
    {
        Image waited = null;
        Thread waiting = null;
        var options = new ReadOptions { Progress = (phase, share) =>
        {
            if (waiting == null)
            {
                waiting = new Thread(() => waited = Image.Read(path, new ReadOptions { Wait = true }));
                var refused = new Thread(() => Throws<BusyException>(() => Image.Read(path), "runs"));
                refused.Start();
                refused.Join();
                waiting.Start();
            }
        } };
        Image.Read(path, options);
        waiting.Join();
        Require(waited["motors"].Size == 336, "a read that waits");
    }

    static int Main(string[] arguments)
    {
        string path = Path.Combine(arguments[0], "arm-c-dwarf4-O0.elf");
        using (Image image = Image.Read(path, new ReadOptions { Full = true }))
        {
            TestQuestions(image);
            TestLeaves(image);
            TestValues(image);
        }
        foreach (string values in arguments.Skip(2))
        {
            using (Image image = Image.Read(values, new ReadOptions { Full = true }))
            {
                TestValueTable(image, arguments[1]);
                TestPackedBits(image);
            }
        }
        TestBigEndian(arguments[0]);
        TestReads(path);
        TestErrors(File.ReadAllBytes(path));
        TestThreads(path);
        return 0;
    }
}
