#include "component/component.h"

#include <utility>

namespace quenta::component {
namespace {

constexpr int kRetryInterval = 50;  // milliseconds

}  // namespace

void Component::WhenNotBusy(std::function<void()> request) {
  if (!product_forms_.Busy()) {
    request();
    return;
  }
  requests_.push_back(std::move(request));
  if (requests_.size() == 1) form_host_.StartTimer(*this, kRetryInterval);
}

void Component::DropRequests() noexcept {
  if (!requests_.empty()) form_host_.StopTimer(*this);
  requests_.clear();
}

// A request that keeps the forms busy in turn makes those after it wait on.
void Component::OnTimer() noexcept {
  if (product_forms_.Busy()) return;
  form_host_.StopTimer(*this);
  for (auto& request : std::exchange(requests_, {})) WhenNotBusy(std::move(request));
}

}  // namespace quenta::component
