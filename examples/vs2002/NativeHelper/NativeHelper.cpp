// NativeHelper.cpp : Defines the entry point for the DLL application.
//

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

BOOL APIENTRY DllMain( HANDLE hModule, 
                       DWORD  ul_reason_for_call, 
                       LPVOID lpReserved
					 )
{
    return TRUE;
}

// 16-bit Fletcher checksum of a zero-terminated text.
extern "C" int __stdcall NativeChecksum(const char* text)
{
	unsigned int sum1 = 0, sum2 = 0;
	if (text != NULL)
	{
		for (const unsigned char* p = (const unsigned char*)text; *p; ++p)
		{
			sum1 = (sum1 + *p) % 255;
			sum2 = (sum2 + sum1) % 255;
		}
	}
	return (int)((sum2 << 8) | sum1);
}
