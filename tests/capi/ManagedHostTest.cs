// What a host on a managed runtime must be able to rely on: an exception of its model comes out of the
// read, the reader can be used again, and no callback is collected while the library may call it.
//
//     mono ManagedHostTest.exe IMAGE
using System;
using System.Linq;

sealed class ModelFailure : Exception
{
}

// A model that does something before it takes a variable.
sealed class WatchedModel : FirmwareModel
{
    readonly Action beforeVariable;

    public WatchedModel(Action beforeVariable)
    {
        this.beforeVariable = beforeVariable;
    }

    public override ulong CreateGlobalData(string name, ulong type, ulong address, ulong scope,
                                           bool addressIsValid)
    {
        beforeVariable();
        return base.CreateGlobalData(name, type, address, scope, addressIsValid);
    }
}

static class ManagedHostTest
{
    static void Require(bool condition, string what)
    {
        if (!condition)
        {
            throw new Exception("failed: " + what);
        }
    }

    static int ReadAll(Reader reader, string image, Action beforeVariable)
    {
        var model = new WatchedModel(beforeVariable);
        reader.Read(image, model);
        return model.Variables.Count();
    }

    static int Main(string[] arguments)
    {
        string image = arguments[0];
        using (var reader = new Reader())
        {
            int variableCount = ReadAll(reader, image, () => {});
            Require(variableCount > 5, "the image has variables");

            int calls = 0;
            var thrown = new ModelFailure();
            var model = new WatchedModel(() => {
                if (++calls == 3)
                {
                    throw thrown;
                }
            });
            Exception caught = null;
            try
            {
                reader.Read(image, model);
            }
            catch (ModelFailure failure)
            {
                caught = failure;
            }
            Require(ReferenceEquals(caught, thrown), "the model's exception comes out");
            Require(calls == 3 && model.Variables.Count() == 2, "the read ends with the exception");

            Require(ReadAll(reader, image, () => GC.Collect()) == variableCount,
                    "the reader reads on, and callbacks live through collections");
        }
        return 0;
    }
}
