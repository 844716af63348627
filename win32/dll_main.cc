// Entry routine of TesselSDK-Depends.dll. The runtime's start-up code has
// built the library's constant tables (static initializers) before it runs;
// the routine itself only tells the loader that the library needs no
// per-thread attach or detach notifications, and never fails the load.
#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID /*reserved*/) {
  if (reason == DLL_PROCESS_ATTACH) DisableThreadLibraryCalls(instance);
  return TRUE;
}
