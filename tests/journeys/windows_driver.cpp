// The driver in real windows: the registered library through COM, as a host uses it. What it sent is read from
// support's log, in which the sandbox's reports stand too; what it wrote, through a connection of the driver's own.
#include <windows.h>

#include <dlgs.h>
#include <objbase.h>

#include <algorithm>
#include <fstream>
#include <set>
#include <sstream>
#include <stdexcept>

#include "base/convert.h"
#include "base/text.h"
#include "component/session/scrambler.h"
#include "component/session/session.h"
#include "generator/frm_gerar.h"
#include "journeys/driver.h"
#include "journeys/windows_screen.h"
#include "platform/ado/ado_database.h"
#include "platform/automation/dispatch.h"
#include "platform/automation/variant.h"
#include "platform/automation/variant_value.h"
#include "platform/win32/files.h"
#include "platform/win32/wide_text.h"
#include "product/product_forms.h"
#include "support/fake_ports.h"
#include "support/rich_text_reader.h"

namespace quenta::journeys {
namespace {

namespace fs = std::filesystem;
using platform::Variant;
using platform::Wide;

constexpr wchar_t kSettingsKey[] = L"SOFTWARE\\Ambrell\\Contabilidade";
constexpr const char* kSource = "QuentaAmostra";
constexpr const char* kConnection =
    "Provider=SQLOLEDB.1;User ID=suite;Password=Suite-2026;Initial Catalog=Amostra;Data Source=QuentaAmostra";
constexpr const char* kTemp = "C:\\Temp";
constexpr const char* kOpened = "C:\\opened";  // what opens documents here keeps a copy of them
constexpr const char* kTemplates = "C:\\Modelos";
constexpr const char* kAllTables =
    "tbContadores, tbProdutos, tbProdutos_Precos, tbProdutos_Stocks, tbProdutos_Stocks_Minimos";
constexpr const char* kSystemModal = ", system-modal";
constexpr const char* kCannotBeShown = "cannot be shown";
constexpr struct {
  const char* answer;
  int button;
} kButtons[] = {{"ok", IDOK}, {"yes", IDYES}, {"no", IDNO}, {"cancel", IDCANCEL}};

std::wstring Environment(const wchar_t* name) {
  wchar_t text[MAX_PATH] = L"";
  GetEnvironmentVariableW(name, text, MAX_PATH);
  return text;
}

// A value of the suite's settings as long as this lives: another one, or none.
class Setting {
 public:
  Setting(const std::string& name, const std::optional<std::wstring>& text) : name_(Wide(name)) {
    DWORD size = sizeof before_;
    if (RegGetValueW(HKEY_LOCAL_MACHINE, kSettingsKey, name_.c_str(), RRF_RT_REG_SZ, nullptr, before_, &size) != 0) {
      before_[0] = L'\0';
    }
    Set(text);
  }
  ~Setting() { Set(before_[0] != L'\0' ? std::optional<std::wstring>(before_) : std::nullopt); }
  Setting(const Setting&) = delete;
  Setting& operator=(const Setting&) = delete;

 private:
  void Set(const std::optional<std::wstring>& text) {
    if (!text) {
      RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, kSettingsKey, name_.c_str());
    } else {
      RegSetKeyValueW(HKEY_LOCAL_MACHINE, kSettingsKey, name_.c_str(), REG_SZ, text->c_str(),
                      static_cast<DWORD>((text->size() + 1) * sizeof(wchar_t)));
    }
  }

