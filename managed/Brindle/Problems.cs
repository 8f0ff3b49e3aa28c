// Why a read failed, where the reader's own words don't say it: what the system says of the file, and what its
// first bytes look like.
using System;
using System.Collections.Generic;
using System.IO;
using System.Linq;
using System.Text;
using System.Text.RegularExpressions;

namespace Brindle
{
    static class Problems
    {
        // What the reader says of a pipe, of a file that the system doesn't open, and of one whose Windows
        // headers can't be read.
        const string notOpened = "ELF file Open has failed.";
        // What the reader says of a file that ends before the place where it looks.
        static readonly string[] endedEarly = { "ELF file Seek has failed.",
                                                "ELF file Read has failed." };

        // What users take for images, by its first bytes; the comments of an A2L file may be long. The
        // program knows the same.
        const int startSize = 4096;
        static readonly KeyValuePair<string, string>[] foreign = {
            Foreign("^:[0-9A-Fa-f]{10}", "an Intel HEX file has the bytes of memory only: read the linked " +
                                             "image that it was made from"),
            Foreign("^S[0-9A-Fa-f]{7}", "a file of S-records has the bytes of memory only: read the " +
                                            "linked image that it was made from"),
            Foreign("^!<(arch|thin)>\n", "an archive of object files, which have no addresses yet: read " +
                                             "the linked image"),
            Foreign("ASAP2_VERSION|/begin PROJECT", "an A2L file: read the image that it describes")
        };

        static KeyValuePair<string, string> Foreign(string pattern, string problem)
        {
            return new KeyValuePair<string, string>(pattern, problem);
        }

        // An error of the reader with its reason. A file of another kind is not corrupt, as the reader
        // says. Without a content, the file is looked at.
        public static string Message(string path, byte[] content, string error, string container)
        {
            string reason = Reason(path, content, error, container);
            return foreign.Any(kind => kind.Value == reason) ? reason
                   : reason != "" ? error + " (" + reason + ")"
                                  : error;
        }

        // The reason for an error of the reader, or "" where its text says all.
        static string Reason(string path, byte[] content, string error, string container)
        {
            byte[] start;
            try
            {
                if (content == null && Directory.Exists(path))
                {
                    return "Is a directory";
                }
                if (content == null && new FileInfo(path).Length == 0 && error == notOpened)
                {
                    // Opening it here would wait for somebody who writes.
                    return "a pipe can't be read: seeking is required";
                }
                start = content ?? StartOf(path);
            }
            catch (Exception problem) when (problem is IOException ||
                                            problem is UnauthorizedAccessException)
            {
                return problem is FileNotFoundException || problem is DirectoryNotFoundException
                           ? "No such file or directory"
                       : problem is UnauthorizedAccessException ? "Permission denied"
                                                                : problem.Message;
            }
            catch (ArgumentException)
            {
                return "";
            }
            if (start.Length == 0)
            {
                return "The file is empty";
            }
            string text = Encoding.GetEncoding("iso-8859-1")
                              .GetString(start, 0, Math.Min(start.Length, startSize));
            foreach (KeyValuePair<string, string> kind in foreign)
            {
                if (Regex.IsMatch(text, kind.Key))
                {
                    return kind.Value;
                }
            }
            bool isWindows = BeginsWith(start, 'M', 'Z');
            if (container == "auto" && !BeginsWith(start, 0x7F, 'E', 'L', 'F') && !isWindows)
            {
                return "Read as COFF, being neither ELF nor a Windows image; a raw binary or a text has " +
                       "no symbols: read the linked image";
            }
            if (error == notOpened && (container == "pe" || isWindows))
            {
                return "not a Windows image, or truncated";
            }
            return endedEarly.Contains(error)
                ? "the file ends before its headers say: truncated, or not copied to the end"
                : "";
        }

        static byte[] StartOf(string path)
        {
            using (var file = new FileStream(path, FileMode.Open, FileAccess.Read, FileShare.ReadWrite))
            {
                var start = new byte[startSize];
                return start.Take(file.Read(start, 0, start.Length)).ToArray();
            }
        }

        static bool BeginsWith(byte[] content, params int[] start)
        {
            return content.Length >= start.Length &&
                   start.Select((value, index) => content[index] == value).All(same => same);
        }
    }
}
