#include "sandbox/host/main_window.h"

#include <windowsx.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <new>
#include <stdexcept>
#include <utility>

#include "base/text.h"
#include "sandbox/host/dialog_template.h"
#include "sandbox/host/login_dialog.h"
#include "sandbox/host/machine_settings.h"
#include "sandbox/host/resource.h"

namespace quenta::sandbox::host {
namespace {

constexpr UINT kBegin = WM_APP;
constexpr UINT kComeBack = WM_APP + 1;

struct ColumnLook {
  const wchar_t* title;
  int width;  // in pixels of a 96 dpi screen
  int align;
};

// In the order of ProductList::Column.
constexpr std::array<ColumnLook, 4> kColumns{{
    {L"Código", 110, LVCFMT_LEFT},
    {L"Nome", 295, LVCFMT_LEFT},
    {L"Família", 150, LVCFMT_LEFT},
    {L"Preço", 100, LVCFMT_RIGHT},
}};

std::wstring PriceText(double price) {
  char digits[64];
  const auto [end, error] = std::to_chars(digits, digits + sizeof(digits), price, std::chars_format::fixed, 2);
  if (error != std::errc()) return L"";
  const std::wstring number(digits, end);
  wchar_t text[128];
  const int length = GetCurrencyFormatEx(LOCALE_NAME_USER_DEFAULT, 0, number.c_str(), nullptr, text, ARRAYSIZE(text));
  return length > 0 ? std::wstring(text) : number;
}

// The code, or the identifier of a product without one, as /open takes them.
std::string NameOf(const Product& product) {
  return product.codigo.empty() ? "#" + base::DecimalText(product.produto_id) : product.codigo;
}

std::string Count(std::size_t number, const char* one, const char* many) {
  return base::DecimalText(static_cast<long long>(number)) + " " + (number == 1 ? one : many);
}

std::wstring ProgramFolder() {
  wchar_t path[MAX_PATH];
  const DWORD length = GetModuleFileNameW(nullptr, path, ARRAYSIZE(path));
  const std::wstring_view text(path, length);
  return std::wstring(text.substr(0, text.find_last_of(L'\\') + 1));
}

// A servers file that was named has to be there; the usual one may be missing.
std::vector<Server> ReadServers(const std::string& path) {
  const std::wstring wide = path.empty() ? ProgramFolder() + L"servidores.ini" : ToWide(path);
  std::vector<Server> servers;
  std::ifstream file(std::filesystem::path(wide), std::ios::binary);
  if (file) {
    servers = ParseServers(std::string(std::istreambuf_iterator<char>(file), {}));
  } else if (!path.empty()) {
    throw std::runtime_error("Não se consegue ler a lista de servidores " + path + ".");
  }
  if (std::optional<Server> machine = ReadMachineServer()) servers.push_back(*std::move(machine));
  return servers;
}

struct WindowSearch {
  HWND own;
  std::vector<HWND> found;
};

BOOL CALLBACK CollectWindow(HWND window, LPARAM parameter) noexcept {
  auto& search = *reinterpret_cast<WindowSearch*>(parameter);
  const bool captioned = (GetWindowLongW(window, GWL_STYLE) & WS_CAPTION) == WS_CAPTION;
  if (window == search.own || !captioned || !IsWindowVisible(window)) return TRUE;
  try {
    search.found.push_back(window);
    return TRUE;
  } catch (const std::bad_alloc&) {
    return FALSE;
  }
}

// The windows that the component shows on this thread beside the host's own.
std::vector<HWND> ProductWindows(HWND own) {
  WindowSearch search{own, {}};
  EnumThreadWindows(GetCurrentThreadId(), CollectWindow, reinterpret_cast<LPARAM>(&search));
  return search.found;
}

class WaitCursor {
 public:
  WaitCursor() : before_(SetCursor(LoadCursorW(nullptr, IDC_WAIT))) {}
  ~WaitCursor() { SetCursor(before_); }
  WaitCursor(const WaitCursor&) = delete;
  WaitCursor& operator=(const WaitCursor&) = delete;