  std::wstring name_;
  wchar_t before_[MAX_PATH] = L"";
};

// --- What windows do not show ---

bool IsUnseen(const std::string& subject, const std::string& name) {
  static const std::set<std::string> kInside = {"tag", "hidden", "order", "marked", "pointer"};
  const std::string control = subject.substr(subject.find('.') + 1);  // the whole where there is no point
  if (name == "chosen") return !control.starts_with("TabStrip");      // a list's choice shows in the fields
  const bool goes_with_others =
      control.starts_with("Frame") || control.starts_with("Label") || control.ends_with("_Label");
  return kInside.contains(name) || (name == "visible" && goes_with_others);
}

// "name=value" and other words; blanks inside quotes divide nothing.
std::vector<std::string> Parts(const std::string& line) {
  std::vector<std::string> parts(1);
  bool quoted = false;
  for (std::size_t i = 0; i < line.size(); ++i) {
    if (line[i] == '"' && (i == 0 || line[i - 1] != '\\')) quoted = !quoted;
    if (line[i] == ' ' && !quoted) {
      parts.emplace_back();
    } else {
      parts.back() += line[i];
    }
  }
  return parts;
}

// What remains of a line of a control. Rows have no keys in a window: what they show stands without, once for each.
std::vector<std::string> SeenOfControl(const std::string& line) {
  const bool came = line.starts_with("+ ");
  if (line.starts_with("- ") || line.starts_with("entries of ")) return {};
  const std::vector<std::string> parts = Parts(came ? line.substr(2) : line);
  std::string values;
  std::string row;
  std::size_t keys = 0;
  for (std::size_t i = 1; i < parts.size(); ++i) {
    const std::size_t sign = parts[i].find('=');
    if (sign == std::string::npos) {
      ++keys;
    } else if (parts[i].starts_with("row=")) {
      row = " " + parts[i];
    } else if (!IsUnseen(parts[0], parts[i].substr(0, sign))) {
      values += " " + parts[i];
    }
  }
  if (keys > 0)
    return std::vector<std::string>(row.empty() && values.empty() ? 0 : keys, parts[0] + (row.empty() ? values : row));
  if (values.empty() && !came) return {};
  return {(came ? "+ " : "") + parts[0] + values};
}

std::vector<std::string> SeenOf(const std::string& line) {
  static const std::set<std::string> kWhole = {"SELECT", "INSERT",   "UPDATE",  "DELETE", "BEGIN",  "COMMIT",
                                               "CLOSE",  "ROLLBACK", "CONNECT", "box",    "report", "shown",
                                               "closed", "focus",    "topmost", "not",    "menu",   ""};
  static const std::set<std::string> kUnseen = {"to", "clipboard", "open", "save"};
  if (line.starts_with("~ ")) return {line};
  const auto [word, rest] = FirstWord(line);
  if (word == "box") {
    if (line.ends_with(kCannotBeShown)) return {};
    // A box over a form that is on top is on top with it.
    return {line.find(" topmost") == std::string::npos ? line : base::ReplaceAll(line, kSystemModal, "")};
  }
  if (word == "reconnect") {
    if (rest == "released") return {};
    return {line.substr(0, line.find(" over "))};
  }
  if (kUnseen.contains(word)) return {};
  if (kWhole.contains(word)) return {line};
  const std::string subject = line.starts_with("+ ") || line.starts_with("- ") ? line.substr(2) : line;
  if (subject.starts_with("tb") || subject.starts_with("file ")) return {line};
  return SeenOfControl(line);
}

// --- The driver ---

class WindowsDriver final : public Driver {
 public:
  WindowsDriver() {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    const std::wstring database = Environment(L"QUENTA_SANDBOX_DATABASE");
    for (const wchar_t* const part : {L"-wal", L"-shm"}) DeleteFileW((database + part).c_str());
    if (!CopyFileW((database + L".fresh").c_str(), database.c_str(), FALSE)) {
      throw std::runtime_error("the catalogue is still in use");
    }
    DeleteFileW(log_.c_str());
    settings_["StatementLog"] = std::make_unique<Setting>("StatementLog", log_);
    for (const char* const name : {"Armazem", "Templates"}) {
      settings_[name] = std::make_unique<Setting>(name, std::nullopt);
    }
    SetEnvironmentVariableW(L"TMP", Wide(kTemp).c_str());
    for (const char* const folder : {kTemp, kOpened, kTemplates}) {
      fs::create_directory(folder);
      for (const fs::directory_entry& file : fs::directory_iterator(folder)) fs::remove(file.path());
    }
    other_ = ado_.CreateConnection();
    other_->SetConnectionString(kConnection);
    other_->Open();
    static const std::map<std::string, Facts> kCatalogue = [this] {  // every journey begins with the same rows
      std::map<std::string, Facts> rows;
      ReadRows(*other_, TablesWritten(kAllTables), rows);
      return rows;
    }();
    rows_ = kCatalogue;
  }
  ~WindowsDriver() override {
    while (!screen_.Forms().empty()) {
      DestroyWindow(screen_.Forms().back().second);  // without asking, as a host may do it
      screen_.Pump();
    }
    general_ = {};
    other_.reset();
    screen_.Pump();
    CoUninitialize();
  }

