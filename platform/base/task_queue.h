// A TaskQueue is a first-in, first-out queue of closures stored in small
// fixed-size chunks. A chunk whose last task has been taken becomes a spare
// for reuse; the owner lets spares go (ReleaseSpares) once a burst is over,
// so the memory a burst needed goes back without every burst paying for
// fresh pages. Not synchronised: one thread at a time, or under its owner's
// lock.
#ifndef TESSEL_PLATFORM_BASE_TASK_QUEUE_H_
#define TESSEL_PLATFORM_BASE_TASK_QUEUE_H_

#include <cstddef>
#include <utility>

#include "platform/base/callback.h"

namespace base {

class TaskQueue {
 public:
  TaskQueue() = default;
  TaskQueue(const TaskQueue&) = delete;
  TaskQueue& operator=(const TaskQueue&) = delete;
  ~TaskQueue() {
    while (head_ != nullptr) delete std::exchange(head_, head_->next);
    ReleaseSpares(0);
  }

  bool empty() const { return head_ == nullptr; }

  void Push(Closure task) {
    if (tail_ == nullptr || tail_->end == kChunkSize) AddChunk();
    tail_->tasks[tail_->end++] = std::move(task);
  }

  // Takes the oldest task out; the queue must not be empty.
  Closure Pop() {
    Chunk* chunk = head_;
    Closure task = std::move(chunk->tasks[chunk->begin++]);
    if (chunk->begin == chunk->end) {
      head_ = chunk->next;
      if (head_ == nullptr) tail_ = nullptr;
      Recycle(chunk);
    }
    return task;
  }

  // Exchanges the queued tasks (not the kept chunk) in constant time.
  void SwapTasks(TaskQueue& other) {
    std::swap(head_, other.head_);
    std::swap(tail_, other.tail_);
  }

  // Hands all spares to `other` when that one has none.
  void ShareSpares(TaskQueue& other) {
    if (other.spares_ != nullptr) return;
    std::swap(spares_, other.spares_);
    std::swap(spare_count_, other.spare_count_);
  }

  std::size_t spare_count() const { return spare_count_; }

  // Frees the spares beyond the first `keep`.
  void ReleaseSpares(std::size_t keep) {
    while (spare_count_ > keep) {
      delete std::exchange(spares_, spares_->next);
      --spare_count_;
    }
  }

 private:
  static constexpr std::size_t kChunkSize = 128;
  struct Chunk {
    Closure tasks[kChunkSize];
    std::size_t begin = 0;  // next task to take
    std::size_t end = 0;    // next free slot
    Chunk* next = nullptr;
  };

  void AddChunk() {
    Chunk* chunk = spares_;
    if (chunk != nullptr) {
      spares_ = chunk->next;
      --spare_count_;
      chunk->next = nullptr;
    } else {
      chunk = new Chunk;
    }
    if (tail_ == nullptr) {
      head_ = chunk;
    } else {
      tail_->next = chunk;
    }
    tail_ = chunk;
  }
  // Every closure of an emptied chunk has been moved out, so it can be
  // reused as it is once its indexes are reset.
  void Recycle(Chunk* chunk) {
    chunk->begin = chunk->end = 0;
    chunk->next = spares_;
    spares_ = chunk;
    ++spare_count_;
  }

  Chunk* head_ = nullptr;
  Chunk* tail_ = nullptr;
  Chunk* spares_ = nullptr;  // emptied chunks, linked through next
  std::size_t spare_count_ = 0;
};

}  // namespace base

#endif  // TESSEL_PLATFORM_BASE_TASK_QUEUE_H_