 private:
  HCURSOR before_;
};

}  // namespace

MainWindow::MainWindow(CommandLine command_line) : command_line_(std::move(command_line)) {
  const HINSTANCE module = GetModuleHandleW(nullptr);
  WNDCLASSEXW look{};
  look.cbSize = sizeof(look);
  look.lpfnWndProc = DefDlgProcW;
  look.cbWndExtra = DLGWINDOWEXTRA;
  look.hInstance = module;
  look.hIcon = LoadIconW(module, MAKEINTRESOURCEW(IDI_HOST));
  look.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  look.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
  look.lpszClassName = L"QuentaHostMain";
  RegisterClassExW(&look);
  accelerators_ = LoadAcceleratorsW(module, MAKEINTRESOURCEW(IDR_ACCELERATORS));

  const DialogTemplate dialog(IDD_MAIN);
  CreateDialogIndirectParamW(module, dialog.get(), nullptr, &MainWindow::DialogProcedure,
                             reinterpret_cast<LPARAM>(this));
  if (window_ == nullptr) throw std::runtime_error("Não foi possível criar a janela.");
}

MainWindow::~MainWindow() {
  if (window_ != nullptr) DestroyWindow(window_);
}

int MainWindow::Run() {
  ShowWindow(window_, SW_SHOW);
  PostMessageW(window_, kBegin, 0, 0);
  MSG message;
  while (GetMessageW(&message, nullptr, 0, 0) > 0) {
    // The component's forms look after their own keyboard; only what is meant for this window is translated here.
    if (window_ != nullptr && (message.hwnd == window_ || IsChild(window_, message.hwnd))) {
      if (TranslateAcceleratorW(window_, accelerators_, &message) != 0) continue;
      if (IsDialogMessageW(window_, &message)) continue;
    }
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  return exit_code_;
}

INT_PTR CALLBACK MainWindow::DialogProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) noexcept {
  if (message == WM_INITDIALOG) {
    SetWindowLongPtrW(window, DWLP_USER, lparam);
    reinterpret_cast<MainWindow*>(lparam)->window_ = window;
  }
  auto* self = reinterpret_cast<MainWindow*>(GetWindowLongPtrW(window, DWLP_USER));
  if (self == nullptr) return FALSE;
  try {
    return self->Handle(message, wparam, lparam);
  } catch (const std::exception& error) {
    self->Fail(error.what());
    return TRUE;
  }
}

INT_PTR MainWindow::Handle(UINT message, WPARAM wparam, LPARAM lparam) {
  switch (message) {
    case WM_INITDIALOG:
      dpi_ = GetDpiForWindow(window_);
      SetWindowSubclass(Control(IDC_SEARCH), &MainWindow::SearchProcedure, 0, reinterpret_cast<DWORD_PTR>(this));
      SendDlgItemMessageW(window_, IDC_SEARCH, EM_SETCUEBANNER, TRUE,
                          reinterpret_cast<LPARAM>(L"código, nome ou família"));
      MakeColumns();
      Layout();
      return TRUE;
    case kBegin:
      Begin();
      return TRUE;
    case kComeBack:
      RefreshQuietly();
      return TRUE;
    case WM_ACTIVATE:
      // Posted, because this arrives in the middle of whatever is being closed.
      if (LOWORD(wparam) != WA_INACTIVE && products_may_differ_) PostMessageW(window_, kComeBack, 0, 0);
      return FALSE;
    case WM_SIZE:
      Layout();
      return TRUE;
    case WM_GETMINMAXINFO: {
      auto* limits = reinterpret_cast<MINMAXINFO*>(lparam);
      limits->ptMinTrackSize = {MulDiv(480, static_cast<int>(dpi_), 96), MulDiv(320, static_cast<int>(dpi_), 96)};
      return TRUE;
    }
    case WM_DPICHANGED: {
      const UINT before = std::exchange(dpi_, HIWORD(wparam));
      for (int column = 0; column < static_cast<int>(kColumns.size()); ++column) {
        const int width = ListView_GetColumnWidth(Control(IDC_PRODUCTS), column);
        ListView_SetColumnWidth(Control(IDC_PRODUCTS), column,
                                MulDiv(width, static_cast<int>(dpi_), static_cast<int>(before)));
      }
      return FALSE;
    }
    case WM_COMMAND:
      Command(LOWORD(wparam), HIWORD(wparam));
      return TRUE;
    case WM_NOTIFY:
      return Notified(*reinterpret_cast<const NMHDR*>(lparam));
    case WM_CONTEXTMENU:
      if (reinterpret_cast<HWND>(wparam) != Control(IDC_PRODUCTS)) return FALSE;
      ShowRowMenu({GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)});
      return TRUE;
    case WM_CLOSE:
      Close();
      return TRUE;
    case WM_DESTROY:
      // The forms and connections go while COM and the message loop are still there.
      component_.reset();
      catalogue_.reset();
      window_ = nullptr;
      PostQuitMessage(0);
      return TRUE;
    default:
      return FALSE;
  }
}