  void Do(const Step& step) override {
    if (step.verb == "answer") {
      screen_.refuses_boxes = answers_.empty() && step.rest == kCannotBeShown;
      return answers_.push_back(step);
    }
    if (step.verb != "other") ReadRows(*other_, std::exchange(others_wrote_, {}), rows_);
    const auto verb = verbs_.find(step.verb);
    if (verb == verbs_.end()) throw std::runtime_error("no step in windows is called " + step.verb);
    verb->second(Unquoted(step.rest));
    screen_.Pump();
  }

  std::string UnusedAnswers() override {
    std::string unused;
    // Nobody is asked for an answer to a box that does not come.
    for (const Step& answer : std::exchange(answers_, {})) {
      if (answer.rest != kCannotBeShown || screen_.refuses_boxes) unused += " " + answer.rest;
    }
    for (const std::string& entry : std::exchange(screen_.answers, {})) unused += " " + entry;
    return unused;
  }

  std::vector<Seen> Observe() override {
    ReadLog();
    std::vector<Seen> seen = std::exchange(events_, {});
    std::map<std::string, Facts> forms;
    std::map<std::string, std::vector<ShownRow>> lists;
    for (const auto& [name, window] : screen_.Forms()) {
      forms[name] = WindowsScreen::FactsOf(window, name);
      const auto before = forms_.find(name);
      AppendChanges(before != forms_.end() ? before->second : DesignOf(window, name), forms[name], Kind::kControl,
                    seen);
      for (auto& [list, rows] : WindowsScreen::RowsOf(window, name)) {
        AppendRows(list, lists_[list], rows, seen);
        lists[list] = std::move(rows);
      }
    }
    forms_ = std::move(forms);
    lists_ = std::move(lists);
    Facts before;
    Facts after;
    for (const std::string& table : wrote_) std::ranges::copy(rows_[table], std::back_inserter(before));
    ReadRows(*other_, wrote_, rows_);
    for (const std::string& table : wrote_) std::ranges::copy(rows_[table], std::back_inserter(after));
    AppendChanges(before, after, Kind::kRow, seen);
    wrote_.clear();
    Facts files;
    for (const fs::directory_entry& file : fs::directory_iterator(kTemp)) {
      if (file.path().extension() != ".doc") continue;
      std::string text = Opened(file.path());
      if (text.starts_with("{\\rtf")) text = tests::ReadRichText(text).text;
      files.push_back({"file " + file.path().string(), {{"text", Shown(text)}}});
    }
    AppendChanges(files_, files, Kind::kRow, seen);
    files_ = std::move(files);
    return seen;
  }

