// NativeCalc.cpp : Defines the entry point for the DLL application.
//

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

BOOL APIENTRY DllMain(HANDLE hModule, DWORD ul_reason_for_call, LPVOID lpReserved)
{
	return TRUE;
}

// Tax in cents for an amount in cents and a rate in tenths of a percent,
// rounded half away from zero.
extern "C" long __stdcall CalcTaxCents(long netCents, long ratePermille)
{
	__int64 product = (__int64)netCents * ratePermille;   // tax in 1/1000 cent
	if (product >= 0)
		return (long)((product + 500) / 1000);
	return (long)((product - 500) / 1000);
}
