// Frames: the windows in which groups of controls stand, as group boxes and as pages of tabs.
#include <string>

#include <windows.h>

#include <uxtheme.h>
#include <vsstyle.h>

#include "controls/layout.h"
#include "platform/win32/control_window.h"
#include "platform/win32/wide_text.h"
#include "platform/win32/window_classes.h"

namespace quenta::platform {
namespace {

using controls::Aspect;
using controls::Frame;

class FrameWindow final : public ControlWindow {
 public:
  FrameWindow(ControlOwner& owner, Frame& frame) : ControlWindow(owner, frame), frame_(frame) {}

  void Create(HWND parent) override {
    // A control parent: the keyboard walks through the controls inside as if they stood in the form itself.
    CreateControl(parent, kFrameClass, frame_.caption(), WS_CLIPCHILDREN | WS_CLIPSIBLINGS, WS_EX_CONTROLPARENT);
  }

  void ModelChanged(Aspect) override {}

 protected:
  std::optional<LRESULT> OnMessage(HWND frame, UINT message, WPARAM wparam, LPARAM lparam) noexcept override {
    switch (message) {
      // What the controls tell their parent is for the form.
      case WM_COMMAND:
      case WM_NOTIFY:
      case WM_CLOSE:
      case WM_NEXTDLGCTL:
      case DM_GETDEFID:
      case DM_SETDEFID:
        return SendMessageW(GetParent(frame), message, wparam, lparam);
      case WM_PAINT:
        Paint();
        return 0;
      default:
        return std::nullopt;
    }
  }

 private:
  void Paint() noexcept {
    PAINTSTRUCT paint;
    const HDC dc = BeginPaint(window(), &paint);
    RECT bounds{};
    GetClientRect(window(), &bounds);
    if (!frame_.caption().empty()) {
      PaintGroup(dc, bounds);
    } else if (owner().IsPage(frame_)) {
      FrameRect(dc, &bounds, GetSysColorBrush(COLOR_3DSHADOW));
    }
    EndPaint(window(), &paint);
  }

  void PaintGroup(HDC dc, RECT bounds) noexcept {
    const Metrics& metrics = owner().metrics();
    std::wstring caption;
    try {
      caption = Wide(frame_.caption());
    } catch (...) {  // out of memory: a border without its caption
    }
    const HGDIOBJ font_before = SelectObject(dc, owner().font());
    RECT text{bounds.left + metrics.margin, bounds.top, bounds.right - metrics.margin, bounds.top + metrics.line};
    RECT needed = text;
    DrawTextW(dc, caption.c_str(), -1, &needed, DT_CALCRECT | DT_SINGLELINE);
    const int gap = metrics.label_gap;
    const int saved = SaveDC(dc);
    ExcludeClipRect(dc, needed.left - gap, needed.top, needed.right + gap, needed.bottom);
    bounds.top += metrics.line / 2;
    const HTHEME theme = OpenThemeData(window(), VSCLASS_BUTTON);
    if (theme != nullptr) {
      DrawThemeBackground(theme, dc, BP_GROUPBOX, GBS_NORMAL, &bounds, nullptr);
      CloseThemeData(theme);
    } else {
      DrawEdge(dc, &bounds, EDGE_ETCHED, BF_RECT);
    }
    RestoreDC(dc, saved);
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, GetSysColor(frame_.enabled() ? COLOR_BTNTEXT : COLOR_GRAYTEXT));
    DrawTextW(dc, caption.c_str(), -1, &text, DT_SINGLELINE | DT_END_ELLIPSIS);
    SelectObject(dc, font_before);
  }

  Frame& frame_;
};

}  // namespace

std::unique_ptr<ControlWindow> MakeFrameWindow(ControlOwner& owner, controls::Control& model) {
  return std::make_unique<FrameWindow>(owner, static_cast<Frame&>(model));
}

}  // namespace quenta::platform
