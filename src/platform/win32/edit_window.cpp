// Text fields and masked fields as edit controls.
#include <string>
#include <utility>

#include "base/text.h"
#include "controls/simple_controls.h"
#include "controls/text_field.h"
#include "platform/win32/control_window.h"
#include "platform/win32/edit_text.h"
#include "platform/win32/settings.h"
#include "platform/win32/wide_text.h"

namespace quenta::platform {
namespace {

using controls::Aspect;

WPARAM DecimalSeparator() noexcept {
  try {
    const std::wstring separator = Wide(Settings().UserLocale().decimal);
    if (!separator.empty()) return separator.front();
  } catch (...) {  // out of memory: numbers are read with either sign
  }
  return L'.';
}

class EditWindow : public ControlWindow {
 public:
  using ControlWindow::ControlWindow;

  void ModelChanged(Aspect aspect) override {
    const Silence silence(*this);
    if (aspect == Aspect::kText) {
      ShowText();
    } else if (aspect == Aspect::kCaret) {
      SetEditSelection(window(), ModelSelection());
    }
  }

  void OnCommand(WORD, WORD code) noexcept override {
    if (code != EN_CHANGE || silent()) return;
    BeforeKey();
    owner().Event([this] { TellTyped(Narrow(WindowText(window()))); });
  }

 protected:
  virtual const std::string& ModelText() const noexcept = 0;
  virtual controls::TextRange ModelSelection() const = 0;
  virtual void TellTyped(std::string text) = 0;

  void ShowText() {
    const std::wstring text = WithWindowsLineEnds(Wide(ModelText()));
    if (WindowText(window()) != text) SetWindowTextW(window(), text.c_str());
  }
};

class TextFieldWindow final : public EditWindow {
 public:
  TextFieldWindow(ControlOwner& owner, controls::TextField& field) : EditWindow(owner, field), field_(field) {}

  void Create(HWND parent) override {
    DWORD style = field_.right_aligned ? ES_RIGHT : ES_LEFT;
    style |= field_.multi_line ? ES_MULTILINE | ES_WANTRETURN | ES_AUTOVSCROLL | WS_VSCROLL : ES_AUTOHSCROLL;
    if (field_.locked()) style |= ES_READONLY;
    CreateControl(parent, L"EDIT", {}, style, WS_EX_CLIENTEDGE);
    ModelChanged(Aspect::kMaxLength);
    ModelChanged(Aspect::kText);
  }

  void ModelChanged(Aspect aspect) override {
    if (aspect == Aspect::kLocked) {
      Send(EM_SETREADONLY, field_.locked() ? TRUE : FALSE);
    } else if (aspect == Aspect::kMaxLength) {
      Send(EM_SETLIMITTEXT, field_.max_length());
    } else {
      EditWindow::ModelChanged(aspect);
    }
  }

 protected:
  const std::string& ModelText() const noexcept override { return field_.text(); }
  controls::TextRange ModelSelection() const override { return field_.selection(); }
  void TellTyped(std::string text) override { field_.Typed(std::move(text)); }
  void BeforeKey() noexcept override { field_.SelectionMoved(EditSelection(window())); }

  // Whatever the layout of the keyboard makes of that key.
  WPARAM CharacterFor(WPARAM unit) noexcept override {
    return std::exchange(decimal_key_, false) ? DecimalSeparator() : unit;
  }

  std::optional<LRESULT> OnMessage(HWND, UINT message, WPARAM wparam, LPARAM lparam) noexcept override {
    if (message == WM_KEYDOWN) decimal_key_ = field_.right_aligned && wparam == VK_DECIMAL;
    if (message == WM_GETDLGCODE && field_.multi_line) return DialogCode(lparam);
    if (message == WM_CHAR && wparam == kSelectAllCharacter) {
      Send(EM_SETSEL, 0, -1);
      return 0;
    }
    return std::nullopt;
  }

 private:
  static constexpr WPARAM kSelectAllCharacter = 1;  // Ctrl+A, which edit controls do not know everywhere

  // A multi-line edit claims every key. The dialog keeps Tab and Esc; and without DLGC_HASSETSEL it does not select a
  // whole note when the user tabs into it, where the next key would wipe it out.
  static LRESULT DialogCode(LPARAM lparam) noexcept {
    LRESULT code = DLGC_WANTARROWS | DLGC_WANTCHARS;
    const auto* const message = reinterpret_cast<const MSG*>(lparam);
    if (message != nullptr && message->message == WM_KEYDOWN && message->wParam == VK_RETURN) code |= DLGC_WANTMESSAGE;
    return code;
  }

  controls::TextField& field_;
  bool decimal_key_ = false;  // the character that comes next is that of the numeric pad's decimal key
};

class MaskEditWindow final : public EditWindow {
 public:
  MaskEditWindow(ControlOwner& owner, controls::MaskEdit& field) : EditWindow(owner, field), field_(field) {}

  void Create(HWND parent) override {
    CreateControl(parent, L"EDIT", {}, ES_LEFT | ES_AUTOHSCROLL, WS_EX_CLIENTEDGE);
    Send(EM_SETLIMITTEXT, base::Utf16Length(field_.mask()));
    ModelChanged(Aspect::kText);
  }

 protected:
  const std::string& ModelText() const noexcept override { return field_.text(); }
  controls::TextRange ModelSelection() const override { return {0, base::Utf16Length(field_.text())}; }
  void TellTyped(std::string text) override { field_.Typed(std::move(text)); }

 private:
  controls::MaskEdit& field_;
};

}  // namespace

std::unique_ptr<ControlWindow> MakeEditWindow(ControlOwner& owner, controls::Control& model) {
  if (model.kind() == controls::ControlKind::kMaskEdit) {
    return std::make_unique<MaskEditWindow>(owner, static_cast<controls::MaskEdit&>(model));
  }
  return std::make_unique<TextFieldWindow>(owner, static_cast<controls::TextField&>(model));
}

}  // namespace quenta::platform