INT_PTR MainWindow::Notified(const NMHDR& header) {
  if (header.idFrom != IDC_PRODUCTS) return FALSE;
  LRESULT result = 0;
  switch (header.code) {
    case LVN_GETDISPINFOW:
      CellText(*reinterpret_cast<NMLVDISPINFOW*>(const_cast<NMHDR*>(&header)));
      return TRUE;
    case LVN_COLUMNCLICK: {
      const auto column = static_cast<ProductList::Column>(reinterpret_cast<const NMLISTVIEW*>(&header)->iSubItem);
      const std::optional<std::int32_t> selected = SelectedProduct();
      products_.SortBy(column, column == products_.sorted_by() && !products_.descending());
      ShowOrder();
      ShowRows(selected);
      return TRUE;
    }
    case LVN_ITEMACTIVATE:
      OpenSelected();
      return TRUE;
    case LVN_ODFINDITEMW: {
      const auto& find = *reinterpret_cast<const NMLVFINDITEMW*>(&header);
      result = -1;
      if ((find.lvfi.flags & (LVFI_STRING | LVFI_PARTIAL)) != 0) {
        const auto row = products_.RowThatBegins(FromWide(find.lvfi.psz), static_cast<std::size_t>(find.iStart));
        if (row) result = static_cast<LRESULT>(*row);
      }
      break;
    }
    case NM_CUSTOMDRAW:
      result = RowColours(*reinterpret_cast<NMLVCUSTOMDRAW*>(const_cast<NMHDR*>(&header)));
      break;
    case LVN_KEYDOWN: {
      const auto& key = *reinterpret_cast<const NMLVKEYDOWN*>(&header);
      if (key.wVKey == 'C' && GetKeyState(VK_CONTROL) < 0) CopyCode();
      return TRUE;
    }
    default:
      return FALSE;
  }
  SetWindowLongPtrW(window_, DWLP_MSGRESULT, result);
  return TRUE;
}

void MainWindow::Command(int id, int code) {
  switch (id) {
    case IDC_SEARCH:
      if (code == EN_CHANGE) {
        const std::optional<std::int32_t> selected = SelectedProduct();
        std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(Control(IDC_SEARCH))) + 1, L'\0');
        text.resize(
            static_cast<std::size_t>(GetWindowTextW(Control(IDC_SEARCH), text.data(), static_cast<int>(text.size()))));
        products_.SetSearch(FromWide(text));
        ShowRows(selected);
      }
      return;
    case IDM_DELETED:
      CheckDlgButton(window_, IDC_DELETED,
                     IsDlgButtonChecked(window_, IDC_DELETED) == BST_CHECKED ? BST_UNCHECKED : BST_CHECKED);
      [[fallthrough]];
    case IDC_DELETED: {
      const std::optional<std::int32_t> selected = SelectedProduct();
      const bool show = IsDlgButtonChecked(window_, IDC_DELETED) == BST_CHECKED;
      CheckMenuItem(GetMenu(window_), IDM_DELETED, show ? MF_CHECKED : MF_UNCHECKED);
      products_.ShowDeleted(show);
      ShowRows(selected);
      return;
    }
    case IDOK:
    case IDM_OPEN:
      OpenSelected();
      return;
    case IDCANCEL:  // Esc
      SetDlgItemTextW(window_, IDC_SEARCH, L"");
      SetFocus(Control(IDC_SEARCH));
      return;
    case IDM_FIND:
      SetFocus(Control(IDC_SEARCH));
      SendDlgItemMessageW(window_, IDC_SEARCH, EM_SETSEL, 0, -1);
      return;
    case IDM_NEW:
    case IDC_NEW:
      New();
      return;
    case IDM_REFRESH:
    case IDC_REFRESH:
      Refresh();
      return;
    case IDM_COPY_CODE:
      CopyCode();
      return;
    case IDM_EXIT:
      PostMessageW(window_, WM_CLOSE, 0, 0);
      return;
    case IDM_ABOUT:
      MessageBoxW(window_,
                  L"Um anfitrião de exemplo para o componente Quenta_Produtos.\n\nProcura produtos e abre-os pelo "
                  L"componente, tal como a suite o faz: apenas por COM, pelo nome da classe General.",
                  L"Acerca do anfitrião de exemplo", MB_OK | MB_ICONINFORMATION);
      return;
    default:
      return;
  }
}