  // Controls stand in whatever order the windows were made.
  void LookAway(Section& section, std::vector<Seen>& happened) override {
    std::vector<Expected> expected;
    for (const Expected& line : section.expected) {
      for (const std::string& text : SeenOf(line.text)) expected.push_back({text, line.line, line.include});
    }
    section.expected = std::move(expected);
    std::vector<Seen> seen;
    for (const Seen& line : happened) {
      if (line.kind != Kind::kControl) {
        seen.push_back(line);
        continue;
      }
      for (const std::string& text : SeenOfControl(line.text)) seen.push_back({line.kind, text});
    }
    const auto place = [&](const Seen& line) {
      return std::find_if(section.expected.begin(), section.expected.end(),
                          [&](const Expected& one) { return one.text == line.text; });
    };
    const auto is_control = [](const Seen& line) { return line.kind == Kind::kControl; };
    const auto first = std::find_if(seen.begin(), seen.end(), is_control);
    std::stable_sort(first, std::find_if_not(first, seen.end(), is_control),
                     [&](const Seen& a, const Seen& b) { return place(a) < place(b); });
    // A form that closes gives the keyboard to the one below before it goes, and that may ask the database first.
    std::ranges::stable_partition(seen, [](const Seen& line) { return !line.text.starts_with("closed "); });
    std::ranges::stable_partition(section.expected, [](const Expected& e) { return !e.text.starts_with("closed "); });
    happened = std::move(seen);
  }

 private:
  static std::string Unquoted(const std::string& rest) {
    const bool quoted = rest.size() > 1 && rest.front() == '"' && rest.back() == '"';
    return Unescaped(quoted ? rest.substr(1, rest.size() - 2) : rest);
  }

  // What a form shows before anything is in it, by its model.
  static Facts DesignOf(HWND window, const std::string& name) {
    if (NameOf(window) != "frmMain") return {{name, {}}};
    static tests::FakeSettings settings;
    static tests::FakeDesktop desktop;
    static tests::FakeErrorReporting reporting;
    static platform::AdoDatabase database;
    static tests::FakeFormHost host;
    static session::Session session{{database, settings, desktop, reporting}};
    static product::ProductForms forms{session, host, &generator::MakeGenerator};
    static const auto design = std::static_pointer_cast<product::frmMain>(forms.Create());
    Facts facts;
    for (Fact& fact : journeys::FactsOf(*design, name)) {
      if (fact.subject.find(' ') != std::string::npos) continue;
      std::erase_if(fact.values, [&](const auto& value) { return IsUnseen(fact.subject, value.first); });
      facts.push_back(std::move(fact));
    }
    return facts;
  }

  // A document, once the program that the machine has for it was given it as it is now.
  std::string Opened(const fs::path& document) {
    const auto bytes = [](const fs::path& path) {
      std::ifstream file(path, std::ios::binary);
      return std::string(std::istreambuf_iterator<char>(file), {});
    };
    const std::string written = bytes(document);
    for (int i = 0; i < 100; ++i) {
      if (bytes(kOpened / document.filename()) == written) return written;
      screen_.Pump(50);
    }
    return "(not opened) " + written;
  }

  // Rows that a list shows now and did not before; of others, that the box is checked or the picture another one.
  static void AppendRows(const std::string& list, std::vector<ShownRow> before, const std::vector<ShownRow>& after,
                         std::vector<Seen>& seen) {
    for (const ShownRow& row : after) {
      const auto same =
          std::find_if(before.begin(), before.end(), [&](const ShownRow& one) { return one.text == row.text; });
      std::string line = " row=" + Shown(row.text);
      if (same != before.end()) {
        line = same->icon != row.icon ? " icon=" + std::to_string(row.icon) : "";
        if (same->checked != row.checked) line += row.checked ? " checked=yes" : " checked=no";
        before.erase(same);
      }
      if (!line.empty()) seen.push_back({Kind::kControl, list + " #" + line});
    }
  }

  // --- What happened ---

  void Tell(const std::string& event) {
    ReadLog();
    // Wine may have to be told twice that a window is on top.
    if (!events_.empty() && events_.back().text == event) return;
    events_.push_back({Kind::kEvent, event});
  }

  void ReadLog() {
    std::ifstream file(std::filesystem::path(log_), std::ios::binary);
    file.seekg(log_read_);
    for (std::string line; std::getline(file, line);) {
      log_read_ += static_cast<std::streamoff>(line.size()) + 1;
      if (line.ends_with('\r')) line.pop_back();
      std::vector<std::string> cells;
      std::istringstream text(line);
      for (std::string cell; std::getline(text, cell, '\t');) cells.push_back(cell);
      if (line.starts_with("20")) {
        TakeStatement(cells);
      } else {
        TakeReport(cells);
      }
    }
  }

