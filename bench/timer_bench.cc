// Timers. Lateness: 500 one-shot timers of 2 ms, one after the other, each
// measured from its due time to the start of its callback (median and 99th
// percentile, in microseconds). Throughput: 100,000 one-shot timers of 1 ms
// created from one thread, timed until the last callback has run. The
// library's MessageLoopTimer (its own "timer" thread) against Boost.Asio's
// steady_timer on an io_context run by one thread.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

#include "common/imp_win/message_loop_timer.h"

#ifdef TESSEL_BENCH_HAVE_ASIO
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>
#endif

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kLatenessSamples = 500;
constexpr auto kLatenessDelay = std::chrono::milliseconds(2);
constexpr int kThroughputTimers = 100000;
constexpr auto kThroughputDelay = std::chrono::milliseconds(1);

// Each peer runs `callback` once on its timer thread, `delay` from now.
class LibraryTimers {
 public:
  void Schedule(std::chrono::nanoseconds delay, std::function<void()> callback) {
    timer_.CreateTimer(std::chrono::duration<double>(delay).count(), false, std::move(callback));
  }

 private:
  tessel::MessageLoopTimer timer_;
};

#ifdef TESSEL_BENCH_HAVE_ASIO
class AsioTimers {
 public:
  AsioTimers() : work_(boost::asio::make_work_guard(io_)), thread_([this] { io_.run(); }) {}
  ~AsioTimers() {
    work_.reset();
    thread_.join();
  }
  void Schedule(std::chrono::nanoseconds delay, std::function<void()> callback) {
    auto timer = std::make_shared<boost::asio::steady_timer>(io_, delay);
    timer->async_wait([timer, callback = std::move(callback)](const boost::system::error_code&) {
      callback();
    });
  }

 private:
  boost::asio::io_context io_;
  boost::asio::executor_work_guard<boost::asio::io_context::executor_type> work_;
  std::thread thread_;
};
#endif

template <typename Timers>
void BM_Lateness(benchmark::State& state) {
  Timers timers;
  std::vector<double> late_us;
  for (auto _ : state) {
    for (int i = 0; i < kLatenessSamples; ++i) {
      std::promise<Clock::time_point> fired;
      const Clock::time_point due = Clock::now() + kLatenessDelay;
      timers.Schedule(kLatenessDelay, [&fired] { fired.set_value(Clock::now()); });
      const Clock::time_point at = fired.get_future().get();
      late_us.push_back(std::chrono::duration<double, std::micro>(at - due).count());
    }
  }
  std::sort(late_us.begin(), late_us.end());
  state.counters["median_us"] = late_us[late_us.size() / 2];
  state.counters["p99_us"] = late_us[late_us.size() * 99 / 100];
}

template <typename Timers>
void BM_Throughput(benchmark::State& state) {
  Timers timers;
  for (auto _ : state) {
    std::atomic<int> left{kThroughputTimers};
    std::promise<void> done;
    for (int i = 0; i < kThroughputTimers; ++i) {
      timers.Schedule(kThroughputDelay, [&left, &done] {
        if (--left == 0) done.set_value();
      });
    }
    done.get_future().wait();
  }
  state.SetItemsProcessed(state.iterations() * kThroughputTimers);
}

BENCHMARK_TEMPLATE(BM_Lateness, LibraryTimers)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_TEMPLATE(BM_Throughput, LibraryTimers)->Unit(benchmark::kMillisecond)->UseRealTime();
#ifdef TESSEL_BENCH_HAVE_ASIO
BENCHMARK_TEMPLATE(BM_Lateness, AsioTimers)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_TEMPLATE(BM_Throughput, AsioTimers)->Unit(benchmark::kMillisecond)->UseRealTime();
#endif

}  // namespace

BENCHMARK_MAIN();