void MainWindow::Begin() {
  try {
    servers_ = ReadServers(command_line_.servers_file);
    component_ = std::make_unique<ComponentLink>(window_);
    if (!LogIn()) {
      DestroyWindow(window_);
      return;
    }
  } catch (const std::exception& error) {
    Fail(error.what());
    if (!command_line_.exit) {
      MessageBoxW(window_, ToWide(error.what()).c_str(), L"Catálogo de produtos", MB_OK | MB_ICONERROR);
    }
  }
  if (component_ && catalogue_) RunActions();
  if (command_line_.exit) Close();
}

// The server that the command line asks for: by its name, or by the method of connecting; else the first.
std::size_t MainWindow::ChosenServer() const {
  for (std::size_t i = 0; i < servers_.size(); ++i) {
    const bool by_login = command_line_.connect == CommandLine::Connect::kLogin;
    const bool named = command_line_.server.empty() || base::EqualIgnoreCase(servers_[i].name, command_line_.server);
    const bool method = command_line_.connect == CommandLine::Connect::kAsk || by_login == servers_[i].from_machine;
    if (named && method) return i;
  }
  throw std::runtime_error("Não há nenhum servidor assim: ver o ficheiro servidores.ini.");
}

bool MainWindow::LogIn() {
  LoginStart start;
  start.user = command_line_.user;
  start.server = ChosenServer();

  std::optional<LoginOutcome> outcome;
  if (command_line_.password) {
    const WaitCursor wait;
    const Server& server = servers_[start.server];
    if (component_->Connect(server, command_line_.user, *command_line_.password)) {
      outcome = LoginOutcome{server, command_line_.user};
    } else {
      start.note = "Não foi possível entrar como " + command_line_.user + " em " + server.name + ".";
      Fail(start.note);
      if (command_line_.exit) return false;
    }
  }
  if (!outcome) outcome = AskLogin(window_, *component_, servers_, start);
  if (!outcome) return false;

  const std::wstring session = ToWide(outcome->user + " · " + outcome->server.name);
  SendDlgItemMessageW(window_, IDC_STATUS, SB_SETTEXTW, 2, reinterpret_cast<LPARAM>(session.c_str()));
  const WaitCursor wait;
  catalogue_ = std::make_unique<CatalogueReader>(outcome->server);
  products_.Assign(catalogue_->ReadProducts());
  SetDlgItemTextW(window_, IDC_SEARCH, ToWide(command_line_.search).c_str());
  ShowOrder();
  ShowRows(std::nullopt);
  SetFocus(Control(IDC_SEARCH));
  Say("Sessão iniciada: " + outcome->user + ", " + Count(products_.total(), "produto.", "produtos."));
  return true;
}

void MainWindow::RunActions() {
  for (const Action& action : command_line_.actions) {
    if (action.kind == Action::Kind::kNew) {
      New();
    } else {
      OpenByText(action.product);
    }
  }
}

void MainWindow::Close() {
  for (const HWND form : ProductWindows(window_)) SendMessageW(form, WM_CLOSE, 0, 0);
  const std::size_t open = ProductWindows(window_).size();
  if (open > 0) {
    Say("O programa continua: " + Count(open, "produto ficou aberto.", "produtos ficaram abertos."));
    return;
  }
  if (window_ != nullptr) DestroyWindow(window_);
}

void MainWindow::OpenSelected() {
  const std::optional<std::int32_t> selected = SelectedProduct();
  if (!selected) {
    Say("Escolha primeiro um produto da lista.");
    return;
  }
  Open(products_[*products_.RowOf(*selected)]);
}

