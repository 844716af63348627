// Worker threads: the host creates a worker "db" through the injected
// factory, runs tasks on it synchronously and asynchronously, and has a
// worker post back to the main thread's user-interface loop.
#include <stdexcept>
#include <string>
#include <vector>

#include "demo_section.h"
#include "platform/base/message_loop.h"
#include "tessel_depends.h"

namespace {

std::string YesNo(bool value) { return value ? "yes" : "no"; }

void Run() {
  auto holder = tessel::Singleton<tessel::GlobalNativeImpHolder>::sharedInstance(false);
  if (!holder || !holder->thread_factory || !holder->main_thread) {
    demo::Show("threads", "no thread factory injected");
    return;
  }
  auto factory = holder->thread_factory;
  auto main = holder->main_thread;
  auto db = factory->CreateThread("db", tessel_gen::ThreadTypeWorker);
  demo::Show("worker", db->name() + " (type " + std::to_string(db->type()) + ")");

  int sum = 0;
  bool on_db = false;
  db->DispatchSync([&] {
    for (int i = 1; i <= 100; ++i) sum += i;
    on_db = db->IsCurrentThread() && !factory->IsMainThread();
    db->set_value("v3", "schema");
  });
  demo::Show("DispatchSync sum 1..100", std::to_string(sum) + ", ran on db: " + YesNo(on_db));

  std::vector<std::string> order;
  std::string results;
  for (const char* step : {"open", "query", "close"}) {
    results += std::to_string(db->DispatchAsync([&order, step] { order.push_back(step); })) + " ";
  }
  std::string joined, schema;
  db->DispatchSync([&] {
    for (const auto& step : order) joined += (joined.empty() ? "" : " ") + step;
    schema = db->value_for_key("schema");
  });
  demo::Show("DispatchAsync returned", results + "and ran in order: " + joined);
  demo::Show("db store, key schema", schema);

  try {
    db->DispatchSync([] { throw std::runtime_error("disk full"); });
  } catch (const std::exception& error) {
    demo::Show("exception rethrown to caller", error.what());
  }

  // A worker posts back to the main thread; the host's loop runs the task.
  bool on_main = false;
  db->DispatchSync([&] { main->DispatchAsync([&] { on_main = factory->IsMainThread(); }); });
  // The host's main thread runs its loop until the posted task is done.
  if (base::MessageLoop* ui = base::GetUIMessageLoop()) {
    ui->QuitWhenIdle();
    ui->Run();
  }
  demo::Show("task posted from db ran on the UI loop", YesNo(on_main));
}

const bool kRegistered = demo::Register(30, "Worker threads", Run);

}  // namespace
