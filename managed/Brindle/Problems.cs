// Why a read failed, where the reader's own words don't say it: what the system says of the file, and what its
// first bytes look like.
using System;
using System.IO;
using System.Linq;

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

        // The reason for an error of the reader, or "" where its text says all. Without a content, the
        // file is looked at.
        public static string Reason(string path, byte[] content, string error, string container)
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
            bool isWindows = BeginsWith(start, 'M', 'Z');
            if (container == "auto" && !BeginsWith(start, 0x7F, 'E', 'L', 'F') && !isWindows)
            {
                return "Read as COFF, being neither ELF nor a Windows image";
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
                var start = new byte[4];
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
