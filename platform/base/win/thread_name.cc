#include "platform/base/thread_name.h"

#include <windows.h>

#include <string>

namespace base {

namespace {

using SetThreadDescriptionFunction = HRESULT(WINAPI*)(HANDLE, PCWSTR);

// SetThreadDescription exists from Windows 10 1607 on; older systems have no
// thread names a debugger or crash dump would show, so nothing is set there.
SetThreadDescriptionFunction LookUpSetThreadDescription() {
  HMODULE kernel = GetModuleHandleW(L"kernel32.dll");
  if (kernel == nullptr) return nullptr;
  return reinterpret_cast<SetThreadDescriptionFunction>(
      reinterpret_cast<void*>(GetProcAddress(kernel, "SetThreadDescription")));
}

}  // namespace

void SetCurrentThreadName(const std::string& name) {
  static const SetThreadDescriptionFunction set_description = LookUpSetThreadDescription();
  if (set_description == nullptr || name.empty()) return;
  const int size = static_cast<int>(name.size());
  const int wide_size = MultiByteToWideChar(CP_UTF8, 0, name.data(), size, nullptr, 0);
  if (wide_size <= 0) return;
  std::wstring wide(static_cast<std::size_t>(wide_size), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, name.data(), size, &wide[0], wide_size);
  set_description(GetCurrentThread(), wide.c_str());
}

}  // namespace base
