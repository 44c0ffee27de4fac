// GreetingNative.cpp : Defines the exported functions for the DLL application.
//

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

BOOL APIENTRY DllMain(HMODULE hModule, DWORD ul_reason_for_call, LPVOID lpReserved)
{
	UNREFERENCED_PARAMETER(hModule);
	UNREFERENCED_PARAMETER(lpReserved);
	switch (ul_reason_for_call)
	{
	case DLL_PROCESS_ATTACH:
	case DLL_THREAD_ATTACH:
	case DLL_THREAD_DETACH:
	case DLL_PROCESS_DETACH:
		break;
	}
	return TRUE;
}

// Writes "Hello, <name>!" into buffer (at most size characters including the
// terminating zero) and returns the length of the full greeting.
extern "C" int __stdcall GreetW(LPCWSTR name, LPWSTR buffer, int size)
{
	static const wchar_t prefix[] = L"Hello, ";
	if (name == NULL || *name == L'\0')
		name = L"World";

	int needed = lstrlenW(prefix) + lstrlenW(name) + 1;
	if (buffer != NULL && size > needed)
	{
		lstrcpyW(buffer, prefix);
		lstrcatW(buffer, name);
		lstrcatW(buffer, L"!");
	}
	return needed;
}
