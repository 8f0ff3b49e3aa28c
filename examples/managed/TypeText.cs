// Types as C declarations without a name, such as "uint16[4][2]" or "void (*)(int32)".
using System.Linq;
using System.Text;

static class TypeText
{
    const int LongestChain = 1000;
    const int DeepestParameters = 32;

    // Indexed by the number of the basic type.
    static readonly string[] BaseNames = {
        null, "void", "char", "wchar", "int32", "uint32", "float", "bool", "long", "unsigned long",
        null, "int8", "uint8", "int16", "uint16", "int64", "uint64", "special", "float16" };
    const int Double = 10;

    public static string Of(FirmwareModel model, ulong type, int depth = 0)
    {
        // The text before and after the place of the name, from there outwards.
        string before = "";
        string behind = "";
        FirmwareObject current = model.Find(type);
        bool isReferredTo = false;
        for (int length = 0; length < LongestChain; ++length)
        {
            if (isReferredTo && current != null && current.Kind == Kind.Unknown &&
                current.Size == 0)
            {
                return Declaration("void", before, behind);
            }
            if (current == null || !IsDerived(current))
            {
                return Declaration(Specifier(model, current), before, behind);
            }
            if (current.Kind == Kind.Pointer)
            {
                before = "*" + before;
            }
            else if (current.Kind != Kind.Typedef)
            {
                if (before.StartsWith("*"))
                {
                    before = "(" + before;
                    behind += ")";
                }
                behind += current.Kind == Kind.Array ? Dimensions(current)
                                                     : Parameters(model, current, depth);
                if (current.Kind == Kind.FunctionType && current.Type == 0)
                {
                    return Declaration("void", before, behind);
                }
            }
            isReferredTo = current.Kind == Kind.Pointer || current.Kind == Kind.FunctionType;
            current = model.Find(current.Type);
        }
        return Declaration("...", before, behind);
    }

    // A typedef without a name counts as its target.
    static bool IsDerived(FirmwareObject type)
    {
        return type.Kind == Kind.Pointer || type.Kind == Kind.Array ||
               type.Kind == Kind.FunctionType || (type.Kind == Kind.Typedef && type.Name == "");
    }

    static string Declaration(string specifier, string before, string behind)
    {
        string declarator = before + behind;
        int pointers = declarator.TakeWhile(character => character == '*').Count();
        bool hasParenthesis = pointers < declarator.Length && declarator[pointers] == '(';
        return specifier + declarator.Substring(0, pointers) + (hasParenthesis ? " " : "") +
               declarator.Substring(pointers);
    }

    static string Dimensions(FirmwareObject array)
    {
        var text = new StringBuilder();
        foreach (uint dimension in array.Dimensions)
        {
            text.Append('[').Append(dimension).Append(']');
        }
        return text.ToString();
    }

    static string Parameters(FirmwareModel model, FirmwareObject function, int depth)
    {
        if (depth == DeepestParameters)
        {
            return "(...)";
        }
        return "(" +
               string.Join(", ", function.Parameters.Select(type => Of(model, type, depth + 1))) +
               ")";
    }

    static string Specifier(FirmwareModel model, FirmwareObject type)
    {
        switch (type == null ? Kind.Namespace : type.Kind)
        {
        case Kind.Base:
            return BaseName(type);
        case Kind.Unknown:
            return "unknown(" + type.Size + ")";
        case Kind.Class:
        case Kind.Struct:
        case Kind.Union:
        case Kind.Enum:
            return type.Name == "" ? type.Kind.ToString().ToLowerInvariant()
                                   : model.QualifiedName(type);
        case Kind.Typedef:
            return model.QualifiedName(type);
        default:
            return "?";
        }
    }

    static string BaseName(FirmwareObject type)
    {
        if (type.BasicType == Double)
        {
            return type.Size == sizeof(double) ? "double" : "float(" + type.Size + ")";
        }
        return BaseNames[type.BasicType] ?? "notype(" + type.Size + ")";
    }
}