void MainWindow::Open(const Product& product) {
  if (!component_) return;
  const std::int32_t produto_id = product.produto_id;  // the list may be read again while the form opens
  const std::string what = NameOf(product) + " " + product.nome;
  try {
    const WaitCursor wait;
    products_may_differ_ = true;
    component_->OpenProduct(produto_id);
    // What went wrong in the component it has reported itself; the call does not tell.
    if (ProductWindows(window_).empty()) {
      Fail("O componente não mostrou " + what + ".");
    } else {
      Say("Aberto: " + what);
    }
  } catch (const ComError& error) {
    Fail("Não foi possível abrir " + what + ": " + error.what());
  }
}

void MainWindow::OpenByText(const std::string& code_or_id) {
  const Product* product = products_.Find(code_or_id);
  if (product == nullptr) {
    Fail("Não existe o produto " + code_or_id + ".");
    return;
  }
  if (const auto row = products_.RowOf(product->produto_id)) SelectRow(*row);
  Open(*product);
}

void MainWindow::New() {
  if (!component_) return;
  try {
    const WaitCursor wait;
    products_may_differ_ = true;
    const std::size_t before = ProductWindows(window_).size();
    component_->NewProduct();
    if (ProductWindows(window_).size() > before) {
      Say("Novo produto aberto.");
    } else {
      Fail("Não foi aberto um produto novo.");
    }
  } catch (const ComError& error) {
    Fail(std::string("Não foi possível criar um produto: ") + error.what());
  }
}

void MainWindow::CopyCode() {
  const std::optional<std::int32_t> selected = SelectedProduct();
  if (!selected || !OpenClipboard(window_)) return;
  const std::wstring code = ToWide(products_[*products_.RowOf(*selected)].codigo);
  EmptyClipboard();
  const std::size_t bytes = (code.size() + 1) * sizeof(wchar_t);
  if (const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, bytes)) {
    std::copy_n(code.c_str(), code.size() + 1, static_cast<wchar_t*>(GlobalLock(memory)));
    GlobalUnlock(memory);
    if (SetClipboardData(CF_UNICODETEXT, memory) == nullptr) GlobalFree(memory);
  }
  CloseClipboard();
  Say("Código copiado.");
}

void MainWindow::Refresh() {
  if (!catalogue_) return;
  const WaitCursor wait;
  const std::optional<std::int32_t> selected = SelectedProduct();
  products_.Assign(catalogue_->ReadProducts());
  products_may_differ_ = !ProductWindows(window_).empty();
  ShowRows(selected);
  Say("Lista actualizada.");
}

void MainWindow::RefreshQuietly() noexcept {
  if (!catalogue_ || !products_may_differ_) return;
  try {
    const std::optional<std::int32_t> selected = SelectedProduct();
    products_.Assign(catalogue_->ReadProducts());
    products_may_differ_ = !ProductWindows(window_).empty();
    ShowRows(selected);
  } catch (const std::exception& error) {
    Say(std::string("A lista não foi actualizada: ") + error.what());
  }
}

void MainWindow::MakeColumns() {
  const HWND list = Control(IDC_PRODUCTS);
  ListView_SetExtendedListViewStyle(list, LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER | LVS_EX_LABELTIP);
  for (int i = 0; i < static_cast<int>(kColumns.size()); ++i) {
    LVCOLUMNW column{};
    column.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_FMT | LVCF_SUBITEM;
    column.pszText = const_cast<wchar_t*>(kColumns[static_cast<std::size_t>(i)].title);
    column.cx = MulDiv(kColumns[static_cast<std::size_t>(i)].width, static_cast<int>(dpi_), 96);
    column.fmt = kColumns[static_cast<std::size_t>(i)].align;
    column.iSubItem = i;
    SendMessageW(list, LVM_INSERTCOLUMNW, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&column));
  }
}

