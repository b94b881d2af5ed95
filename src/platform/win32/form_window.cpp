#include "platform/win32/form_window.h"

#include <algorithm>

#include "base/error.h"
#include "platform/win32/dpi.h"
#include "platform/win32/form_window_messages.h"
#include "platform/win32/list_memory.h"
#include "platform/win32/wide_text.h"

namespace quenta::platform {
namespace {

// Counts up while it lives.
class Counted {
 public:
  explicit Counted(int& count) noexcept : count_(count) { ++count_; }
  ~Counted() { --count_; }
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;

 private:
  int& count_;
};

Rect ToRect(const RECT& rect) noexcept {
  return {rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top};
}

Rect WorkArea(HMONITOR monitor) noexcept {
  MONITORINFO info{};
  info.cbSize = sizeof(info);
  GetMonitorInfoW(monitor, &info);
  return ToRect(info.rcWork);
}

}  // namespace

WindowServices::WindowServices(std::string memory_path)
    : classes(&FormWindow::Procedure), memory(std::move(memory_path)) {}

FormWindow::FormWindow(std::shared_ptr<WindowServices> services, std::shared_ptr<controls::Form> form,
                       std::function<void(FormWindow&)> gone)
    : services_(std::move(services)), form_(std::move(form)), gone_(std::move(gone)) {}

FormWindow::~FormWindow() {
  // A window that Windows refuses to destroy must not find this object any more.
  if (window_ != nullptr) SetWindowLongPtrW(window_, GWLP_USERDATA, 0);
}

std::shared_ptr<FormWindow> FormWindow::OfWindow(HWND window) noexcept {
  const HWND root = window != nullptr ? GetAncestor(window, GA_ROOT) : nullptr;
  if (root == nullptr || GetWindowThreadProcessId(root, nullptr) != GetCurrentThreadId()) return nullptr;
  if (reinterpret_cast<WNDPROC>(GetClassLongPtrW(root, GCLP_WNDPROC)) != &FormWindow::Procedure) return nullptr;
  auto* const form = reinterpret_cast<FormWindow*>(GetWindowLongPtrW(root, GWLP_USERDATA));
  return form != nullptr ? form->shared_from_this() : nullptr;
}

void FormWindow::Open(HWND over, const std::vector<RECT>& taken) {
  const DpiScope dpi_scope;
  const ActivationContext::Scope context(services_->context);
  const std::shared_ptr<FormWindow> alive = shared_from_this();
  over_ = over;
  try {
    CreateFormWindow(over, taken);
  } catch (...) {
    closing_ = true;  // the form is told by the exception, not as of a lost window
    if (window_ != nullptr) DestroyWindow(window_);
    throw;
  }
  {
    // The dialog gives the focus to its first control, a toolbar, before it can be told the right one.
    const Counted hold(commands_);
    ShowWindow(window_, form_->window_state() == controls::WindowState::kMinimized ? SW_SHOWMINNOACTIVE : SW_SHOW);
    BringToFront();
    FocusFirst();
  }
  FocusMoved();
}

void FormWindow::CreateFormWindow(HWND over, const std::vector<RECT>& taken) {
  DWORD style = WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN;
  if (!form_->layout().resizable) style &= ~static_cast<DWORD>(WS_THICKFRAME | WS_MAXIMIZEBOX);
  // Made on the monitor where it is to stand, so that it has that monitor's resolution from the beginning.
  const Rect area = WorkArea(MonitorFromWindow(over, MONITOR_DEFAULTTOPRIMARY));
  // Without an owner: the host's windows may come to the front, and the form shows in the task bar.
  const HWND window = CreateWindowExW(WS_EX_CONTROLPARENT, kFormClass, Wide(form_->caption()).c_str(), style, area.left,
                                      area.top, area.width / 2, area.height / 2, nullptr, nullptr, ThisModule(), this);
  if (window == nullptr) {
    throw base::Error(base::error_number::kInternal, "Windows does not make the window of " + form_->name());
  }
  names_.Set(window_, kControlNameProperty, form_->name());
  TakeAppearance();
  ShowMenus();
  BuildControls();
  RestoreLists();
  form_->Attach(this);
  for (const auto& control : controls_) control->model().Attach(this);
  const Rect place = OpeningPlace(over, taken);
  SetWindowPos(window_, nullptr, place.left, place.top, place.width, place.height, SWP_NOZORDER | SWP_NOACTIVATE);
  ArrangeControls();
  if (!form_->enabled()) EnableWindow(window_, FALSE);
  // Underlines of mnemonics show from the first press of Alt on, where the user wants them so.
  SendMessageW(window_, WM_CHANGEUISTATE, MAKEWPARAM(UIS_INITIALIZE, 0), 0);
}

Rect FormWindow::OpeningPlace(HWND over, const std::vector<RECT>& taken) const {
  const HMONITOR monitor = MonitorFromWindow(over, MONITOR_DEFAULTTOPRIMARY);
  const Rect area = WorkArea(monitor);
  const auto remembered = services_->memory.Recall(form_->name()).place;
  const SIZE least = MinimumWindowSize();
  const controls::Layout& layout = form_->layout();
  Rect place;
  place.width = Scale(remembered ? remembered->width : layout.initial_width, dpi_);
  place.height = Scale(remembered ? remembered->height : layout.initial_height, dpi_);
  if (!layout.resizable) {
    place.width = Scale(layout.initial_width, dpi_);
    place.height = 0;
  }
  place.width = std::max(place.width, static_cast<int>(least.cx));
  place.height = std::max(place.height, static_cast<int>(least.cy));

  RECT anchor_rect{};
  const bool usable = over != nullptr && !IsIconic(over) && GetWindowRect(over, &anchor_rect);
  const Rect anchor = usable ? ToRect(anchor_rect) : area;
  place.left = anchor.left + (anchor.width - place.width) / 2;
  place.top = anchor.top + (anchor.height - place.height) / 2;
  if (remembered) {
    const RECT former{remembered->left, remembered->top, remembered->left + place.width,
                      remembered->top + place.height};
    // Only where it would be seen at once: on the monitor of the window that asks.
    if (MonitorFromRect(&former, MONITOR_DEFAULTTONULL) == monitor) {
      place.left = remembered->left;
      place.top = remembered->top;
    }
  }
  place = MovedInside(place, area);
  const int step = metrics_.field;
  for (std::size_t i = 0; i < taken.size(); ++i) {
    const bool covers = std::any_of(taken.begin(), taken.end(), [&](const RECT& other) {
      return other.left == place.left && other.top == place.top;
    });
    if (!covers) break;
    place.left += step;
    place.top += step;
  }
  return MovedInside(place, area);
}

void FormWindow::BringToFront() noexcept {
  const DpiScope dpi_scope;
  if (IsIconic(window_) && form_->window_state() == controls::WindowState::kNormal) ShowWindow(window_, SW_RESTORE);
  SetForegroundWindow(window_);
  BringWindowToTop(window_);
}

void FormWindow::Event(const std::function<void()>& tell) noexcept {
  if (closing_) return;
  const std::shared_ptr<FormWindow> alive = shared_from_this();
  ++events_;
  try {
    tell();
  } catch (...) {  // the forms report their errors themselves; here is the edge to Windows
  }
  if (--events_ == 0 && closing_ && window_ != nullptr) PostMessageW(window_, kDestroyMessage, 0, 0);
}

void FormWindow::Command(const std::function<void()>& run) noexcept {
  const std::shared_ptr<FormWindow> alive = shared_from_this();
  ControlWindow* const left = std::exchange(focused_, nullptr);
  {
    const Counted hold(commands_);
    if (left == nullptr || left->LeaveForCommand()) Event(run);
  }
  if (left != nullptr && commands_ == 0 && focused_ == nullptr && (GetFocus() == nullptr || Find(GetFocus()) == left)) {
    focused_ = left;
    left->ComeBack();
  }
  FocusMoved();
}

void FormWindow::FocusMoved() noexcept {
  if (closing_ || commands_ > 0 || telling_focus_) return;
  telling_focus_ = true;
  // What a control does on losing or getting the focus may move it again; a form that never comes to rest is left.
  constexpr int kMostMoves = 20;
  for (int i = 0; i < kMostMoves && !closing_; ++i) {
    const HWND focus = GetFocus();
    if (focus == nullptr) break;  // the user is in another program: the field waits as it is
    ControlWindow* const now = Find(focus);
    if (now != nullptr) last_focus_ = focus;
    if (now == focused_) break;
    if (focused_ != nullptr) {
      ControlWindow* const left = std::exchange(focused_, nullptr);
      Event([&] { left->model().LostFocus(); });
    } else {
      focused_ = now;
      Event([&] { now->model().GotFocus(); });
    }
  }
  telling_focus_ = false;
}

void FormWindow::Close() noexcept {
  if (closing_) return;
  const DpiScope dpi_scope;
  const std::shared_ptr<FormWindow> alive = shared_from_this();
  closing_ = true;
  Detach();
  // Windows would activate whatever window comes next, perhaps another program's.
  if (GetForegroundWindow() == window_) ActivateFormer();
  ShowWindow(window_, SW_HIDE);
  if (events_ == 0) DestroyWindow(window_);
}

void FormWindow::Destroy() noexcept {
  const std::shared_ptr<FormWindow> alive = shared_from_this();
  if (window_ != nullptr) DestroyWindow(window_);
}

void FormWindow::RequestClose() noexcept {
  if (IsWindowEnabled(window_)) {
    Command([this] { form_->Unload(); });
  } else if (form_->in_operation()) {
    Event([this] { form_->Unload(); });  // is put off until the operation has ended
  }
}

void FormWindow::Detach() noexcept {
  if (form_->view() != this) return;
  form_->Attach(nullptr);
  for (const auto& control : controls_) control->model().Attach(nullptr);
}

struct FormWindow::SearchAbove {
  HWND below;
  std::shared_ptr<FormWindow> found;
};

BOOL CALLBACK FormWindow::LookAbove(HWND window, LPARAM data) noexcept {
  auto& search = *reinterpret_cast<SearchAbove*>(data);
  const std::shared_ptr<FormWindow> form = OfWindow(window);
  if (form == nullptr || form->closing_ || form->over_ != search.below || !IsWindowVisible(window)) return TRUE;
  search.found = form;
  return FALSE;
}

// The form that was opened over this one and is still there; null when there is none.
std::shared_ptr<FormWindow> FormWindow::FormOpenedOver() const noexcept {
  SearchAbove search{window_, nullptr};
  EnumThreadWindows(GetCurrentThreadId(), &FormWindow::LookAbove, reinterpret_cast<LPARAM>(&search));
  return search.found;
}

// A form that is disabled shows who keeps it waiting: the form opened over it, or a question over that. False when that
// is nobody, or a question over this form itself, which a click finds without our help.
bool FormWindow::BringDialogToFront(bool clicked) noexcept {
  std::shared_ptr<FormWindow> top = shared_from_this();
  while (const auto next = IsWindowEnabled(top->window_) ? nullptr : top->FormOpenedOver()) top = next;
  const HWND front = GetLastActivePopup(top->window_);
  if (front == window_ || (clicked && top.get() == this)) return false;
  if (top.get() != this) top->BringToFront();
  SetForegroundWindow(front);
  if (clicked) {
    FLASHWINFO info{sizeof(info), front, FLASHW_CAPTION, 4, 70};
    FlashWindowEx(&info);
  }
  return true;
}

// Where the user goes on when this form closes: the window that it was opened over, or else the next one below it that
// is the host's or ours.
HWND FormWindow::WindowToReturnTo() const noexcept {
  if (IsWindow(over_) && IsWindowVisible(over_)) return over_;
  for (HWND window = GetWindow(window_, GW_HWNDNEXT); window != nullptr; window = GetWindow(window, GW_HWNDNEXT)) {
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    if (process == GetCurrentProcessId() && IsWindowVisible(window) && !IsIconic(window) &&
        GetWindow(window, GW_OWNER) == nullptr) {
      return window;
    }
  }
  return nullptr;
}

void FormWindow::ActivateFormer() noexcept {
  const HWND former = WindowToReturnTo();
  if (former == nullptr) return;
  // One that this form has disabled is enabled in a moment, and only then takes the keyboard.
  const std::shared_ptr<FormWindow> form = IsWindowEnabled(former) ? nullptr : OfWindow(former);
  if (form != nullptr) form->activate_when_enabled_ = true;
  SetForegroundWindow(former);
}

void FormWindow::RestoreLists() {
  const RememberedForm remembered = services_->memory.Recall(form_->name());
  for (const auto& control : controls_) {
    auto* const list = dynamic_cast<ListMemory*>(control.get());
    const auto record = remembered.lists.find(control->model().name());
    if (list != nullptr && record != remembered.lists.end()) list->Restore(record->second);
  }
}

void FormWindow::Remember() noexcept {
  try {
    RememberedForm record = services_->memory.Recall(form_->name());
    RECT rect{};
    if (!IsIconic(window_) && !IsZoomed(window_) && GetWindowRect(window_, &rect)) {
      record.place = {rect.left, rect.top, Unscale(rect.right - rect.left, dpi_),
                      Unscale(rect.bottom - rect.top, dpi_)};
    }
    for (const auto& control : controls_) {
      if (const auto* const list = dynamic_cast<const ListMemory*>(control.get())) {
        record.lists[control->model().name()] = list->Remembered();
      }
    }
    services_->memory.Remember(form_->name(), record);
  } catch (...) {  // only the comfort of a remembered place is lost
  }
}

void FormWindow::FocusControl(const std::string& name) noexcept {
  const DpiScope dpi_scope;
  const std::shared_ptr<FormWindow> alive = shared_from_this();
  const auto found = std::find_if(controls_.begin(), controls_.end(),
                                  [&](const auto& control) { return control->model().name() == name; });
  if (found == controls_.end()) return;
  ControlWindow& control = **found;
  const ControlWindow* const frame = Find(GetParent(control.window()));
  controls::TabStrip* const tabs = form_->layout().tabs;
  if (frame != nullptr && tabs != nullptr && IsPage(frame->model()) && !IsShown(frame->model())) {
    for (int i = 0; i < tabs->Count(); ++i) {
      const auto page = form_->layout().pages.find(tabs->tabs()[static_cast<std::size_t>(i)].key);
      if (page == form_->layout().pages.end() || page->second != &frame->model()) continue;
      // As if the user had chosen the tab: the page is filled by the form's own event.
      SendMessageW(Find(tabs)->window(), TCM_SETCURFOCUS, static_cast<WPARAM>(i), 0);
      break;
    }
  }
  // By way of the dialog, which keeps the mark of the default button right.
  SendMessageW(window_, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(control.window()), TRUE);
}

void FormWindow::ContextMenu(POINT at, const std::function<void()>& tell) noexcept {
  const std::shared_ptr<FormWindow> alive = shared_from_this();
  const std::optional<POINT> before = std::exchange(menu_place_, at);
  Event(tell);
  menu_place_ = before;
}

void FormWindow::PopupMenu(const std::vector<controls::MenuItem>& items) noexcept {
  const DpiScope dpi_scope;
  const std::shared_ptr<FormWindow> alive = shared_from_this();
  Command([&] {
    const MenuWindow menu(items, MenuWindow::Kind::kPopup);
    POINT at{};
    if (menu_place_) {
      at = *menu_place_;
    } else {
      GetCursorPos(&at);
    }
    const BOOL command = TrackPopupMenu(menu.get(), TPM_RETURNCMD | TPM_RIGHTBUTTON, at.x, at.y, 0, window_, nullptr);
    if (const auto action = menu.Action(static_cast<WORD>(command))) action();
  });
}

void FormWindow::RestoreEnabled() noexcept {
  EnableWindow(window_, form_->enabled() ? TRUE : FALSE);
  if (!form_->enabled()) return;
  if (std::exchange(activate_when_enabled_, false)) SetForegroundWindow(window_);
  // A window that was activated while it was disabled has not taken the keyboard.
  if (GetActiveWindow() != window_ || Find(GetFocus()) != nullptr) return;
  if (IsWindowVisible(last_focus_) && IsWindowEnabled(last_focus_)) {
    SetFocus(last_focus_);
  } else {
    FocusFirst();
  }
}

void FormWindow::ControlChanged(controls::Control& control, controls::Aspect aspect) noexcept {
  ControlWindow* const shown = Find(&control);
  if (shown == nullptr || closing_) return;
  const DpiScope dpi_scope;
  const std::shared_ptr<FormWindow> alive = shared_from_this();
  try {
    if (aspect == controls::Aspect::kEnabled) {
      ApplyEnabled(*shown);
    } else if (aspect == controls::Aspect::kVisible) {
      ApplyVisibility(*shown);
      for (const auto& [label, field] : field_of_label_) {
        if (field == &control) ApplyVisibility(*Find(label));
      }
    } else {
      shown->ModelChanged(aspect);
    }
    const bool is_note = &control == form_->layout().note;
    if (is_note) ApplyVisibility(*shown);
    const bool is_frame = control.kind() == controls::ControlKind::kFrame && !IsPage(control);
    if (is_note || (is_frame && aspect == controls::Aspect::kVisible)) ArrangeControls();
  } catch (...) {  // out of memory: the window shows what it showed before
  }
}

void FormWindow::FormChanged(controls::FormAspect aspect) noexcept {
  using controls::FormAspect;
  if (closing_) return;
  const DpiScope dpi_scope;
  try {
    switch (aspect) {
      case FormAspect::kCaption:
        SetWindowTextW(window_, Wide(form_->caption()).c_str());
        break;
      case FormAspect::kEnabled:
        RestoreEnabled();
        break;
      case FormAspect::kMousePointer: {
        POINT at{};
        if (!GetCursorPos(&at) || OfWindow(WindowFromPoint(at)).get() != this) break;
        if (form_->mouse_pointer() == controls::MousePointer::kHourglass) {
          // At once: what follows is long, and processes no messages.
          SetCursor(LoadCursorW(nullptr, IDC_WAIT));
        } else {
          SetCursorPos(at.x, at.y);  // as if it moved: the control below says which pointer it wants
        }
        break;
      }
      case FormAspect::kWindowState:
        ShowWindow(window_, form_->window_state() == controls::WindowState::kMinimized ? SW_MINIMIZE : SW_RESTORE);
        break;
      case FormAspect::kMenus:
        ShowMenus();
        break;
      case FormAspect::kRefresh:
        RedrawWindow(window_, nullptr, nullptr, RDW_INVALIDATE | RDW_ALLCHILDREN | RDW_UPDATENOW);
        break;
    }
  } catch (...) {  // out of memory: the window shows what it showed before
  }
}

}  // namespace quenta::platform
