#include "common/imp_win/generic_timer.h"

namespace tessel {

GenericTImer::GenericTImer() = default;
GenericTImer::GenericTImer(const GenericTImer&) = default;
GenericTImer& GenericTImer::operator=(const GenericTImer&) = default;
GenericTImer::~GenericTImer() = default;

int GenericTImer::CreateTimer(double, bool, std::function<void()> callback) {
  // Destroy the copy here, not when the caller's full expression ends.
  callback = nullptr;
  return 0;
}

void GenericTImer::InvalidateTimer(int) {}

}  // namespace tessel