  void TakeStatement(const std::vector<std::string>& cells) {
    std::string text = cells.at(3);
    for (const auto& [sign, written] : {std::pair("\r", "\\r"), {"\n", "\\n"}, {"\t", "\\t"}}) {
      text = base::ReplaceAll(text, written, sign);
    }
    wrote_.merge(TablesWritten(text));
    if (text.starts_with("OPEN ")) text = "CONNECT " + base::ReplaceAll(text.substr(5), kSource, "{primary}");
    events_.push_back({Kind::kStatement, text.starts_with("CONNECT ") ? text : Escaped(text)});
    const std::string& outcome = cells.at(2);
    if (outcome.starts_with("error ")) {
      events_.push_back({Kind::kStatement, "  failed: " + outcome.substr(outcome.find(": ") + 2)});
    }
  }

  void TakeReport(const std::vector<std::string>& cells) {
    static const std::map<std::string, std::string> kReconnects = {{"SQLReconnectShow", "show"},
                                                                   {"SQLReconnectShutdown", "shutdown"},
                                                                   {"SQLReconnectShowBad", "bad"},
                                                                   {"SQLReconnectShowOK", "ok"}};
    std::string event = "report ";
    if (cells.at(0) == "Report") {
      for (std::size_t i = 1; i < cells.size(); ++i) event += (i > 1 ? " | " : "") + cells[i];
    } else {
      event = "reconnect " + kReconnects.at(cells.at(0));
    }
    events_.push_back({Kind::kEvent, event});
  }

