// A TaskQueue is a first-in, first-out queue of closures stored in small
// fixed-size chunks. A chunk is freed as soon as its last task has been
// taken (one emptied chunk is kept for reuse), so the memory a burst of
// tasks needed goes back once the burst has run. Not synchronised: one
// thread at a time, or under its owner's lock.
#ifndef TESSEL_PLATFORM_BASE_TASK_QUEUE_H_
#define TESSEL_PLATFORM_BASE_TASK_QUEUE_H_

#include <cstddef>
#include <memory>
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

  // Hands the kept empty chunk to `other` when that one has none.
  void ShareSpare(TaskQueue& other) {
    if (!other.spare_) other.spare_ = std::move(spare_);
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
    Chunk* chunk = spare_ ? spare_.release() : new Chunk;
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
    if (spare_) {
      delete chunk;
      return;
    }
    chunk->begin = chunk->end = 0;
    chunk->next = nullptr;
    spare_.reset(chunk);
  }

  Chunk* head_ = nullptr;
  Chunk* tail_ = nullptr;
  std::unique_ptr<Chunk> spare_;
};

}  // namespace base

#endif  // TESSEL_PLATFORM_BASE_TASK_QUEUE_H_
