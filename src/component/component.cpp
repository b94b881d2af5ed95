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
  if (requests_.empty()) form_host_.StartTimer(*this, kRetryInterval);
  requests_.push_back(std::move(request));
}

ports::Answer Component::Ask(const ports::Message& message) {
  const struct OpenBox {
    explicit OpenBox(int& count) noexcept : boxes(count) { ++boxes; }
    ~OpenBox() { --boxes; }
    int& boxes;
  } box(boxes_);
  return session_.ports().desktop.Ask(message, nullptr);
}

void Component::DropRequests() noexcept {
  form_host_.StopTimer(*this);
  // They go last: with them may go the objects of the host that they hold.
  const auto dropped = std::exchange(requests_, {});
}

// One after the other: while one runs, the timer comes again. One that keeps the forms busy in turn makes those after
// it wait on. The timer is the one that runs already, as another might not be had.
void Component::OnTimer() noexcept {
  if (running_) return;
  running_ = true;
  // Kept to the end: with the last request may go the General that keeps this object.
  std::list<std::function<void()>> done;
  while (!requests_.empty() && boxes_ == 0 && !product_forms_.Busy()) {
    done.splice(done.end(), requests_, requests_.begin());
    done.back()();
  }
  running_ = false;
  if (requests_.empty()) form_host_.StopTimer(*this);
}

}  // namespace quenta::component
