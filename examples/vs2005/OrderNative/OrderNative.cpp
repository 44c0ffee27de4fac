// OrderNative.cpp : Defines the exported functions for the DLL application.
//

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

BOOL APIENTRY DllMain(HMODULE hModule, DWORD ul_reason_for_call, LPVOID lpReserved)
{
	return TRUE;
}

// Check digit of an order number (modulus 10, weights 3 and 1 from the
// right, as on EAN codes). Characters other than digits are ignored.
extern "C" int __stdcall OrderCheckDigit(const char* number)
{
	if (number == NULL)
		return 0;

	int sum = 0;
	int weight = 3;
	for (const char* p = number + lstrlenA(number); p != number; )
	{
		--p;
		if (*p < '0' || *p > '9')
			continue;
		sum += (*p - '0') * weight;
		weight = 4 - weight;
	}
	return (10 - sum % 10) % 10;
}
