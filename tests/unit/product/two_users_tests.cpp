// Two users of one database, each in a process of their own.
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>

#include "support/sample_component.h"

namespace quenta::tests {
namespace {

class TwoUsersTest : public SampleComponentTest {
 protected:
  // Runs the work in two processes at once, each as a user of its own; false when one of them fails.
  template <typename Work>
  bool InTwoProcesses(Work work) {
    std::array<pid_t, 2> children{};
    for (std::size_t i = 0; i < children.size(); ++i) {
      children[i] = fork();
      if (children[i] != 0) continue;
      LogIn(i == 0 ? "ana" : "bruno");
      session.state().session_user = "ana";
      work();
      for (const ports::ErrorReport& report : reporting.reports) {
        std::fprintf(stderr, "%s: %s\n", report.procedure.c_str(), report.description.c_str());
      }
      session.ReleaseConnection();
      _exit(reporting.reports.empty() && !HasFailure() ? 0 : 1);
    }
    bool good = true;
    for (const pid_t child : children) {
      int status = 0;
      waitpid(child, &status, 0);
      good = good && WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }
    return good;
  }
};

TEST_F(TwoUsersTest, FiveHundredCreationsEachGiveAThousandProducts) {
  constexpr int kEach = 500;
  ASSERT_TRUE(InTwoProcesses([&] {
    for (int i = 0; i < kEach; ++i) {
      const auto form = OpenForm(0);
      EXPECT_NE(form->ProdutoId(), 0);
      form->Unload();
    }
  }));
  LogIn("ana");
  const std::string created =
      " FROM tbProdutos WHERE produto_id > (SELECT MAX(produto_id) FROM tbProdutos WHERE nome is not null)";
  for (const char* const distinct : {"produto_id", "codigo"}) {
    EXPECT_EQ(SqlText(std::string("SELECT COUNT(DISTINCT ") + distinct + ")" + created), "1000") << distinct;
  }
  for (const char* const table : {"tbProdutos_Stocks", "tbProdutos_Stocks_Minimos"}) {
    EXPECT_EQ(SqlText(std::string("SELECT COUNT(*) FROM ") + table + " WHERE produto_id IN (SELECT produto_id" +
                      created + ")"),
              SqlText("SELECT 1000 * COUNT(*) FROM tbArmazens WHERE has_stocks <> 0"))
        << table;
  }
  EXPECT_EQ(SqlText("SELECT COUNT(*) FROM tbProdutos_Precos WHERE produto_id IN (SELECT produto_id" + created + ")"),
            SqlText("SELECT 1000 * COUNT(*) FROM tbProdutos_Precos_Tipos"));
  Sql("UPDATE tbProdutos SET obs = 'x' WHERE produto_id = 1");  // nothing was left locked
}

}  // namespace
}  // namespace quenta::tests
