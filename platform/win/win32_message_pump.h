// Win32MessagePump runs the user-interface loop's tasks inside a host's own
// Win32 message loop: a host whose main thread runs a plain
// GetMessage/TranslateMessage/DispatchMessage loop makes one pump after
// constructing its UI MessageLoop, and the loop's tasks and delayed tasks
// then run inside that message loop, with nothing to call per message.
//
//   base::MessageLoop ui(base::MessageLoop::TYPE_UI, "main");
//   base::Win32MessagePump pump(&ui);
//   MSG msg;
//   while (GetMessageW(&msg, nullptr, 0, 0) > 0) {
//     TranslateMessage(&msg);
//     DispatchMessageW(&msg);
//   }
//
// The pump owns a message-only window on the loop's thread. The loop's
// wake-up hook (called on any thread) posts one message to it when the loop
// gets work; a system timer on the window covers the earliest delayed task.
// Both make the window run the loop until it is idle. Make, use and destroy
// the pump on the loop's thread, and destroy it before the loop.
#ifndef TESSEL_PLATFORM_WIN_WIN32_MESSAGE_PUMP_H_
#define TESSEL_PLATFORM_WIN_WIN32_MESSAGE_PUMP_H_

#include <memory>

namespace base {

class MessageLoop;

class Win32MessagePump {
 public:
  // Attaches to `loop`, replacing its wake-up hook, and runs whatever the
  // loop already holds from the next message on. A null loop, or a window
  // that cannot be made, leaves the pump detached (attached() is false).
  explicit Win32MessagePump(MessageLoop* loop);
  // Removes the hook and the window; later tasks wait for whoever runs the
  // loop next.
  ~Win32MessagePump();
  Win32MessagePump(const Win32MessagePump&) = delete;
  Win32MessagePump& operator=(const Win32MessagePump&) = delete;

  bool attached() const;

  // Runs the loop until idle and re-arms the system timer for the next
  // delayed task. Called by the window; public for its window procedure.
  void DoWork();

 private:
  struct Wake;

  MessageLoop* const loop_;
  // Shared with the wake-up hook, which may still be running on another
  // thread while the pump goes away.
  const std::shared_ptr<Wake> wake_;
};

}  // namespace base

#endif  // TESSEL_PLATFORM_WIN_WIN32_MESSAGE_PUMP_H_
