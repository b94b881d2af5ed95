#include "sandbox/host/login_dialog.h"

#include "sandbox/host/dialog_template.h"
#include "sandbox/host/resource.h"

namespace quenta::sandbox::host {
namespace {

std::string TextOfControl(HWND dialog, int id) {
  const HWND control = GetDlgItem(dialog, id);
  std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(control)) + 1, L'\0');
  text.resize(static_cast<std::size_t>(GetWindowTextW(control, text.data(), static_cast<int>(text.size()))));
  return FromWide(text);
}

class LoginDialog {
 public:
  LoginDialog(ComponentLink& component, const std::vector<Server>& servers, const LoginStart& start)
      : component_(component), servers_(servers), start_(start) {}

  std::optional<LoginOutcome> Ask(HWND owner) {
    const DialogTemplate dialog(IDD_LOGIN);
    DialogBoxIndirectParamW(GetModuleHandleW(nullptr), dialog.get(), owner, &LoginDialog::Procedure,
                            reinterpret_cast<LPARAM>(this));
    return outcome_;
  }

 private:
  static INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) noexcept {
    if (message == WM_INITDIALOG) {
      SetWindowLongPtrW(window, DWLP_USER, lparam);
      reinterpret_cast<LoginDialog*>(lparam)->window_ = window;
    }
    auto* self = reinterpret_cast<LoginDialog*>(GetWindowLongPtrW(window, DWLP_USER));
    if (self == nullptr) return FALSE;
    try {
      return self->Handle(message, wparam);
    } catch (const std::exception& error) {
      self->Note(error.what());
      return TRUE;
    }
  }

  INT_PTR Handle(UINT message, WPARAM wparam) {
    if (message == WM_INITDIALOG) {
      Fill();
      return FALSE;  // the focus was set here
    }
    if (message != WM_COMMAND) return FALSE;
    if (LOWORD(wparam) == IDOK) TryToConnect();
    if (LOWORD(wparam) == IDCANCEL && !connecting_) EndDialog(window_, IDCANCEL);
    return TRUE;
  }

  void Fill() {
    const HWND list = GetDlgItem(window_, IDC_SERVER);
    for (const Server& server : servers_) {
      SendMessageW(list, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(ToWide(server.name).c_str()));
    }
    SendMessageW(list, CB_SETCURSEL, start_.server, 0);
    const int shown = servers_.size() > 1 ? SW_SHOW : SW_HIDE;
    ShowWindow(list, shown);
    ShowWindow(GetDlgItem(window_, IDC_SERVER_LABEL), shown);
    SetDlgItemTextW(window_, IDC_USER, ToWide(start_.user).c_str());
    Note(start_.note.empty() ? "Escreva o seu nome de utilizador e a sua palavra-passe." : start_.note);
    SetFocus(GetDlgItem(window_, start_.user.empty() ? IDC_USER : IDC_PASSWORD));
  }

  void Note(const std::string& text) { SetDlgItemTextW(window_, IDC_LOGIN_NOTE, ToWide(text).c_str()); }

  void TryToConnect() {
    if (connecting_) return;
    const std::string user = TextOfControl(window_, IDC_USER);
    if (user.empty()) {
      Note("Falta o nome de utilizador.");
      SetFocus(GetDlgItem(window_, IDC_USER));
      return;
    }
    const auto chosen = static_cast<std::size_t>(SendDlgItemMessageW(window_, IDC_SERVER, CB_GETCURSEL, 0, 0));
    const Server& server = servers_.at(chosen);
    Note("A ligar a " + server.name + "…");
    UpdateWindow(window_);
    if (Connect(server, user)) {
      outcome_ = LoginOutcome{server, user};
      EndDialog(window_, IDOK);
      return;
    }
    Note("Não foi possível entrar: utilizador ou palavra-passe errados, ou o servidor não responde.");
    const HWND password = GetDlgItem(window_, IDC_PASSWORD);
    SetFocus(password);
    SendMessageW(password, EM_SETSEL, 0, -1);
  }

  // The component lets messages through while it waits, so a second attempt has to be kept out meanwhile.
  bool Connect(const Server& server, const std::string& user) {
    class Busy {
     public:
      explicit Busy(LoginDialog& dialog) : dialog_(dialog), cursor_(SetCursor(LoadCursorW(nullptr, IDC_WAIT))) {
        Set(true);
      }
      ~Busy() {
        Set(false);
        SetCursor(cursor_);
      }
      Busy(const Busy&) = delete;
      Busy& operator=(const Busy&) = delete;

     private:
      void Set(bool busy) {
        dialog_.connecting_ = busy;
        for (const int id : {IDC_USER, IDC_PASSWORD, IDC_SERVER, IDOK, IDCANCEL}) {
          EnableWindow(GetDlgItem(dialog_.window_, id), !busy);
        }
      }
      LoginDialog& dialog_;
      HCURSOR cursor_;
    };
    const Busy busy(*this);
    return component_.Connect(server, user, TextOfControl(window_, IDC_PASSWORD));
  }

  ComponentLink& component_;
  const std::vector<Server>& servers_;
  const LoginStart& start_;
  HWND window_ = nullptr;
  bool connecting_ = false;
  std::optional<LoginOutcome> outcome_;
};

}  // namespace

std::optional<LoginOutcome> AskLogin(HWND owner, ComponentLink& component, const std::vector<Server>& servers,
                                     const LoginStart& start) {
  return LoginDialog(component, servers, start).Ask(owner);
}

}  // namespace quenta::sandbox::host
