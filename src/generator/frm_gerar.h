// The generator's form: the user checks colours and sizes, and gets a dependent product for each combination of them.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "controls/list_view.h"
#include "controls/simple_controls.h"
#include "generator/dependant.h"
#include "ports/desktop.h"
#include "product/form_over_product.h"

namespace quenta::generator {

class frmGerar final : public product::FormOverProduct {
 public:
  // The opener shows the main product.
  frmGerar(session::Session& session, ports::FormHost& host, hosting::Forms& forms,
           const std::shared_ptr<product::frmMain>& opener, std::int32_t produto_id);

  // Creates the dependants that are not there yet, tells how many, and closes. Each one is a transaction of its own:
  // after an error, which is reported, and after a stop, those created so far stay. After an error the form stays, too.
  void Command1_Click();
  // Closes the form; while it generates, stops that.
  void Command2_Click() { Unload(); }

  controls::Label Label3{"Label3", ""};  // the main product
  controls::Label ListView1_Label{"ListView1_Label", "&Cores"};
  controls::ListView ListView1;
  controls::Label ListView2_Label{"ListView2_Label", "&Tamanhos"};
  controls::ListView ListView2;
  controls::CommandButton CoresTodas{"CoresTodas", "Todas as cores"};
  controls::CommandButton CoresNenhuma{"CoresNenhuma", "Nenhuma cor"};
  controls::CommandButton TamanhosTodos{"TamanhosTodos", "Todos os tamanhos"};
  controls::CommandButton TamanhosNenhum{"TamanhosNenhum", "Nenhum tamanho"};
  controls::Label Label1{"Label1", ""};  // how many of the chosen combinations are new
  controls::ProgressBar ProgressBar1{"ProgressBar1"};
  controls::Label Label2{"Label2", ""};  // what is being created
  controls::CommandButton Command1{"Command1", "&Gerar", true};
  controls::CommandButton Command2{"Command2", "Cancelar", false, true};
  controls::Frame Frame1{"Frame1"};

 protected:
  void OnLoad() override;
  void OnUnload(bool& cancel) override;

 private:
  class Run;

  // The chosen colours and sizes; where none was chosen, "none" is the one that there is.
  struct Choice {
    std::vector<std::optional<Attribute>> cores;
    std::vector<std::optional<Attribute>> tamanhos;
    bool Empty() const noexcept { return !cores.front() && !tamanhos.front(); }
    int Count() const noexcept { return static_cast<int>(cores.size() * tamanhos.size()); }
    // Each colour with every size, from 0.
    Combination At(int position) const;
  };

  // How a generation ended; the first is what an error leaves.
  enum class End { kError, kComplete, kStopped, kNoMainProduct };

  // How far a generation has come.
  struct Progress {
    int created = 0;
    int skipped = 0;
    std::string code;  // of the combination that it stands at
  };

  template <typename Body>
  auto Guarded(const char* procedure, Body&& body) noexcept;
  void LayOut();
  void FillList(controls::ListView& list, const char* query, const char* id_column);
  void ReadExisting();
  void CheckAll(controls::ListView& list, bool checked);
  void ShowCounts();
  Choice Chosen();
  End Generate(const Choice& choice, Progress& progress);
  bool MayGoOn(const std::string& code, int position, int count);
  void Tell(const std::string& text, ports::Icon icon);
  void TellEnd(End end, const Progress& progress);
  void RefreshOpener();

  std::int32_t produto_id_;
  std::unordered_set<std::string> existing_;  // combinations that have a dependant
  bool generating_ = false;
  bool stop_ = false;      // asked for by the user
  bool quitting_ = false;  // the host is going
};

// The form as the product form asks for it.
std::shared_ptr<controls::Form> MakeGenerator(session::Session& session, ports::FormHost& host, hosting::Forms& forms,
                                              const std::shared_ptr<product::frmMain>& opener, std::int32_t produto_id);

}  // namespace quenta::generator
