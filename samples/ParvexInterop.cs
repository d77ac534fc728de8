// The interfaces of Parvex.dll for early-bound hosts in .NET: src/com/parvex.idl, written by hand. `tlbimp Parvex.tlb`
// makes the same and more; this needs no tool, and no interface assembly of MSXML beside it, since documents are objects.
//
// An interface that was shipped never changes, so neither does this. The order of the members is their order in memory.
// The data classes are not here: they are properties only, and late binding serves them as well.
using System.Runtime.InteropServices;

namespace Parvex
{
    [ComImport, Guid("59D761B5-DE49-4C12-8971-F67170518108"), InterfaceType(ComInterfaceType.InterfaceIsDual)]
    public interface ILegacyORLAPull
    {
        [DispId(1)]
        [return: MarshalAs(UnmanagedType.Interface)]
        object Pull([In, Out, MarshalAs(UnmanagedType.Interface)] ref object command);

        [DispId(2)]
        [return: MarshalAs(UnmanagedType.BStr)]
        string PullNGORLA([In, Out, MarshalAs(UnmanagedType.BStr)] ref string commandXml);
    }

    [ComImport, Guid("8355BD27-67C0-4A9D-9F2F-308ED8116026"), InterfaceType(ComInterfaceType.InterfaceIsDual)]
    public interface IcBinEncoder
    {
        [DispId(1)]
        [return: MarshalAs(UnmanagedType.BStr)]
        string Decode([In, MarshalAs(UnmanagedType.BStr)] string base64);

        [DispId(2)]
        [return: MarshalAs(UnmanagedType.SafeArray, SafeArraySubType = VarEnum.VT_UI1)]
        byte[] DecodeArr([In, MarshalAs(UnmanagedType.BStr)] string base64);

        [DispId(3)]
        void DecodeToFile([In, MarshalAs(UnmanagedType.BStr)] string base64, [In, MarshalAs(UnmanagedType.BStr)] string fileName);

        [DispId(4)]
        [return: MarshalAs(UnmanagedType.BStr)]
        string Encode([In, MarshalAs(UnmanagedType.BStr)] string text);

        [DispId(5)]
        [return: MarshalAs(UnmanagedType.BStr)]
        string EncodeArr([In, MarshalAs(UnmanagedType.SafeArray, SafeArraySubType = VarEnum.VT_UI1)] ref byte[] bytes);

        [DispId(6)]
        [return: MarshalAs(UnmanagedType.BStr)]
        string EncodeFromFile([In, MarshalAs(UnmanagedType.BStr)] string fileName);
    }

    [ComImport, Guid("09110123-E92D-4831-A0D8-2B64570D390F"), ClassInterface(ClassInterfaceType.None)]
    public class LegacyORLAPull
    {
    }

    [ComImport, Guid("291A5371-1078-4DF1-8835-DC521D628F1C"), ClassInterface(ClassInterfaceType.None)]
    public class cBinEncoder
    {
    }
}
