#include "platform/win/win32_message_pump.h"

#include <windows.h>

#include <atomic>
#include <chrono>
#include <mutex>

#include "platform/base/message_loop.h"

namespace base {

namespace {

constexpr UINT kWakeMessage = WM_APP + 0x7e1;
constexpr UINT_PTR kDelayedWorkTimer = 1;
constexpr wchar_t kWindowClass[] = L"TesselWin32MessagePump";

LRESULT CALLBACK PumpWindowProc(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  if (message == kWakeMessage || (message == WM_TIMER && wparam == kDelayedWorkTimer)) {
    auto* pump = reinterpret_cast<Win32MessagePump*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (pump != nullptr) pump->DoWork();
    return 0;
  }
  return DefWindowProcW(window, message, wparam, lparam);
}

// The module this code lives in, which owns the window class.
HINSTANCE ThisModule() {
  HMODULE module = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                         GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                     reinterpret_cast<LPCWSTR>(&PumpWindowProc), &module);
  return module;
}

bool RegisterWindowClass(HINSTANCE module) {
  static const bool registered = [module] {
    WNDCLASSEXW window_class{};
    window_class.cbSize = sizeof(window_class);
    window_class.lpfnWndProc = &PumpWindowProc;
    window_class.hInstance = module;
    window_class.lpszClassName = kWindowClass;
    return RegisterClassExW(&window_class) != 0 ||
           GetLastError() == ERROR_CLASS_ALREADY_EXISTS;
  }();
  return registered;
}

// Milliseconds for SetTimer, rounded up so that the timer never fires before
// the task is due.
UINT TimerMilliseconds(std::chrono::nanoseconds delay) {
  const auto ms = std::chrono::ceil<std::chrono::milliseconds>(delay).count();
  return static_cast<UINT>(ms > USER_TIMER_MAXIMUM ? USER_TIMER_MAXIMUM : ms);
}

}  // namespace

// What the wake-up hook needs; it may be called on any thread, also while the
// pump is being destroyed.
struct Win32MessagePump::Wake {
  // Posts the wake-up message unless one is already on its way.
  void Post() {
    if (pending.exchange(true)) return;
    std::lock_guard<std::mutex> lock(mutex);
    if (window == nullptr || !PostMessageW(window, kWakeMessage, 0, 0)) pending = false;
  }

  std::mutex mutex;       // guards window
  HWND window = nullptr;  // null once the pump is going away
  std::atomic<bool> pending{false};  // a wake-up message is queued
};

Win32MessagePump::Win32MessagePump(MessageLoop* loop)
    : loop_(loop), wake_(std::make_shared<Wake>()) {
  HINSTANCE module = ThisModule();
  if (loop_ == nullptr || !RegisterWindowClass(module)) return;
  HWND window = CreateWindowExW(0, kWindowClass, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                module, nullptr);
  if (window == nullptr) return;
  SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  wake_->window = window;
  std::shared_ptr<Wake> wake = wake_;
  loop_->SetWakeUpHook([wake] { wake->Post(); });
  wake_->Post();  // for the tasks posted before the hook was set
}

Win32MessagePump::~Win32MessagePump() {
  if (!attached()) return;
  loop_->SetWakeUpHook(nullptr);
  HWND window;
  {
    std::lock_guard<std::mutex> lock(wake_->mutex);
    window = wake_->window;
    wake_->window = nullptr;
  }
  KillTimer(window, kDelayedWorkTimer);
  DestroyWindow(window);
}

bool Win32MessagePump::attached() const { return wake_->window != nullptr; }

void Win32MessagePump::DoWork() {
  // Cleared first: work posted while the loop runs asks for a new message.
  wake_->pending = false;
  loop_->RunUntilIdle();
  HWND window = wake_->window;  // only this thread changes it
  const auto next = loop_->TimeUntilNextDelayedTask();
  if (!next) {
    KillTimer(window, kDelayedWorkTimer);
  } else if (*next <= std::chrono::nanoseconds::zero()) {
    wake_->Post();
  } else {
    SetTimer(window, kDelayedWorkTimer, TimerMilliseconds(*next), nullptr);
  }
}

}  // namespace base
