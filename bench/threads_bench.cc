// Worker threads. Throughput: producers post 1,000,000 empty tasks to one
// consumer thread, timed until the last has run, for GenericThread's
// DispatchAsync and for Boost.Asio's io_context::post. Latency: the median
// DispatchSync round trip against a bare mutex/condition-variable ping-pong,
// with both threads pinned to one CPU and to two different CPUs.
#include <benchmark/benchmark.h>
#include <pthread.h>
#include <sched.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <future>
#include <mutex>
#include <thread>
#include <vector>

#include "common/imp_win/generic_thread_factory.h"

#ifdef TESSEL_BENCH_HAVE_ASIO
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#endif

namespace {

constexpr int kTasks = 1000000;

// Posts kTasks in total from `producers` threads through `post`, then waits
// until `drain` returns (which it does once every posted task has run).
void PostFromProducers(int producers, const std::function<void()>& post,
                       const std::function<void()>& drain) {
  std::vector<std::thread> threads;
  for (int p = 0; p < producers; ++p) {
    threads.emplace_back([&] {
      for (int i = 0; i < kTasks / producers; ++i) post();
    });
  }
  for (auto& thread : threads) thread.join();
  drain();
}

void BM_DispatchAsync(benchmark::State& state) {
  tessel::GenericThreadFactory factory;
  auto worker = factory.CreateThread("bench", tessel_gen::ThreadTypeWorker);
  for (auto _ : state) {
    PostFromProducers(static_cast<int>(state.range(0)), [&] { worker->DispatchAsync([] {}); },
                      [&] { worker->DispatchSync([] {}); });
  }
  state.SetItemsProcessed(state.iterations() * kTasks);
}
BENCHMARK(BM_DispatchAsync)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->UseRealTime();

#ifdef TESSEL_BENCH_HAVE_ASIO
void BM_AsioPost(benchmark::State& state) {
  boost::asio::io_context io;
  auto work = boost::asio::make_work_guard(io);
  std::thread consumer([&] { io.run(); });
  for (auto _ : state) {
    PostFromProducers(static_cast<int>(state.range(0)), [&] { boost::asio::post(io, [] {}); },
                      [&] {
                        std::promise<void> done;
                        boost::asio::post(io, [&] { done.set_value(); });
                        done.get_future().wait();
                      });
  }
  work.reset();
  consumer.join();
  state.SetItemsProcessed(state.iterations() * kTasks);
}
BENCHMARK(BM_AsioPost)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->UseRealTime();
#endif

// Pins the calling thread to one CPU.
void PinTo(int cpu) {
  cpu_set_t set;
  CPU_ZERO(&set);
  CPU_SET(cpu, &set);
  pthread_setaffinity_np(pthread_self(), sizeof(set), &set);
}

// Pins the benchmark's thread to CPU 0 for its lifetime, restoring the
// previous affinity afterwards.
class PinnedCaller {
 public:
  PinnedCaller() {
    pthread_getaffinity_np(pthread_self(), sizeof(saved_), &saved_);
    PinTo(0);
  }
  ~PinnedCaller() { pthread_setaffinity_np(pthread_self(), sizeof(saved_), &saved_); }

 private:
  cpu_set_t saved_;
};

// Times each round trip, reporting the median in microseconds.
template <typename RoundTrip>
void TimeRoundTrips(benchmark::State& state, RoundTrip round_trip) {
  std::vector<double> samples;
  for (auto _ : state) {
    const auto start = std::chrono::steady_clock::now();
    round_trip();
    samples.push_back(
        std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start)
            .count());
  }
  std::nth_element(samples.begin(), samples.begin() + samples.size() / 2, samples.end());
  state.counters["median_us"] = samples[samples.size() / 2];
}

// range(0): the CPU of the responding thread; the caller runs on CPU 0.
void BM_DispatchSyncRoundTrip(benchmark::State& state) {
  PinnedCaller pinned;
  tessel::GenericThreadFactory factory;
  auto worker = factory.CreateThread("bench", tessel_gen::ThreadTypeWorker);
  const int cpu = static_cast<int>(state.range(0));
  worker->DispatchSync([cpu] { PinTo(cpu); });
  TimeRoundTrips(state, [&] { worker->DispatchSync([] {}); });
}
BENCHMARK(BM_DispatchSyncRoundTrip)->Arg(0)->Arg(1)->UseRealTime();

// The textbook handshake: one flag, two condition variables, notifications
// after unlocking.
class PingPong {
 public:
  explicit PingPong(int cpu)
      : responder_([this, cpu] {
          PinTo(cpu);
          std::unique_lock<std::mutex> lock(mutex_);
          for (;;) {
            ping_.wait(lock, [this] { return state_ == kPing || state_ == kStop; });
            if (state_ == kStop) return;
            state_ = kPong;
            lock.unlock();
            pong_.notify_one();
            lock.lock();
          }
        }) {}
  ~PingPong() {
    Set(kStop);
    responder_.join();
  }

  void RoundTrip() {
    Set(kPing);
    std::unique_lock<std::mutex> lock(mutex_);
    pong_.wait(lock, [this] { return state_ == kPong; });
    state_ = kIdle;
  }

 private:
  enum State { kIdle, kPing, kPong, kStop };
  void Set(State state) {
    {
      std::lock_guard<std::mutex> lock(mutex_);
      state_ = state;
    }
    ping_.notify_one();
  }

  std::mutex mutex_;  // guards state_
  std::condition_variable ping_, pong_;
  State state_ = kIdle;
  std::thread responder_;  // last: starts once the rest exists
};

void BM_MutexCondvarPingPong(benchmark::State& state) {
  PinnedCaller pinned;
  PingPong ping_pong(static_cast<int>(state.range(0)));
  TimeRoundTrips(state, [&] { ping_pong.RoundTrip(); });
}
BENCHMARK(BM_MutexCondvarPingPong)->Arg(0)->Arg(1)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
