// Two users of one database who generate at the same moment, each in a process of their own.
#include <sys/wait.h>
#include <unistd.h>

#include <array>

#include "generator_test.h"

namespace quenta::tests {
namespace {

class TwoGeneratorsTest : public GeneratorTest {
 protected:
  void SetUp() override {}

  // Generates again until nothing is missing; reads of one number by both end in errors before. Returns whether the
  // errors were of that kind.
  bool GenerateAll(const char* codigo, std::initializer_list<const char*> tamanhos) {
    for (int round = 0; round < 200; ++round) {
      const auto form = OpenGenerator(codigo);
      form->CoresTodas.Clicked();
      Check(form->ListView2, tamanhos);
      form->Command1.Clicked();
      const bool complete = !form->loaded();
      form->Unload();
      opener->Unload();
      if (complete) break;
    }
    for (const ports::ErrorReport& report : reporting.reports) {
      if (report.description.find("PK_tbProdutos") == std::string::npos) {
        ADD_FAILURE() << report.description;
        return false;
      }
    }
    return true;
  }
};

TEST_F(TwoGeneratorsTest, NoIdentifierIsGivenTwiceAndNothingIsHalf) {
  const char* const mains[] = {"A10", "10001"};
  std::array<pid_t, 2> children{};
  for (std::size_t i = 0; i < children.size(); ++i) {
    children[i] = fork();
    if (children[i] != 0) continue;
    LogIn("ana");
    const bool good = GenerateAll(mains[i], {"S", "M", "L", "XL", "42"});
    session.ReleaseConnection();
    _exit(good && !HasFailure() ? 0 : 1);
  }
  for (const pid_t child : children) {
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  }
  LogIn("ana");
  for (const char* const codigo : mains) {
    main_id = std::to_string(IdOfCode(codigo));
    EXPECT_EQ(SqlText("SELECT COUNT(*) FROM tbProdutos WHERE is_deleted = 0 AND main_id = " + main_id), "80");
    EXPECT_EQ(SqlText("SELECT COUNT(DISTINCT codigo) FROM tbProdutos WHERE main_id = " + main_id), "80");
    EXPECT_EQ(HalfDependants(), "0");
  }
  EXPECT_NO_THROW(Sql("UPDATE tbProdutos SET obs = 'x' WHERE produto_id = 1")) << "nothing is left locked";
}

}  // namespace
}  // namespace quenta::tests
