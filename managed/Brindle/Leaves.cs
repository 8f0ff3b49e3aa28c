// Variables taken apart into what has no parts.
using System;
using System.Collections;
using System.Collections.Generic;
using System.Linq;
using System.Text.RegularExpressions;

namespace Brindle
{
    /// <summary>The leaves that were requested. Each loop over them walks anew.</summary>
    public sealed class Leaves : IEnumerable<Leaf>
    {
        readonly Model model;
        readonly PathFilter filter;
        readonly ulong[] variables;
        readonly ulong arrayElements;
        readonly ulong limit;
        NativeLeafCuts cuts;

        // Of all variables, unless a pattern or identifiers choose some.
        internal Leaves(Model model, string pattern, ulong[] variables, ulong arrayElements, ulong limit)
        {
            if (arrayElements < 1 || limit < 1)
            {
                throw new ArgumentOutOfRangeException(arrayElements < 1 ? "arrayElements" : "limit",
                                                      "limits are at least 1");
            }
            this.model = model;
            filter = pattern != null ? new PathFilter(pattern) : null;
            this.variables = variables;
            this.arrayElements = arrayElements;
            this.limit = limit;
        }

        /// <summary>False if the last loop left something out: array elements beyond the limit of each
        /// array, the parts of places that are nested too deep, or leaves beyond the limit of
        /// all.</summary>
        public bool IsComplete
        {
            get { return cuts.Arrays == 0 && cuts.Wholes == 0 && cuts.IsExhausted == 0; }
        }

        /// <inheritdoc/>
        public IEnumerator<Leaf> GetEnumerator()
        {
            ulong[] wanted = variables;
            HashSet<long> wholes = null;
            if (filter != null)
            {
                wanted = filter.Variables(model, out wholes);
                if (wanted.Length == 0)
                {
                    yield break;
                }
            }
            foreach (RowBlock block in RowBlock.Walk(model, false, wanted, arrayElements, limit,
                                                     found => cuts = found))
            {
                for (int index = 0; index < block.Count; ++index)
                {
                    if (wholes == null || wholes.Contains(block.Globals[index]) ||
                        filter.Matches(block.PathOf(index)))
                    {
                        yield return new Leaf(block, index);
                    }
                }
            }
        }

        IEnumerator IEnumerable.GetEnumerator()
        {
            return GetEnumerator();
        }
    }

    // A pattern of paths, in which * stands for any characters and ? for one. It matches a path, or
    // what follows a "::" in it; a pattern that matches the name of a variable selects all of its
    // leaves.
    sealed class PathFilter
    {
        readonly Regex matches;
        readonly string head;
        readonly bool hasWildcard;

        public PathFilter(string pattern)
        {
            string translated = Regex.Escape(pattern).Replace(@"\*", ".*").Replace(@"\?", ".");
            matches = new Regex(@"\A(?:.*::)?" + translated + @"\z",
                                RegexOptions.Singleline | RegexOptions.CultureInvariant);
            int wildcard = pattern.IndexOfAny(new[] { '*', '?' });
            hasWildcard = wildcard >= 0;
            head = hasWildcard ? pattern.Substring(0, wildcard) : pattern;
        }

        public bool Matches(string path)
        {
            return matches.IsMatch(path);
        }

        // The variables with leaves that may match, and those among them that match themselves.
        public ulong[] Variables(Model model, out HashSet<long> wholes)
        {
            var wanted = new List<ulong>();
            wholes = new HashSet<long>();
            foreach (RowBlock block in RowBlock.Walk(model, true, null, 0, 0))
            {
                for (int index = 0; index < block.Count; ++index)
                {
                    string name = block.PathOf(index);
                    if (Matches(name))
                    {
                        wholes.Add(block.Globals[index]);
                    }
                    else if (!MayBegin(name))
                    {
                        continue;
                    }
                    wanted.Add((ulong)block.Globals[index]);
                }
            }
            return wanted.ToArray();
        }

        bool MayBegin(string name)
        {
            while (true)
            {
                if (head.StartsWith(name, StringComparison.Ordinal) ||
                    (hasWildcard && name.StartsWith(head, StringComparison.Ordinal)))
                {
                    return true;
                }
                int separator = name.IndexOf("::", StringComparison.Ordinal);
                if (separator < 0)
                {
                    return false;
                }
                name = name.Substring(separator + 2);
            }
        }
    }
}
