// The driver on the models: the component as the library builds it, with everything outside seen or made to fail.
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <deque>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <set>
#include <stdexcept>
#include <system_error>

#include "base/convert.h"
#include "base/error.h"
#include "base/text.h"
#include "component/component.h"
#include "component/general.h"
#include "component/session/connection_keeper.h"
#include "component/session/scrambler.h"
#include "component/session/statement_log.h"
#include "generator/frm_gerar.h"
#include "journeys/driver.h"
#include "journeys/screen.h"
#include "journeys/servers.h"
#include "product/product_forms.h"
#include "sandbox/odbc/odbc_database.h"
#include "sandbox/odbc/odbc_link.h"
#include "support/fake_ports.h"
#include "support/recording_database.h"
#include "support/rich_text_reader.h"
#include "support/sample_component.h"

namespace quenta::journeys {
namespace {

using ports::Answer;

constexpr const char* kNow = "2026-11-21 12:34:56";
constexpr const char* kSuiteKey = R"(SOFTWARE\Ambrell\)";
constexpr const char* kSettingsKey = R"(SOFTWARE\Ambrell\Contabilidade:)";
constexpr const char* kAllTables =
    "tbContadores, tbProdutos, tbProdutos_Precos, tbProdutos_Stocks, tbProdutos_Stocks_Minimos";
constexpr const char* kTemplates = R"(C:\Modelos)";
constexpr const char* kShadowFile = R"(C:\ProgramData\Torvik Software\RegShadow.db)";

const std::map<std::string, Answer> kAnswers = {
    {"ok", Answer::kOk}, {"yes", Answer::kYes}, {"no", Answer::kNo}, {"cancel", Answer::kCancel}};
constexpr const char* kCannotBeShown = "cannot be shown";
constexpr const char* kIcons[] = {"no icon", "information", "question", "critical"};
constexpr const char* kButtons[] = {"ok", "yes/no", "yes/no/cancel"};

std::string Quoted(const std::string& text) {
  return '"' + Escaped(text) + '"';
}

class NativeDriver final : public FaultyDriver,
                           private session::WorkingForm,
                           private ports::Desktop,
                           private ports::ErrorReporting,
                           private session::CallListener {
 public:
  NativeDriver() : sample_(tests::CopySample()) {
    // Only now: the catalogue's own rows are older.
    setenv("QUENTA_NOW", kNow, 1);
    desktop_.pump_time = std::chrono::milliseconds(1);
    other_->SetConnectionString(tests::SampleConnectionString(sample_));
    other_->Open();
    static const std::map<std::string, Facts> kCatalogue = [this] {  // every journey begins with the same rows
      std::map<std::string, Facts> rows;
      ReadRows(*other_, TablesWritten(kAllTables), rows);
      return rows;
    }();
    for (const auto& [name, value] : {std::pair("Shared\\OUT:DataServer", std::string("Contabilidade")),
                                      {"Contabilidade:dtSecurityInfo", "False"},
                                      {"Contabilidade:dtUser", "suite"},
                                      {"Contabilidade:dtPassword", tests::SampleArguments(sample_, "").cnPassword},
                                      {"Contabilidade:dtInitialCatalog", "Amostra"},
                                      {"Contabilidade:dtDataSource", sample_.source}}) {
      settings_.registry[std::string(kSuiteKey) + name] = value;
    }
    rows_ = kCatalogue;
  }
  ~NativeDriver() override {
    for (const auto& [name, form] : screen_.Forms()) Lose(name);
    screen_.EndStep();
    generals_.clear();
    session_.ReleaseConnection();
    other_.reset();
    std::error_code ignored;
    std::filesystem::remove_all(sample_.folder, ignored);
  }

  void Do(const Step& step) override {
    if (step.verb == "answer") return answers_.push_back(step);
    if (step.verb == "turn") {
      turns_[std::stoi(step.rest)] = step;
      return;
    }
    if (step.verb == "before") {
      before_ = step;
      return;
    }
    // What others write is nothing to be seen; read again once, behind the last of them.
    if (step.verb != "other") ReadRows(*other_, std::exchange(others_wrote_, {}), rows_);
    const auto verb = verbs_.find(step.verb);
    if (verb == verbs_.end()) throw std::runtime_error("no step is called " + step.verb);
    verb->second(Unquoted(step.rest));
  }

  std::string UnusedAnswers() override {
    std::string unused;
    for (const Step& answer : std::exchange(answers_, {})) unused += " " + answer.rest;
    for (const std::string& entry : std::exchange(screen_.answers, {})) unused += " " + entry;
    for (const auto& [number, turn] : std::exchange(turns_, {})) unused += " turn " + std::to_string(number);
    for (const std::string& what : std::exchange(refused_, {})) unused += " refuse " + what;
    if (!before_.rest.empty()) unused += " before " + std::exchange(before_, {}).rest;
    return unused;
  }

  std::vector<Seen> Observe() override {
    screen_.EndStep();
    TellWait();
    std::vector<Seen> seen = std::exchange(events_, {});
    std::map<std::string, Facts> forms;
    for (const auto& [name, form] : screen_.Forms()) {
      forms[name] = FactsOf(*form, name);
      const auto before = forms_.find(name);
      AppendChanges(before != forms_.end() ? before->second : DesignOf(*form, name), forms[name], Kind::kControl, seen);
    }
    forms_ = std::move(forms);
    Facts before;
    Facts after;
    for (const std::string& table : wrote_) std::ranges::copy(rows_[table], std::back_inserter(before));
    ReadRows(*other_, wrote_, rows_);
    for (const std::string& table : wrote_) std::ranges::copy(rows_[table], std::back_inserter(after));
    AppendChanges(before, after, Kind::kRow, seen);
    wrote_.clear();
    Facts files;
    for (const auto& [path, bytes] : settings_.files) {
      if (!path.starts_with(kTemplates)) files.push_back({"file " + path, {{"text", Shown(ContentsOf(bytes))}}});
    }
    AppendChanges(files_, files, Kind::kRow, seen);
    files_ = std::move(files);
    Facts session{SessionFact()};
    if (session_matters_) AppendChanges(session_facts_, session, Kind::kRow, seen);
    session_facts_ = std::move(session);
    return seen;
  }

  void CountCalls() override {
    plan_.every_call = true;
    for (tests::Fallible* const part :
         std::initializer_list<tests::Fallible*>{&settings_, &desktop_calls_, &reporting_calls_, &screen_.host}) {
      part->faults = &plan_;
    }
    observer_ = std::make_unique<sandbox::OdbcLink>();
    observer_->ConnectSource(sample_.source, "", "", 0);
    version_ = Version();
    known_rows_ = ReadLines();
  }
  tests::FaultPlan& plan() override { return plan_; }
  std::string CallAt(int position) const override {
    static const char* const kPorts[] = {"the connection", "an open",     "a query",      "a statement",
                                         "a setting",      "the desktop", "the reporter", "the form host"};
    const auto text = texts_.find(position);
    if (text != texts_.end()) return text->second;
    return kPorts[static_cast<int>(plan_.made.at(static_cast<std::size_t>(position)))];
  }
  std::vector<Seen> TakeEvents() override {
    screen_.EndStep();
    return std::exchange(events_, {});
  }
  std::vector<std::string> TakeLooseWrites() override { return std::exchange(loose_writes_, {}); }
  Facts Forms() override {
    Facts facts;
    for (const auto& [name, form] : screen_.Forms()) std::ranges::copy(FactsOf(*form, name), std::back_inserter(facts));
    return facts;
  }
  Rows CurrentRows() override {
    if (std::string version = Version(); version != version_) {
      version_ = std::move(version);
      known_rows_ = ReadLines();
    }
    return known_rows_;
  }
  bool FrontIsIncomplete() override {
    const auto* const form = Front();
    return form != nullptr && form->Label1.Describe().find("Prima F5") != std::string::npos;
  }
  std::string LeftOpen() override {
    bool open = session_.transaction_held;
    try {
      open = open || (!inside_ && session::InTransaction(session_));
    } catch (const base::Error&) {
      // The line is gone, and with it the transaction.
    }
    if (open) return "a transaction";
    if (product_forms_.Busy()) return "an operation";
    const auto forms = screen_.Forms();
    const bool reach = std::ranges::any_of(forms, [](const auto& form) { return form.second->enabled(); });
    return forms.empty() || reach ? "" : "no form that can be reached";
  }
  void SaveFront() override {
    Front()->PrecosAltered = true;
    Front()->Gravar();
  }

 private:
  void Tell(const std::string& event) {
    TellWait();
    events_.push_back({Kind::kEvent, event});
  }
  void TellStatement(const std::string& text) {
    TellWait();
    events_.push_back({Kind::kStatement, text});
  }
  // How long a line has been waited for since the last event.
  void TellWait() {
    if (const int seconds = std::exchange(waited_, 0); seconds > 0) Tell("waited " + std::to_string(seconds) + " s");
  }

  std::string Named(const std::string& text) const {
    return base::ReplaceAll(base::ReplaceAll(text, sample_.other_source(), "{secondary}"), sample_.source, "{primary}");
  }
  std::string Renamed(const std::string& text) const {
    return base::ReplaceAll(base::ReplaceAll(text, "{secondary}", sample_.other_source()), "{primary}", sample_.source);
  }

  // What is held scrambled is shown clear: what is not, is shown empty.
  Fact SessionFact() const {
    const session::SessionState& state = session_.state();
    const auto clear = [&](const std::string& scrambled) { return Shown(Named(session::Unscramble(scrambled))); };
    return {"session",
            {{"lines", std::to_string(servers_.open_lines)},
             {"timeout", std::to_string(servers_.timeout)},
             {"connected", state.connected ? "yes" : "no"},
             {"user", Shown(state.session_user)},
             {"password", clear(state.session_password)},
             {"application", Shown(state.application_key)},
             {"security", Shown(state.security_info)},
             {"database-user", Shown(state.database_user)},
             {"database-password", clear(state.database_password)},
             {"catalogue", Shown(state.initial_catalog)},
             {"primary", Shown(Named(state.primary_data_source))},
             {"secondary", Shown(Named(state.secondary_data_source))},
             {"on-secondary", state.on_secondary ? "yes" : "no"},
             {"primary-string", clear(state.primary_connection_string)},
             {"secondary-string", clear(state.secondary_connection_string)},
             {"shared-string", clear(session_.shared_connection_string)}}};
  }

  product::frmMain* Front() const {
    const auto forms = screen_.Forms();
    const bool is_product = !forms.empty() && forms.back().second->name() == "frmMain";
    return is_product ? static_cast<product::frmMain*>(forms.back().second.get()) : nullptr;
  }
  Rows ReadLines() {
    static std::map<std::string, std::string> queries;
    Rows rows;
    for (const std::string& table : TablesWritten(kAllTables)) {
      std::string& query = queries[table];
      if (query.empty()) {
        for (const auto& column : observer_->RunText("SELECT name FROM pragma_table_info('" + table + "')")) {
          if (column[0] != "data_modified")
            query += (query.empty() ? "" : " || ' ' || ") + ("quote(" + column[0] + ")");
        }
        query = "SELECT group_concat(line, char(10)) FROM (SELECT " + query + " AS line FROM " + table + ")";
      }
      rows[table] = observer_->RunText(query).front().front();
    }
    return rows;
  }
  // Changes with every commit of whatever connection.
  std::string Version() { return observer_->RunText("PRAGMA data_version").front().front(); }

  // What a form shows before anything is in it: only what differs is worth saying of a new one.
  Facts DesignOf(const controls::Form& form, const std::string& name) {
    if (form.name() != "frmMain") return {{name, {}}};
    if (!design_) design_ = std::static_pointer_cast<product::frmMain>(product_forms_.Create());
    return FactsOf(*design_, name);
  }

  std::string OutOfReach() const {
    std::string names;
    for (const auto& [name, form] : screen_.Forms()) {
      if (!form->enabled()) names += ", " + name + " disabled";
    }
    return names;
  }

  // In the middle of something. Somebody who cannot do what he meant to do, because of a fault, lets it be.
  void DoInside(const Step& step) {
    try {
      Do(step);
    } catch (const std::runtime_error&) {
      if (!plan_.every_call) throw;
    }
  }

  static std::string Unquoted(const std::string& rest) {
    const bool quoted = rest.size() > 1 && rest.front() == '"' && rest.back() == '"';
    return Unescaped(quoted ? rest.substr(1, rest.size() - 2) : rest);
  }

  // A document as a program shows it.
  static std::string ContentsOf(const std::string& bytes) {
    if (!bytes.starts_with("{\\rtf")) return bytes;
    const tests::RichTextContents contents = tests::ReadRichText(bytes);
    return (contents.balanced ? "" : "not in balance: ") + contents.text;
  }

  // What can be seen of one control, or of the form by its own name, in the middle of something.
  void Look(const std::string& subject) {
    for (const auto& [name, form] : screen_.Forms()) {
      for (Fact& fact : FactsOf(*form, name)) {
        if (fact.subject == subject) AppendChanges({}, {fact}, Kind::kEvent, events_);
      }
    }
  }

  // Writes a template of reports and labels: the one that is shipped under this name where no text is given.
  void WriteTemplate(const std::string& name, const std::string& text) {
    settings_.registry[std::string(kSettingsKey) + "Templates"] = kTemplates;
    std::ifstream shipped(std::string(QUENTA_TEMPLATES "/") + name, std::ios::binary);
    std::string& bytes = settings_.files[std::string(kTemplates) + "\\" + name];
    bytes = text.empty() ? std::string(std::istreambuf_iterator<char>(shipped), {}) : text;
  }

  Step NextAnswer(const std::string& otherwise) {
    Step answer{.verb = "answer", .rest = otherwise};
    if (!answers_.empty()) answer = answers_.front();
    if (!answers_.empty()) answers_.pop_front();
    return answer;
  }

  // --- What the component asks of the outside ---

  Answer Ask(const ports::Message& message, controls::Form* over) override {
    desktop_calls_.FailIfStruck(base::error_number::kOutOfMemory);
    Step given{.verb = "answer", .rest = "ok"};
    const bool cannot_be_shown = !answers_.empty() && answers_.front().rest == kCannotBeShown;
    if (message.buttons != ports::Buttons::kOk || cannot_be_shown) given = NextAnswer("nobody answered");
    Tell("box " + Quoted(message.title) + " " + kIcons[static_cast<int>(message.icon)] + ", " +
         kButtons[static_cast<int>(message.buttons)] + (message.system_modal ? ", system-modal" : "") + ", over " +
         screen_.NameOf(over) + (screen_.IsTopmost(over) ? " topmost" : "") + OutOfReach() + ": " +
         Quoted(message.text) + " -> " + given.rest);
    if (cannot_be_shown)
      throw base::Error(base::error_number::kOutOfMemory, "Windows cannot show the message: " + message.text);
    for (const Step& step : given.inside) DoInside(step);
    desktop_.answer = kAnswers.contains(given.rest) ? kAnswers.at(given.rest) : Answer::kCancel;
    return desktop_.Ask(message, over);
  }
  bool OpenDocument(const std::string& path, const std::string& folder, controls::Form* over) override {
    Tell("open document " + path + " in " + Quoted(folder));
    return refused_.erase("document") == 0 && !desktop_calls_.Strikes() && desktop_.OpenDocument(path, folder, over);
  }
  std::optional<std::string> AskFileToSave(const ports::FileToSave& file, controls::Form* over) override {
    desktop_calls_.FailIfStruck(base::error_number::kOutOfMemory);
    const std::string given = NextAnswer("cancel").rest;
    Tell("save as " + Quoted(file.title) + " " + Quoted(file.name) + " " + Quoted(file.type_name) + " " +
         file.extension + " -> " + given);
    desktop_.file_to_save = given == "cancel" ? std::nullopt : std::optional(given);
    return desktop_.AskFileToSave(file, over);
  }
  bool CopyText(const std::string& text) override {
    Tell("clipboard " + Quoted(text));
    return refused_.erase("clipboard") == 0 && !desktop_calls_.Strikes() && desktop_.CopyText(text);
  }
  // Each turn of the host lasts a second of the journey's time.
  bool PumpMessages() override {
    desktop_.skipped += std::chrono::seconds(1);
    if (servers_.connecting > 0) ++waited_;
    std::map<int, Step> later;
    for (const auto& [number, turn] : std::exchange(turns_, {})) later[number - 1] = turn;
    turns_ = std::move(later);
    if (const auto turn = turns_.extract(0)) {
      for (const Step& step : turn.mapped().inside) DoInside(step);
    }
    return refused_.erase("turn") == 0 && desktop_.PumpMessages();
  }
  Clock::time_point Now() override { return Clock::time_point(desktop_.skipped); }

  bool Report(const ports::ErrorReport& report) noexcept override {
    if (reports_are_lost_) return false;
    if (reporting_calls_.Strikes()) {
      Tell("report lost");
      return false;
    }
    Tell("report " + report.product + " | " + report.project + " | " + report.module + " | " + report.procedure +
         " | " + Escaped(report.description));
    return true;
  }
  void SQLReconnectShow(controls::Form* form) noexcept override {
    Tell("reconnect show over " + screen_.NameOf(form) + OutOfReach());
  }
  void SQLReconnectShutdown(controls::Form* form) noexcept override {
    Tell("reconnect shutdown over " + screen_.NameOf(form));
  }
  void SQLReconnectShowBad(controls::Form* form) noexcept override {
    Tell("reconnect bad over " + screen_.NameOf(form));
  }
  void SQLReconnectShowOK(controls::Form* form) noexcept override { Tell("reconnect ok over " + screen_.NameOf(form)); }

  void ReleaseReconnect() noexcept override { Tell("reconnect released"); }

  // The form that "check form" hands to the keeper.
  int MousePointer() override { return 5; }
  void SetMousePointer(int pointer) override { Tell("pointer " + std::to_string(pointer)); }
  void SetWindowState(int state) override { Tell(state == 0 ? "normal" : state == 1 ? "minimised" : "maximised"); }
  void Refresh() override { Tell("refreshed"); }
  controls::Form* Form() override { return nullptr; }

  void Starting(session::DatabaseCall call, const std::string& text) override {
    if (!before_.rest.empty() && text.find(before_.rest) != std::string::npos) {
      for (const Step& step : std::exchange(before_, {}).inside) Do(step);
    }
    const bool strikes = !fail_at_.empty() && text.find(fail_at_) != std::string::npos;
    if (strikes) plan_.fail_at = plan_.calls;
    if (strikes) fail_at_.clear();
    if (call == session::DatabaseCall::kStatement) wrote_.merge(TablesWritten(text));
    if (plan_.every_call) texts_[plan_.calls] = Escaped(text);
    const bool writes = call == session::DatabaseCall::kStatement && !text.starts_with("SELECT");
    if (writes && !inside_) loose_writes_.push_back(text);
    const bool connects = call == session::DatabaseCall::kOpen;
    TellStatement(connects ? "CONNECT " + Named(text) : Escaped(text));
  }
  void Ended(const session::CallRecord& record) noexcept override {
    if (record.error) TellStatement("  failed: " + Escaped(record.error->description()));
    using session::DatabaseCall;
    const bool line_gone = record.error && plan_.fault != tests::Fault::kFails;
    const bool ends = record.call == DatabaseCall::kCommit || record.call == DatabaseCall::kRollback;
    if (line_gone || (ends && !record.error)) inside_ = false;
    if (record.call == DatabaseCall::kBegin && !record.error) inside_ = true;
  }

  // --- The steps ---

  component::General& General() {
    std::unique_ptr<component::General>& general = generals_[general_];
    if (!general) general = std::make_unique<component::General>(component_);
    return *general;
  }
  ports::ProductRequest Request() const { return {.caller = caller_}; }
  void LogIn(const std::string& user) {
    if (!General().SQLConnect(tests::SampleArguments(sample_, user))) throw std::runtime_error(user + " is refused");
    events_.clear();
  }
  // "ana cnPassword=x oFlags=1": what a host passes for this user, with both servers, but for what is said.
  void Connect(const std::string& text) {
    session_matters_ = true;
    std::vector<std::string> words = Words(Renamed(text));
    component::SQLConnectArguments arguments = tests::SampleArguments(sample_, words.at(0));
    arguments.cnDataSourceSecondary = sample_.other_source();
    for (std::size_t i = 1; i < words.size(); ++i) {
      const std::string name = words[i].substr(0, words[i].find('='));
      const std::string value = words[i].substr(name.size() + 1);
      if (name == "Password") arguments.Password = session::Scramble(value);
      if (name == "cnPassword") arguments.cnPassword = session::Scramble(value);
      if (name == "cnInitialCatalog") arguments.cnInitialCatalog = value;
      if (name == "cnDataSource") arguments.cnDataSource = value;
      if (name == "cnDataSourceSecondary") arguments.cnDataSourceSecondary = value;
      if (name == "oFlags") arguments.oFlags = std::stoi(value);
    }
    Tell(std::string("SQLConnect -> ") + (General().SQLConnect(arguments) ? "True" : "False"));
  }
  // "ana Password=x", or "ana without=dtUser": the setting is missing meanwhile.
  void Login(const std::string& text) {
    session_matters_ = true;
    const auto [user, other] = FirstWord(text);
    const std::string value = other.substr(other.find('=') + 1);
    std::string password = tests::SampleArguments(sample_, user).Password;
    if (other.starts_with("Password=")) password = session::Scramble(value);
    const auto registry = settings_.registry;
    if (other.starts_with("without="))
      std::erase_if(settings_.registry, [&](const auto& v) { return v.first.ends_with(value); });
    Tell(std::string("Login -> ") + (General().Login(user, password) ? "True" : "False"));
    settings_.registry = registry;
  }
  // "form reconnect silent": asks the keeper itself, as another module of the suite would.
  void Check(const std::string& text) {
    session_matters_ = true;
    const std::vector<std::string> words = Words(text);
    const auto has = [&](const char* word) { return std::find(words.begin(), words.end(), word) != words.end(); };
    session::ConnectionCheck check{.form = has("form") ? this : nullptr,
                                   .transaction_shortcut = has("shortcut"),
                                   .reconnect = has("reconnect"),
                                   .silent = has("silent"),
                                   .minimise = has("minimise")};
    const std::string answer = session::SQLConnectionCheck(session_, check);
    Tell("check -> " + Quoted(answer));
  }
  // "{primary} down", "{primary} after 3 down", "{secondary} up 2", "{primary} up": how this server takes opens.
  void SetServer(const std::string& text) {
    const std::vector<std::string> words = Words(Renamed(text));
    ServerState& state = servers_.states[words.at(0)] = {};
    for (std::size_t i = 1; i < words.size(); ++i) {
      const int number = i + 1 < words.size() ? std::atoi(words[i + 1].c_str()) : 0;
      if (words[i] == "after") state.answers_after = std::chrono::seconds(number);
      if (words[i] == "up" && number > 0) state.answers = number;
      if (words[i] == "down") state.answers = 0;
    }
  }
  // "Contabilidade:dtUser=suite"; without a value, there is none.
  void SetRegistry(const std::string& text) {
    const std::size_t equals = text.find('=');
    std::string& value = settings_.registry[kSuiteKey + text.substr(0, equals)];
    if (equals == std::string::npos) {
      settings_.registry.erase(kSuiteKey + text);
    } else {
      value = Renamed(text.substr(equals + 1));
    }
  }
  std::int32_t IdOf(const std::string& code) {
    const ports::RowSet rows =
        other_->Query("SELECT produto_id FROM tbProdutos WHERE (is_deleted = 0 OR is_deleted IS NULL) AND codigo = '" +
                      base::ReplaceAll(code, "'", "''") + "' ORDER BY produto_id");
    if (rows.empty()) throw std::runtime_error("no product has the code " + code);
    return base::ToLong(rows.front().At(0), {});
  }
  void Fail(tests::Fault fault, const std::string& statement) {
    plan_ = {};
    plan_.fault = fault;
    fail_at_ = statement;
  }
  // A window goes without asking, as when the host takes it away.
  void Lose(const std::string& lost) {
    for (const auto& [name, form] : screen_.Forms()) {
      if (name != lost) continue;
      screen_.Close(*form);
      form->WindowLost();
    }
  }
  void Split(const std::string& text, void (Screen::*act)(const std::string&, const std::string&)) {
    const auto [control, rest] = FirstWord(text);
    (screen_.*act)(control, Unquoted(rest));
  }

  using Text = const std::string&;
  const std::map<std::string, std::function<void(Text)>> verbs_ = {
      // The host.
      {"as", [this](Text user) { LogIn(user); }},
      {"open", [this](Text code) { General().ObjectOpen(IdOf(code), Request()); }},
      {"open-id", [this](Text id) { General().ObjectOpen(id.empty() ? base::Value() : base::Value(id), Request()); }},
      {"registo", [this](Text id) { General().Registo(base::Value(id), Request()); }},
      {"new", [this](Text) { General().ObjectNew(Request()); }},
      {"novo-registo", [this](Text) { General().NovoRegisto(Request()); }},
      {"caller", [this](Text name) { caller_ = name.empty() ? nullptr : std::make_shared<HostWindow>(name); }},
      {"general", [this](Text name) { general_ = name; }},  // the one that the host uses from here on
      {"release", [this](Text) { generals_.erase(general_); }},
      {"connect", [this](Text text) { Connect(text); }},
      {"login", [this](Text text) { Login(text); }},
      {"check", [this](Text text) { Check(text); }},
      {"turns",  // of the host, in which nobody asks anything of it
       [this](Text number) {
         for (int i = std::stoi(number); i > 0; --i) PumpMessages();
       }},
      {"cancel-wait", [this](Text) { session_.cancel_reconnect = true; }},
      // The user.
      {"focus", [this](Text control) { screen_.FocusOn(control); }},
      {"type", [this](Text text) { Split(text, &Screen::Type); }},
      {"key", [this](Text key) { screen_.Key(key); }},
      {"choose", [this](Text text) { Split(text, &Screen::Choose); }},
      {"click", [this](Text text) { Split(text, &Screen::Click); }},
      {"menu", [this](Text name) { screen_.ClickMenu(name); }},
      {"tab", [this](Text key) { screen_.ClickTab(key); }},
      {"row", [this](Text text) { screen_.ClickRow(FirstWord(text).first, FirstWord(text).second, false); }},
      {"double-click", [this](Text text) { screen_.ClickRow(FirstWord(text).first, FirstWord(text).second, true); }},
      {"context-menu", [this](Text list) { screen_.OpenMenu(list); }},
      {"header",
       [this](Text text) { screen_.ClickHeader(FirstWord(text).first, std::atoi(FirstWord(text).second.c_str())); }},
      {"pick", [this](Text text) { Split(text, &Screen::Pick); }},
      {"close", [this](Text) { screen_.CloseBox(); }},
      {"to-front", [this](Text form) { screen_.BringToFront(form); }},
      {"wait", [this](Text) { screen_.host.PassTime(); }},
      {"look", [this](Text subject) { Look(subject); }},
      // What the user will choose in a menu that pops up. What is answered to a box, "answer", stands in Do: it has
      // steps inside it.
      {"pick-entry", [this](Text entry) { screen_.answers.push_back(entry); }},
      // The host's own work on the connection.
      {"lose", [this](Text form) { Lose(form); }},
      {"host-sql",
       [this](Text sql) { sql == "BEGIN" ? session_.SharedConnection().BeginTransaction() : session_.Execute(sql); }},
      // The world around.
      {"other",
       [this](Text sql) {
         other_->Execute(sql);
         others_wrote_.merge(TablesWritten(sql));
       }},
      {"setting",
       [this](Text text) { settings_.registry[kSettingsKey + FirstWord(text).first] = FirstWord(text).second; }},
      {"locale",
       [this](Text name) {
         settings_.locale = name == "english" ? tests::EnglishLocale() : tests::PortugueseLocale();
       }},
      {"template", [this](Text text) { WriteTemplate(FirstWord(text).first, FirstWord(text).second); }},
      // Writing the file ends with this error; with 0, not any more.
      {"file-error",
       [this](Text text) {
         const auto [path, number] = FirstWord(text);
         settings_.write_errors.erase(path);
         if (number != "0") settings_.write_errors[path] = std::stoi(number);
       }},
      // Once: a document is not opened, the clipboard is held by another program, a window or timer is not made; at a
      // turn, the
      // host is quitting.
      {"refuse",
       [this](Text what) {
         if (what != "window" && what != "timer") {
           refused_.insert(what);
           return;
         }
         windows_.fail_at = windows_.calls;
         screen_.host.faults = &windows_;
       }},
      {"registry", [this](Text text) { SetRegistry(text); }},
      {"shadow", [this](Text text) { settings_.files[kShadowFile] = text; }},
      {"server", [this](Text text) { SetServer(text); }},
      {"other-columns", [this](Text statement) { Fail(tests::Fault::kOtherColumns, statement); }},
      {"natively", [](Text) {}},  // from here on: a driver in windows stops
      {"fail", [this](Text statement) { Fail(tests::Fault::kFails, statement); }},
      {"no-error-reporting", [this](Text) { reports_are_lost_ = true; }},
      {"drop-line", [this](Text statement) { Fail(tests::Fault::kLineDrops, statement); }},
  };

  std::vector<Seen> events_;
  bool inside_ = false;  // a transaction, whoever's
  std::vector<std::string> loose_writes_;
  std::map<int, std::string> texts_;  // of the calls that have one
  tests::Fallible desktop_calls_{tests::CallTo::kDesktop};
  tests::Fallible reporting_calls_{tests::CallTo::kReporting};
  std::set<std::string> wrote_;  // tables, since the last look
  std::set<std::string> others_wrote_;
  int waited_ = 0;  // seconds
  std::deque<Step> answers_;
  std::map<int, Step> turns_;  // what happens at the n-th next turn of the host
  Step before_;                // and before the next statement that holds its text
  std::set<std::string> refused_;
  tests::FaultPlan windows_;
  std::string fail_at_;  // the next statement that holds this text goes wrong
  tests::FaultPlan plan_;
  bool reports_are_lost_ = false;

  tests::SampleCopy sample_;
  sandbox::OdbcDatabase odbc_;
  std::unique_ptr<ports::Connection> other_ = odbc_.CreateConnection();
  Servers servers_{odbc_, [this] { return Now(); }};
  tests::FaultyDatabase faulty_{servers_, plan_};
  session::StatementLog database_{faulty_, *this};
  tests::FakeSettings settings_;
  tests::FakeDesktop desktop_;
  Screen screen_{[this](const std::string& event) { Tell(event); }};
  session::Session session_{{database_, settings_, *this, *this}};
  product::ProductForms product_forms_{session_, screen_, &generator::MakeGenerator};
  component::Component component_{session_, product_forms_, screen_};
  std::map<std::string, std::unique_ptr<component::General>> generals_;
  std::string general_;  // the one in use
  ports::HostObjectRef caller_;
  std::shared_ptr<product::frmMain> design_;

  std::map<std::string, Facts> forms_;  // as they were last seen
  std::map<std::string, Facts> rows_;   // by table
  Facts files_;
  Facts session_facts_{SessionFact()};
  bool session_matters_ = false;  // in journeys that connect, log in or ask the keeper

  std::unique_ptr<sandbox::OdbcLink> observer_;  // where calls are counted
  std::string version_;                          // of the database, when these were read
  Rows known_rows_;
};

}  // namespace

std::unique_ptr<Driver> MakeDriver() {
  return std::make_unique<NativeDriver>();
}

std::unique_ptr<FaultyDriver> MakeFaultyDriver() {
  return std::make_unique<NativeDriver>();
}

bool DriverTakes(const std::filesystem::path&) {
  return true;
}

}  // namespace quenta::journeys
