// miraclient from C#: lists the BIOS attributes, changes one, is refused another change, and makes a
// firmware call of its own. What it expects is the simulated machine "locked": put the simulator's
// library beside it, and let it run with MIRA_SIM=locked.
//
//   mcs MiraClient.cs Tour.cs    (or csc)

using System;
using System.Collections.Generic;
using System.Text;
using MiraClient;

public static class Tour
{
    private static int mistakes = 0;

    private static void Expect(string what, bool isSo)
    {
        Console.WriteLine(what + (isSo ? ": as expected" : ": NOT as expected"));
        if (!isSo) ++mistakes;
    }

    private static Status StatusOf(Action work)
    {
        try
        {
            work();
            return Status.Done;
        }
        catch (MiraException error)
        {
            return error.Status;
        }
    }

    public static int Main()
    {
        const string set = "{\"command\": \"attr.set\", \"name\": \"FanFloor\", \"value\": 30}";
        const string tooMuch = "{\"command\": \"attr.set\", \"name\": \"FanFloor\", \"value\": 3000}";
        const string list = "{\"command\": \"attr.list\"}";
        byte[] setup = Encoding.UTF8.GetBytes("setup1");
        var password = new Dictionary<string, byte[]> { { "password", setup } };
        using (var machine = new Machine())
        {
            Expect("the list of attributes", machine.Request(list).Contains("\"FanFloor\""));
            Expect("a request that is cancelled",
                   StatusOf(() => machine.Request(list, null, (done, total) => false)) == Status.Cancelled);
            Expect("a change without the password", StatusOf(() => machine.Request(set)) == Status.Password);
            Expect("a change with it", machine.Request(set, password).Contains("\"changed\": true"));
            Expect("a change beyond the limits",
                   StatusOf(() => machine.Request(tooMuch, password)) == Status.InvalidValue);
            Record record = Record.Of(0, 0, 0x78);  // read a setting by its location
            machine.Call(ref record);
            Expect("a firmware call", record.Results[0] == 2);
        }
        Array.Clear(setup, 0, setup.Length);
        return mistakes;
    }
}
