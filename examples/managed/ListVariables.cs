// Reads a file into a data model of its own and prints one row for each variable, as
// `brindle vars --sort file --format csv FILE` does.
using System;
using System.IO;
using System.Text;

static class ListVariables
{
    static string Field(string text)
    {
        return "\"" + text.Replace("\"", "\"\"") + "\"";
    }

    static void Print(FirmwareModel model, TextWriter output)
    {
        output.WriteLine("address,size,type,name,compileUnit");
        foreach (FirmwareObject variable in model.Variables)
        {
            output.WriteLine(string.Join(",", "0x" + variable.Address.ToString("x8"),
                                         model.SizeOf(variable).ToString(),
                                         Field(TypeText.Of(model, variable.Type)),
                                         Field(model.QualifiedName(variable)),
                                         Field(model.CompileUnitName(variable))));
        }
    }

    static int Main(string[] arguments)
    {
        if (arguments.Length != 1)
        {
            Console.Error.WriteLine("usage: ListVariables FILE");
            return 2;
        }
        var utf8 = new UTF8Encoding(false);
        int status = 0;
        var model = new FirmwareModel();
        using (var errors = new StreamWriter(Console.OpenStandardError(), utf8))
        using (var output = new StreamWriter(Console.OpenStandardOutput(), utf8))
        using (var reader = new Reader())
        {
            output.NewLine = errors.NewLine = "\n";
            try
            {
                reader.Read(arguments[0], model);
            }
            catch (ReadException exception)
            {
                errors.WriteLine(arguments[0] + ": " + exception.Message);
                status = 1;
            }
            Print(model, output);
        }
        return status;
    }
}
