// miraclient for .NET: the functions of mira_client.h, and a class that owns a machine.

using System;
using System.Collections.Generic;
using System.Runtime.InteropServices;
using System.Text;

namespace MiraClient
{
    public enum Status
    {
        Done = 0,
        Unexpected = 1,
        Usage = 2,
        NotFound = 3,
        NotSupported = 4,
        Password = 5,
        InvalidValue = 6,
        AdministratorNeeded = 7,
        TransportFailed = 9,
        AppliedInPart = 10,
        Refused = 11,
        Differs = 12,
        Cancelled = 13,
        Busy = 14
    }

    /// <summary>A status that is not Done, with its JSON document.</summary>
    public sealed class MiraException : Exception
    {
        public Status Status { get; }
        public string Document { get; }
        public MiraException(Status status, string document) : base("miraclient: " + status)
        {
            Status = status;
            Document = document;
        }
    }

    [StructLayout(LayoutKind.Sequential)]
    public struct Record
    {
        public uint StructSize;
        public ushort Class;
        public ushort Select;
        [MarshalAs(UnmanagedType.ByValArray, SizeConst = 4)] public uint[] Arguments;
        public uint ArgumentFlags;
        public uint KeyArgument;
        public int Completion;
        [MarshalAs(UnmanagedType.ByValArray, SizeConst = 3)] public uint[] Results;

        public static Record Of(ushort cls, ushort select, params uint[] arguments)
        {
            var words = new uint[4];
            arguments.CopyTo(words, 0);
            return new Record
            {
                StructSize = (uint)Marshal.SizeOf(typeof(Record)),
                Class = cls,
                Select = select,
                Arguments = words,
                Results = new uint[3]
            };
        }
    }

    /// <summary>An open machine. Dispose closes it.</summary>
    public sealed class Machine : IDisposable
    {
        /// <summary>How far a request is; false cancels it. It may not throw.</summary>
        public delegate bool Progress(uint done, uint total);

        private uint handle;

        /// <param name="options">JSON; "{}" is this PC.</param>
        public Machine(string options = "{}")
        {
            byte[] text = Encoding.UTF8.GetBytes(options);
            IntPtr document;
            uint size;
            int status = mira_open(text, (uint)text.Length, out handle, out document, out size);
            Take(status, document, size);
        }

        /// <summary>Sends a request and gives its document.</summary>
        public string Request(string json, IDictionary<string, byte[]> secrets = null, Progress progress = null)
        {
            byte[] text = Encoding.UTF8.GetBytes(json);
            var owned = new List<GCHandle>();
            var slots = new List<IntPtr>();
            var plain = new List<Secret>();
            try
            {
                foreach (var secret in secrets ?? new Dictionary<string, byte[]>())
                {
                    // Pinned: the collector makes no copies of it.
                    owned.Add(GCHandle.Alloc(secret.Value, GCHandleType.Pinned));
                    slots.Add(Marshal.StringToHGlobalAnsi(secret.Key));
                    plain.Add(new Secret
                    {
                        Slot = slots[slots.Count - 1],
                        Bytes = owned[owned.Count - 1].AddrOfPinnedObject(),
                        Size = (uint)secret.Value.Length
                    });
                }
                NativeProgress native = null;
                if (progress != null) native = (user, done, total) => progress(done, total) ? 0 : 1;
                IntPtr document;
                uint size;
                int status = mira_request(handle, text, (uint)text.Length, plain.ToArray(), (uint)plain.Count,
                                          native, IntPtr.Zero, out document, out size);
                GC.KeepAlive(native);
                return Take(status, document, size);
            }
            finally
            {
                foreach (GCHandle memory in owned) memory.Free();
                foreach (IntPtr slot in slots) Marshal.FreeHGlobal(slot);
            }
        }

        /// <summary>Makes a firmware call as it stands.</summary>
        public string Call(ref Record record, byte[] data = null)
        {
            data = data ?? new byte[0];
            IntPtr document;
            uint size;
            int status = mira_call(handle, ref record, data, (uint)data.Length, IntPtr.Zero, out document, out size);
            return Take(status, document, size);
        }

        public void Cancel() { mira_cancel(handle); }

        public void Dispose()
        {
            if (handle != 0) mira_close(handle);
            handle = 0;
        }

        private static string Take(int status, IntPtr document, uint size)
        {
            string text = "";
            if (document != IntPtr.Zero)
            {
                var bytes = new byte[size];
                Marshal.Copy(document, bytes, 0, bytes.Length);
                mira_free(document);
                text = Encoding.UTF8.GetString(bytes);
            }
            if (status != 0) throw new MiraException((Status)status, text);
            return text;
        }

        [StructLayout(LayoutKind.Sequential)]
        private struct Secret
        {
            public IntPtr Slot;
            public IntPtr Bytes;
            public uint Size;
        }

        [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
        private delegate int NativeProgress(IntPtr user, uint done, uint total);

        private const string Library = "miraclient";

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        private static extern int mira_open(byte[] options, uint size, out uint machine, out IntPtr doc,
                                            out uint docSize);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        private static extern int mira_close(uint machine);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        private static extern int mira_request(uint machine, byte[] json, uint size, Secret[] secrets, uint count,
                                               NativeProgress progress, IntPtr user, out IntPtr doc, out uint docSize);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        private static extern int mira_call(uint machine, ref Record record, [In, Out] byte[] data, uint size,
                                            IntPtr key, out IntPtr doc, out uint docSize);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        private static extern int mira_cancel(uint machine);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        private static extern void mira_free(IntPtr document);
    }
}