// The search on top, the list over the whole width, the buttons below it; the status line looks after itself.
void MainWindow::Layout() {
  const HWND status = Control(IDC_STATUS);
  if (status == nullptr) return;
  SendMessageW(status, WM_SIZE, 0, 0);
  RECT client;
  RECT bar;
  GetClientRect(window_, &client);
  GetWindowRect(status, &bar);
  const int width = client.right;
  const int height = client.bottom - (bar.bottom - bar.top);
  const auto units = [this](int across, int down) {
    RECT rectangle{0, 0, across, down};
    MapDialogRect(window_, &rectangle);
    return SIZE{rectangle.right, rectangle.bottom};
  };
  const SIZE margin = units(7, 7);
  const SIZE gap = units(4, 6);
  const SIZE label = units(40, 8);
  const SIZE field = units(0, 13);
  const SIZE check = units(86, 11);
  const SIZE button = units(70, 15);
  const int list_top = margin.cy + field.cy + gap.cy;
  const int buttons_top = height - gap.cy - button.cy;
  const int check_left = width - margin.cx - check.cx;
  const int search_left = margin.cx + label.cx;

  HDWP moves = BeginDeferWindowPos(7);
  const auto move = [&](int id, int left, int top, int across, int down) {
    if (moves == nullptr) return;
    moves = DeferWindowPos(moves, Control(id), nullptr, left, top, std::max(across, 0), std::max(down, 0),
                           SWP_NOZORDER | SWP_NOACTIVATE);
  };
  move(IDC_SEARCH_LABEL, margin.cx, margin.cy + (field.cy - label.cy) / 2, label.cx, label.cy);
  move(IDC_SEARCH, search_left, margin.cy, check_left - 2 * gap.cx - search_left, field.cy);
  move(IDC_DELETED, check_left, margin.cy + (field.cy - check.cy) / 2, check.cx, check.cy);
  move(IDC_PRODUCTS, margin.cx, list_top, width - 2 * margin.cx, buttons_top - gap.cy - list_top);
  move(IDC_NEW, margin.cx, buttons_top, button.cx, button.cy);
  move(IDC_REFRESH, margin.cx + button.cx + gap.cx, buttons_top, button.cx, button.cy);
  move(IDOK, width - margin.cx - button.cx, buttons_top, button.cx, button.cy);
  if (moves != nullptr) EndDeferWindowPos(moves);

  const int session = units(130, 0).cx;
  const int count = units(80, 0).cx;
  const int edges[] = {std::max(width - session - count, 0), std::max(width - session, 0), -1};
  SendMessageW(status, SB_SETPARTS, 3, reinterpret_cast<LPARAM>(edges));
}

// Shows what the list holds now, with the selection on the same product, or else on the first row.
void MainWindow::ShowRows(std::optional<std::int32_t> selected) {
  const HWND list = Control(IDC_PRODUCTS);
  ListView_SetItemCountEx(list, static_cast<int>(products_.size()), LVSICF_NOSCROLL);
  std::optional<std::size_t> row;
  if (selected) row = products_.RowOf(*selected);
  if (products_.size() > 0) SelectRow(row.value_or(0));
  InvalidateRect(list, nullptr, FALSE);
  const std::string all = Count(products_.total(), "produto", "produtos");
  const std::string shown = products_.size() == products_.total()
                                ? all
                                : base::DecimalText(static_cast<long long>(products_.size())) + " de " + all;
  SendDlgItemMessageW(window_, IDC_STATUS, SB_SETTEXTW, 1, reinterpret_cast<LPARAM>(ToWide(shown).c_str()));
}

void MainWindow::ShowOrder() {
  const HWND header = ListView_GetHeader(Control(IDC_PRODUCTS));
  for (int i = 0; i < static_cast<int>(kColumns.size()); ++i) {
    HDITEMW item{};
    item.mask = HDI_FORMAT;
    SendMessageW(header, HDM_GETITEMW, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&item));
    item.fmt &= ~(HDF_SORTUP | HDF_SORTDOWN);
    if (i == static_cast<int>(products_.sorted_by())) item.fmt |= products_.descending() ? HDF_SORTDOWN : HDF_SORTUP;
    SendMessageW(header, HDM_SETITEMW, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&item));
  }
}

std::optional<std::int32_t> MainWindow::SelectedProduct() const {
  const int row = ListView_GetNextItem(Control(IDC_PRODUCTS), -1, LVNI_SELECTED);
  if (row < 0 || static_cast<std::size_t>(row) >= products_.size()) return std::nullopt;
  return products_[static_cast<std::size_t>(row)].produto_id;
}

