// The smallest host in C#, on the managed library: prints where a variable or a part of it lies.
//
//     mono FindVariable.exe firmware.elf 'motor.pid[2].gain'
using System;
using Brindle;

static class FindVariable
{
    static int Main(string[] arguments)
    {
        if (arguments.Length != 2)
        {
            Console.Error.WriteLine("usage: FindVariable FILE PATH");
            return 2;
        }
        try
        {
            using (Image image = Image.Read(arguments[0]))
            {
                Place place = image[arguments[1]];
                Console.WriteLine("0x{0:x8} {1} bytes, {2}", place.Address, place.Size, place.Type);
            }
            return 0;
        }
        catch (BrindleException problem)
        {
            Console.Error.WriteLine(problem.Message);
            return 1;
        }
    }
}