  // A message box as the user sees it, and his answer.
  void Answer(HWND box) {
    ReadLog();
    if (GetDlgItem(box, cmb1) != nullptr) return AnswerFileDialog(box);
    std::string text;
    std::string icon = "no icon";
    for (HWND child = GetWindow(box, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
      if (ClassOf(child) != "Static") continue;
      if ((GetWindowLongW(child, GWL_STYLE) & SS_TYPEMASK) != SS_ICON) {
        text += TextOf(child);
        continue;
      }
      const auto shown = reinterpret_cast<HICON>(SendMessageW(child, STM_GETICON, 0, 0));
      if (shown == LoadIconW(nullptr, IDI_INFORMATION)) icon = "information";
      if (shown == LoadIconW(nullptr, IDI_QUESTION)) icon = "question";
      if (shown == LoadIconW(nullptr, IDI_ERROR)) icon = "critical";
    }
    std::string buttons;
    for (const auto& [answer, button] : kButtons) {
      if (GetDlgItem(box, button) != nullptr) buttons += (buttons.empty() ? "" : "/") + std::string(answer);
    }
    const bool only_ok = buttons == "ok";
    if (GetFocus() != GetDlgItem(box, only_ok ? IDOK : IDYES)) buttons += ", not the first is chosen";
    Step given{.verb = "answer", .rest = only_ok ? "ok" : "nobody answered"};
    if (!only_ok && !answers_.empty()) {
      given = answers_.front();
      answers_.pop_front();
    }
    const HWND owner = GetWindow(box, GW_OWNER);
    std::string out_of_reach;
    for (const auto& [name, form] : screen_.Forms()) {
      if (form != owner && !IsWindowEnabled(form)) out_of_reach += ", " + name + " disabled";
    }
    const auto on_top = [](HWND window) { return (GetWindowLongW(window, GWL_EXSTYLE) & WS_EX_TOPMOST) != 0; };
    events_.push_back({Kind::kEvent, "box \"" + Escaped(TextOf(box)) + "\" " + icon + ", " + buttons +
                                         (on_top(box) && !on_top(owner) ? kSystemModal : "") + ", over " +
                                         screen_.NameOfForm(owner) + (on_top(owner) ? " topmost" : "") + out_of_reach +
                                         ": \"" + Escaped(text) + "\" -> " + given.rest});
    try {
      for (const Step& step : given.inside) Do(step);
    } catch (const std::exception& error) {
      Tell(error.what());
    }
    int button = only_ok ? IDOK : GetDlgItem(box, IDCANCEL) != nullptr ? IDCANCEL : IDNO;
    for (const auto& [answer, its_button] : kButtons) {
      if (answer == given.rest) button = its_button;
    }
    PostMessageW(GetDlgItem(box, button), BM_CLICK, 0, 0);
  }

  void AnswerFileDialog(HWND dialog) {
    const std::string given = answers_.empty() ? "cancel" : answers_.front().rest;
    if (!answers_.empty()) answers_.pop_front();
    SetDlgItemTextW(dialog, GetDlgItem(dialog, cmb13) != nullptr ? cmb13 : edt1, Wide(given).c_str());
    PostMessageW(dialog, WM_COMMAND, given == "cancel" ? IDCANCEL : IDOK, 0);
  }

  // --- The steps ---

  IDispatch& General() {
    if (!general_) general_ = platform::CreateObject(L"Quenta_Produtos.General");
    return *general_.Get();
  }
  void LogIn(const std::string& user) {
    const Variant name{std::string_view(user)};
    const Variant password{std::string_view(session::Scramble(user + "-senha"))};
    const Variant shared_user{std::string_view("suite")};
    const Variant shared_password{std::string_view(session::Scramble("Suite-2026"))};
    const Variant catalogue{std::string_view("Amostra")};
    const Variant source{std::string_view(kSource)};
    const Variant flags(0);
    const Variant done =
        platform::CallMethod(General(), L"SQLConnect",
                             {&name, &password, &shared_user, &shared_password, &catalogue, &source, &source, &flags});
    if (!base::ToBoolean(platform::ToValue(done.Get()), {})) throw std::runtime_error(user + " is refused");
    ReadLog();
    events_.clear();
  }
  void Open(const Variant& key) {
    const Variant nothing(static_cast<IDispatch*>(nullptr));
    const Variant table{std::string_view("tbProdutos")};
    const Variant where{std::string_view("")};
    const Variant zero(0);
    platform::CallMethod(General(), L"ObjectOpen", {&nothing, &key, &table, &where, &nothing, &zero, &nothing, &zero});
  }
  void New() {
    const Variant nothing(static_cast<IDispatch*>(nullptr));
    const Variant text{std::string_view("")};
    const Variant zero(0);
    platform::CallMethod(General(), L"ObjectNew", {&nothing, &text, &text, &nothing, &zero, &nothing, &zero});
  }
  std::int32_t IdOf(const std::string& code) {
    const ports::RowSet rows =
        other_->Query("SELECT produto_id FROM tbProdutos WHERE (is_deleted = 0 OR is_deleted IS NULL) AND codigo = '" +
                      base::ReplaceAll(code, "'", "''") + "' ORDER BY produto_id");
    if (rows.empty()) throw std::runtime_error("no product has the code " + code);
    return base::ToLong(rows.front().At(0), {});
  }
  // Writes a template of reports and labels: the one that is shipped under this name where no text is given.
  void WriteTemplate(const std::string& name, const std::string& text) {
    Set("Templates", kTemplates);
    const fs::path path = fs::path(kTemplates) / name;
    if (text.empty()) {
      fs::copy_file(fs::path(QUENTA_TEMPLATES) / name, path, fs::copy_options::overwrite_existing);
    } else {
      std::ofstream(path, std::ios::binary) << text;
    }
  }
  void Look(const std::string& subject) {
    for (const auto& [name, window] : screen_.Forms()) {
      for (const Fact& fact : WindowsScreen::FactsOf(window, name)) {
        if (fact.subject == subject) AppendChanges({}, {fact}, Kind::kEvent, events_);
      }
    }
  }
  void Split(const std::string& text, void (WindowsScreen::*act)(const std::string&, const std::string&)) {
    const auto [control, rest] = FirstWord(text);
    (screen_.*act)(control, Unquoted(rest));
  }
  void Set(const std::string& name, const std::string& text) {
    settings_.erase(name);
    settings_[name] = std::make_unique<Setting>(name, Wide(text));
  }

  using Text = const std::string&;
  const std::map<std::string, std::function<void(Text)>> verbs_ = {
      {"as", [this](Text user) { LogIn(user); }},
      {"open", [this](Text code) { Open(Variant(IdOf(code))); }},
      {"open-id", [this](Text id) { Open(Variant(std::string_view(id))); }},
      {"new", [this](Text) { New(); }},
      {"release", [this](Text) { general_ = {}; }},
      {"focus", [this](Text control) { screen_.FocusOn(control); }},
      {"type", [this](Text text) { Split(text, &WindowsScreen::Type); }},
      {"key", [this](Text key) { screen_.Key(key); }},
      {"choose", [this](Text text) { Split(text, &WindowsScreen::Choose); }},
      {"click", [this](Text text) { Split(text, &WindowsScreen::Click); }},
      {"menu", [this](Text name) { screen_.ClickMenu(name); }},
      {"tab", [this](Text key) { screen_.ClickTab(key); }},
      {"row", [this](Text text) { screen_.ClickRow(FirstWord(text).first, FirstWord(text).second, false); }},
      {"double-click", [this](Text text) { screen_.ClickRow(FirstWord(text).first, FirstWord(text).second, true); }},
      {"context-menu", [this](Text list) { screen_.OpenMenu(list); }},
      {"header",
       [this](Text text) { screen_.ClickHeader(FirstWord(text).first, std::atoi(FirstWord(text).second.c_str())); }},
      {"pick", [this](Text text) { Split(text, &WindowsScreen::Pick); }},
      {"close", [this](Text) { screen_.CloseBox(); }},
      {"to-front", [this](Text form) { screen_.BringToFront(form); }},
      {"wait", [this](Text) { screen_.Pump(400); }},
      {"natively", [](Text) { throw EndsHere(); }},
      {"lose", [this](Text form) { screen_.Lose(form); }},
      {"look", [this](Text subject) { Look(subject); }},
      {"pick-entry", [this](Text entry) { screen_.answers.push_back(entry); }},
      {"other",
       [this](Text sql) {
         other_->Execute(sql);
         others_wrote_.merge(TablesWritten(sql));
       }},
      {"template", [this](Text text) { WriteTemplate(FirstWord(text).first, FirstWord(text).second); }},
      {"setting", [this](Text text) { Set(FirstWord(text).first, FirstWord(text).second); }},
  };

  std::vector<Seen> events_;
  std::set<std::string> wrote_;  // tables
  std::set<std::string> others_wrote_;
  std::deque<Step> answers_;
  const std::wstring log_ = Environment(L"QUENTA_SANDBOX_REPORTS");
  std::streamoff log_read_ = 0;

  std::map<std::string, std::unique_ptr<Setting>> settings_;
  platform::AdoDatabase ado_;
  std::unique_ptr<ports::Connection> other_;
  platform::ComPtr<IDispatch> general_;
  WindowsScreen screen_{[this](const std::string& event) { Tell(event); }, [this](HWND box) { Answer(box); }};

  std::map<std::string, Facts> forms_;  // as they were last seen
  std::map<std::string, std::vector<ShownRow>> lists_;
  std::map<std::string, Facts> rows_;  // by table
  Facts files_;
};

}  // namespace

std::unique_ptr<Driver> MakeDriver() {
  return std::make_unique<WindowsDriver>();
}

bool DriverTakes(const std::filesystem::path& journey) {
  std::ifstream file(journey);
  for (std::string line; std::getline(file, line);) {
    if (line == kInWindows) return true;
  }
  return false;
}

}  // namespace quenta::journeys
