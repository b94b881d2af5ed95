// What stands in a form's window: building the controls, arranging them, showing and hiding them.
#include <algorithm>
#include <set>

#include "controls/simple_controls.h"
#include "platform/win32/dpi.h"
#include "platform/win32/form_window.h"
#include "platform/win32/glyph_images.h"
#include "platform/win32/wide_text.h"

namespace quenta::platform {
namespace {

using controls::ControlKind;
using controls::Frame;

Metrics MetricsOf(HWND window, HFONT font, UINT dpi) {
  TEXTMETRICW text{};
  {
    const WindowDc dc(window, font);
    GetTextMetricsW(dc.get(), &text);
  }
  Metrics metrics;
  metrics.line = text.tmHeight;
  metrics.field = metrics.line + Scale(6, dpi) + 2;
  metrics.button = metrics.line + Scale(10, dpi);
  metrics.button_width = Scale(84, dpi);
  metrics.margin = Scale(12, dpi);
  metrics.column_gap = Scale(10, dpi);
  metrics.row_gap = Scale(8, dpi);
  metrics.label_gap = Scale(3, dpi);
  metrics.toolbar = std::max(metrics.line, Scale(24, dpi)) + Scale(18, dpi);
  metrics.frame_toolbar = std::max(metrics.line, Scale(16, dpi)) + Scale(12, dpi);
  metrics.tab_strip = metrics.line + Scale(12, dpi);
  metrics.text_width = [window, font](const std::string& caption) {
    const WindowDc dc(window, font);
    RECT bounds{};
    DrawTextW(dc.get(), Wide(caption).c_str(), -1, &bounds, DT_CALCRECT | DT_SINGLELINE);
    return static_cast<int>(bounds.right - bounds.left);
  };
  return metrics;
}

bool Holds(HWND outer, HWND inner) noexcept {
  return inner != nullptr && (outer == inner || IsChild(outer, inner));
}

}  // namespace

void FormWindow::TakeAppearance() {
  dpi_ = DpiOf(window_);
  Restyle();
}

void FormWindow::Restyle() {
  OwnedFont font = MessageFont(dpi_);
  metrics_ = MetricsOf(window_, font.get(), dpi_);
  std::swap(font_, font);  // the former font goes when no control has it any more
  SendMessageW(window_, WM_SETFONT, reinterpret_cast<WPARAM>(font_.get()), FALSE);
  for (const auto& control : controls_) control->Restyle();
  OwnedIcon small_icon = GlyphIcon("produto", Scale(16, dpi_));
  OwnedIcon large_icon = GlyphIcon("produto", Scale(32, dpi_));
  SendMessageW(window_, WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(small_icon.get()));
  SendMessageW(window_, WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(large_icon.get()));
  std::swap(small_icon_, small_icon);
  std::swap(large_icon_, large_icon);
}

void FormWindow::ShowMenus() {
  MenuWindow menu(form_->menus(), MenuWindow::Kind::kBar);
  const HMENU former = GetMenu(window_);
  SetMenu(window_, menu.empty() ? nullptr : menu.release());
  if (former != nullptr) DestroyMenu(former);
  menu_ = std::move(menu);
}

// In reading order, which is the order of Tab; each label before its field, so that its mnemonic leads there.
void FormWindow::BuildControls() {
  const controls::Layout& layout = form_->layout();
  if (layout.toolbar != nullptr) AddControl(window_, *layout.toolbar);
  if (layout.note != nullptr) AddControl(window_, *layout.note);
  for (Frame* const frame : layout.frames) BuildFrame(*frame);
  if (layout.tabs != nullptr) AddControl(window_, *layout.tabs);
  std::set<const Frame*> built;
  for (const auto& [key, page] : layout.pages) {
    if (built.insert(page).second) BuildFrame(*page);
  }
  for (controls::CommandButton* const button : layout.buttons) AddControl(window_, *button);
  for (const auto& control : controls_) {
    if (control->model().kind() != ControlKind::kCommandButton) continue;
    if (static_cast<const controls::CommandButton&>(control->model()).is_default()) {
      SendMessageW(window_, DM_SETDEFID, control->id(), 0);
    }
  }
  GiveOptionsATabStop();
  AddTooltips();
  for (const auto& control : controls_) ApplyVisibility(*control);
}

// Tab stops at the option button that is set. Where none of a group is, it stops at the first one.
void FormWindow::GiveOptionsATabStop() noexcept {
  HWND first = nullptr;
  bool any_set = false;
  const auto end_group = [&] {
    if (first != nullptr && !any_set) {
      SetWindowLongPtrW(first, GWL_STYLE, GetWindowLongPtrW(first, GWL_STYLE) | WS_TABSTOP);
    }
    first = nullptr;
    any_set = false;
  };
  for (const auto& control : controls_) {
    if (control->model().kind() != ControlKind::kOptionButton) {
      end_group();
      continue;
    }
    if (first == nullptr) first = control->window();
    any_set = any_set || static_cast<const controls::OptionButton&>(control->model()).value();
  }
  end_group();
}

void FormWindow::BuildFrame(Frame& frame) {
  const HWND parent = AddControl(window_, frame).window();
  if (frame.toolbar != nullptr) AddControl(parent, *frame.toolbar);
  for (const controls::LayoutRow& row : frame.rows) {
    for (const controls::Cell& cell : row.cells) {
      if (cell.label != nullptr) {
        field_of_label_[cell.label] = cell.control;
        AddControl(parent, *cell.label);
      }
      if (cell.control != nullptr) AddControl(parent, *cell.control);
    }
  }
}

ControlWindow& FormWindow::AddControl(HWND parent, controls::Control& model) {
  const bool option_before = !controls_.empty() && controls_.back()->model().kind() == ControlKind::kOptionButton &&
                             GetParent(controls_.back()->window()) == parent;
  ControlWindow& control = *controls_.emplace_back(MakeControlWindow(*this, model));
  control.Create(parent);
  by_window_[control.window()] = &control;
  by_model_[&model] = &control;
  // The arrow keys walk through option buttons that follow each other, and nowhere else.
  if (model.kind() != ControlKind::kOptionButton || !option_before) {
    SetWindowLongPtrW(control.window(), GWL_STYLE, GetWindowLongPtrW(control.window(), GWL_STYLE) | WS_GROUP);
  }
  return control;
}

void FormWindow::AddTooltips() {
  tooltips_ = CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX, 0, 0, 0,
                              0, window_, nullptr, ThisModule(), nullptr);
  if (tooltips_ == nullptr) return;
  for (const auto& control : controls_) {
    const ControlKind kind = control->model().kind();
    if (kind == ControlKind::kFrame || kind == ControlKind::kToolbar || kind == ControlKind::kTabStrip) continue;
    // A combo box with typing is covered by its edit part. A list's header stays out of this: tools are subclassed, and
    // the list asks its header about every row.
    HWND part = control->window();
    for (; part != nullptr; part = kind == ControlKind::kComboBox ? GetWindow(part, GW_CHILD) : nullptr) {
      TTTOOLINFOW tool{};
      tool.cbSize = sizeof(tool);
      tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
      tool.hwnd = window_;
      tool.uId = reinterpret_cast<UINT_PTR>(part);
      tool.lpszText = LPSTR_TEXTCALLBACKW;  // asked for each time, for the model may change it
      SendMessageW(tooltips_, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
    }
  }
}

void FormWindow::ArrangeControls() {
  if (controls_.empty()) return;
  RECT client{};
  GetClientRect(window_, &client);
  const Arrangement arrangement = Arrange(form_->layout(), metrics_, client.right, client.bottom);
  std::vector<PlacedControl> outer = arrangement.controls;
  for (const PlacedFrame& frame : arrangement.frames) outer.push_back({frame.frame, frame.place});
  PlaceControls(outer);
  for (const PlacedFrame& frame : arrangement.frames) PlaceControls(frame.controls);
}

// Windows of one parent, all at once.
void FormWindow::PlaceControls(const std::vector<PlacedControl>& placed) noexcept {
  HDWP batch = BeginDeferWindowPos(static_cast<int>(placed.size()));
  for (const auto& [model, place] : placed) {
    const ControlWindow* const control = Find(model);
    if (control == nullptr || batch == nullptr) continue;
    const SIZE size = control->WindowSize({place.left, place.top, std::max(0, place.width), std::max(0, place.height)});
    batch = DeferWindowPos(batch, control->window(), nullptr, place.left, place.top, size.cx, size.cy,
                           SWP_NOZORDER | SWP_NOACTIVATE);
  }
  if (batch != nullptr) EndDeferWindowPos(batch);
  for (const auto& [model, place] : placed) {
    if (ControlWindow* const control = Find(model)) control->Placed(place);
  }
}

SIZE FormWindow::MinimumWindowSize() const {
  const Extent extent = MinimumExtent(form_->layout(), metrics_);
  RECT window{};
  RECT client{};
  GetWindowRect(window_, &window);
  GetClientRect(window_, &client);
  const LONG border_width = window.right - window.left - client.right;
  const LONG border_height = window.bottom - window.top - client.bottom;
  const controls::Layout& layout = form_->layout();
  LONG width = extent.width;
  if (const ControlWindow* const toolbar = Find(layout.toolbar)) {
    SIZE needed{};
    SendMessageW(toolbar->window(), TB_GETMAXSIZE, 0, reinterpret_cast<LPARAM>(&needed));
    width = std::max(width, needed.cx + metrics_.margin);
  }
  return {std::max<LONG>(width + border_width, Scale(layout.minimum_width, dpi_)),
          std::max<LONG>(extent.height + border_height, layout.resizable ? Scale(layout.minimum_height, dpi_) : 0)};
}

bool FormWindow::IsPage(const controls::Control& frame) const noexcept {
  const auto& pages = form_->layout().pages;
  return std::any_of(pages.begin(), pages.end(), [&](const auto& page) { return page.second == &frame; });
}

bool FormWindow::IsShown(const controls::Control& control) const noexcept {
  if (!control.visible()) return false;
  const controls::Layout& layout = form_->layout();
  if (&control == layout.note) return !layout.note->caption().empty();
  if (control.kind() == ControlKind::kFrame && layout.tabs != nullptr && IsPage(control)) {
    const auto page = layout.pages.find(layout.tabs->selected_key());
    return layout.tabs->visible() && page != layout.pages.end() && page->second == &control;
  }
  const auto field = field_of_label_.find(&control);
  return field == field_of_label_.end() || field->second == nullptr || field->second->visible();
}

void FormWindow::ApplyVisibility(ControlWindow& control) noexcept {
  const bool shown = IsShown(control.model());
  if (shown == ((GetWindowLongPtrW(control.window(), GWL_STYLE) & WS_VISIBLE) != 0)) return;
  const bool had_focus = !shown && Holds(control.window(), GetFocus());
  ShowWindow(control.window(), shown ? SW_SHOWNA : SW_HIDE);
  if (had_focus) MoveFocusFrom(control);
}

void FormWindow::ApplyEnabled(ControlWindow& control) noexcept {
  const bool enabled = control.model().enabled();
  const bool had_focus = !enabled && Holds(control.window(), GetFocus());
  EnableWindow(control.window(), enabled ? TRUE : FALSE);
  if (had_focus) MoveFocusFrom(control);
}

// A control that cannot be used any more would keep the keyboard for itself.
void FormWindow::MoveFocusFrom(const ControlWindow& control) noexcept {
  const ControlWindow* const tabs = IsPage(control.model()) ? Find(form_->layout().tabs) : nullptr;
  const HWND next = tabs != nullptr ? tabs->window() : GetNextDlgTabItem(window_, control.window(), FALSE);
  SetFocus(next != nullptr ? next : window_);
}

void FormWindow::PageChanged() noexcept {
  // The new page before the old one goes, so that the focus finds a place.
  for (const bool shown : {true, false}) {
    for (const auto& control : controls_) {
      if (IsPage(control->model()) && IsShown(control->model()) == shown) ApplyVisibility(*control);
    }
  }
}

void FormWindow::ClearOtherOptions(const ControlWindow& chosen) noexcept {
  for (const auto& control : controls_) {
    if (control.get() == &chosen || control->model().kind() != ControlKind::kOptionButton) continue;
    if (GetParent(control->window()) != GetParent(chosen.window())) continue;
    static_cast<controls::OptionButton&>(control->model()).set_value(false);
  }
}

// The first field, not the toolbar above it.
void FormWindow::FocusFirst() noexcept {
  for (const auto& control : controls_) {
    const ControlKind kind = control->model().kind();
    if (kind == ControlKind::kToolbar || kind == ControlKind::kLabel || kind == ControlKind::kFrame ||
        kind == ControlKind::kProgressBar) {
      continue;
    }
    if (!IsWindowVisible(control->window()) || !IsWindowEnabled(control->window())) continue;
    SendMessageW(window_, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(control->window()), TRUE);
    return;
  }
}

ControlWindow* FormWindow::Find(const controls::Control* model) const noexcept {
  const auto found = by_model_.find(model);
  return found != by_model_.end() ? found->second : nullptr;
}

ControlWindow* FormWindow::Find(HWND window) const noexcept {
  for (; window != nullptr && window != window_; window = GetAncestor(window, GA_PARENT)) {
    const auto found = by_window_.find(window);
    if (found != by_window_.end()) return found->second;
  }
  return nullptr;
}

}  // namespace quenta::platform