void MainWindow::SelectRow(std::size_t row) {
  const HWND list = Control(IDC_PRODUCTS);
  ListView_SetItemState(list, static_cast<int>(row), LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
  ListView_EnsureVisible(list, static_cast<int>(row), FALSE);
}

void MainWindow::CellText(NMLVDISPINFOW& info) {
  if ((info.item.mask & LVIF_TEXT) == 0) return;
  const auto row = static_cast<std::size_t>(info.item.iItem);
  cell_.clear();
  if (row < products_.size()) {
    const Product& product = products_[row];
    switch (static_cast<ProductList::Column>(info.item.iSubItem)) {
      case ProductList::Column::kCodigo:
        cell_ = ToWide(NameOf(product));
        break;
      case ProductList::Column::kNome:
        cell_ = ToWide(product.nome);
        break;
      case ProductList::Column::kFamilia:
        cell_ = ToWide(product.familia);
        break;
      case ProductList::Column::kPreco:
        if (product.preco) cell_ = PriceText(*product.preco);
        break;
    }
  }
  info.item.pszText = cell_.data();
}

// Deleted products are grey. The selected row keeps its colour while the user types in the search field.
LRESULT MainWindow::RowColours(NMLVCUSTOMDRAW& draw) const {
  if (draw.nmcd.dwDrawStage == CDDS_PREPAINT) return CDRF_NOTIFYITEMDRAW;
  const auto row = static_cast<std::size_t>(draw.nmcd.dwItemSpec);
  if (draw.nmcd.dwDrawStage != CDDS_ITEMPREPAINT || row >= products_.size()) return CDRF_DODEFAULT;
  const HWND list = Control(IDC_PRODUCTS);
  if (products_[row].is_deleted) draw.clrText = GetSysColor(COLOR_GRAYTEXT);
  if (GetFocus() != list && ListView_GetItemState(list, static_cast<int>(row), LVIS_SELECTED) != 0) {
    draw.nmcd.uItemState &= ~static_cast<UINT>(CDIS_SELECTED);
    draw.clrText = GetSysColor(COLOR_HIGHLIGHTTEXT);
    draw.clrTextBk = GetSysColor(COLOR_HIGHLIGHT);
  }
  return CDRF_DODEFAULT;
}

void MainWindow::ShowRowMenu(POINT where) {
  if (!SelectedProduct()) return;
  if (where.x == -1 && where.y == -1) {  // from the keyboard: beside the selected row
    const HWND list = Control(IDC_PRODUCTS);
    RECT row{};
    ListView_GetItemRect(list, ListView_GetNextItem(list, -1, LVNI_SELECTED), &row, LVIR_LABEL);
    where = {row.left, row.bottom};
    ClientToScreen(list, &where);
  }
  const HMENU menus = LoadMenuW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDR_ROW_MENU));
  SetMenuDefaultItem(GetSubMenu(menus, 0), IDM_OPEN, FALSE);
  TrackPopupMenu(GetSubMenu(menus, 0), TPM_LEFTALIGN, where.x, where.y, 0, window_, nullptr);
  DestroyMenu(menus);
}

void MainWindow::Say(const std::string& text) {
  if (window_ != nullptr) {
    SendDlgItemMessageW(window_, IDC_STATUS, SB_SETTEXTW, 0, reinterpret_cast<LPARAM>(ToWide(text).c_str()));
  }
  if (command_line_.log_file.empty()) return;
  std::ofstream log(std::filesystem::path(ToWide(command_line_.log_file)), std::ios::binary | std::ios::app);
  log << text << '\n';
}

void MainWindow::Fail(const std::string& text) {
  exit_code_ = 1;
  Say(text);
}

LRESULT CALLBACK MainWindow::SearchProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam, UINT_PTR id,
                                             DWORD_PTR self) noexcept {
  // Up and down walk through the list while the user goes on typing.
  if (message == WM_KEYDOWN && (wparam == VK_DOWN || wparam == VK_UP || wparam == VK_NEXT || wparam == VK_PRIOR)) {
    return SendMessageW(reinterpret_cast<MainWindow*>(self)->Control(IDC_PRODUCTS), message, wparam, lparam);
  }
  if (message == WM_NCDESTROY) RemoveWindowSubclass(window, &MainWindow::SearchProcedure, id);
  return DefSubclassProc(window, message, wparam, lparam);
}

}  // namespace quenta::sandbox::host
