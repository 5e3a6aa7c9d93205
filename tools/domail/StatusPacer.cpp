#include "domail/StatusPacer.h"

namespace quillery::tools {

void StatusPacer::wrote(Clock::time_point now) {
  lastWrite_ = now;
  statusSinceWrite_ = false;
}

bool StatusPacer::searchingDue(Clock::time_point now) {
  if (statusSinceWrite_ || now - lastWrite_ < quiet_) {
    return false;
  }
  statusSinceWrite_ = true;
  lastStatus_ = now;
  return true;
}

StatusPacer::Clock::duration StatusPacer::settleLeft(Clock::time_point now) const {
  if (!statusSinceWrite_ || now - lastStatus_ >= settle_) {
    return Clock::duration::zero();
  }
  return settle_ - (now - lastStatus_);
}

}  // namespace quillery::tools
