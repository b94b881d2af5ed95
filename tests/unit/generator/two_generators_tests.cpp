// Two users of one database who generate for the same product at the same moment, each in a process of their own.
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <set>

#include "base/convert.h"
#include "support/sample_component.h"

namespace quenta::tests {
namespace {

class TwoGeneratorsTest : public SampleComponentTest {
 protected:
  // Generates again until nothing is missing: where both read one number, one of them ends in an error and is told.
  void GenerateAll() {
    const auto opener = OpenForm(IdOfCode("A10"));
    for (bool complete = false; !complete;) {
      opener->Toolbar2.Clicked("gerar");
      generator::frmGerar* form = nullptr;
      for (const auto& [shown, alive] : form_host.shown) {
        if (shown->name() == "frmGerar") form = static_cast<generator::frmGerar*>(shown);
      }
      const auto alive = form_host.shown.at(form);
      form->CoresTodas.Clicked();
      for (int i = 0; i < 5; ++i) form->ListView2.Checked(i, true);
      form->Command1.Clicked();
      complete = !form->loaded();
      form->Unload();
    }
    for (const ports::ErrorReport& report : reporting.reports) {
      EXPECT_NE(report.description.find("PK_tbProdutos"), std::string::npos) << report.description;
    }
  }
};

TEST_F(TwoGeneratorsTest, EachCombinationIsThereOnceAndWhole) {
  std::array<pid_t, 2> children{};
  for (pid_t& child : children) {
    child = fork();
    if (child != 0) continue;
    LogIn("ana");
    GenerateAll();
    session.ReleaseConnection();
    _exit(HasFailure() ? 1 : 0);
  }
  for (const pid_t child : children) {
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  }
  const std::string generated = " FROM tbProdutos WHERE main_id = " + std::to_string(IdOfCode("A10"));
  EXPECT_EQ(SqlText("SELECT COUNT(*)" + generated), "80");
  EXPECT_EQ(SqlText("SELECT COUNT(DISTINCT cor + ';' + tamanho)" + generated), "80");
  for (const char* table : {"tbProdutos_Precos", "tbProdutos_Stocks"}) {
    std::set<std::string> counts;
    for (const ports::Row row : Sql("SELECT COUNT(*) FROM " + std::string(table) +
                                    " WHERE produto_id IN (SELECT produto_id" + generated + ") GROUP BY produto_id")) {
      counts.insert(base::ToText(row.At(0), {}));
    }
    EXPECT_EQ(counts.size(), 1U) << table;
  }
  EXPECT_NO_THROW(Sql("UPDATE tbProdutos SET obs = 'x' WHERE produto_id = 1")) << "nothing is left locked";
}

}  // namespace
}  // namespace quenta::tests
