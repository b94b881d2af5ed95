#include "generator_test.h"

namespace quenta::tests {
namespace {

using generator::Attribute;
using generator::Combination;

class DependantTest : public GeneratorTest {
 protected:
  generator::MainProduct MainOf(const std::string& codigo) {
    main_id = std::to_string(IdOfCode(codigo));
    const ports::RowSet rows = Sql("SELECT * FROM tbProdutos WHERE produto_id = " + main_id);
    return {session, rows.front()};
  }
};

TEST_F(DependantTest, TheStatementsAreTheSuitesToTheBlank) {
  for (const char* sql :
       {"DELETE FROM tbArmazens WHERE armazem_id > 2",
        "UPDATE tbContadores SET contador = 90000 WHERE nome = 'produto_id'",
        "UPDATE tbProdutos SET nome = 'Vinha d''Alho', familia_id = 3, subfamilia_id = null, obs = null, "
        "fornecedor_id = 7, marca = 'Marca', descontinuado = 1, tipo_id = 1, largura = 1.5, profundidade = null, "
        "altura = -2, centro_id = 2 WHERE codigo = 'A10'"}) {
    Sql(sql);
  }
  const generator::MainProduct main = MainOf("A10");
  Sql("DELETE FROM tbProdutos_Stocks_Minimos WHERE armazem_id > 1 AND produto_id = " + main_id);
  Sql("UPDATE tbProdutos_Stocks_Minimos SET unidades = 2.5 WHERE produto_id = " + main_id);
  Sql("DELETE FROM tbProdutos_Precos WHERE tipo_id > 1 AND produto_id = " + main_id);
  Sql("UPDATE tbProdutos_Precos SET preco = 8.13008, iva_id = 4, iva = 0, iva_descrit = 'Lei', preco_total = 8.13008, "
      "desconto = 0.1, predef = 1 WHERE produto_id = " +
      main_id);
  const Attribute cor{"Sangue d'Boi", "S'B"};
  const Attribute tamanho{"42", "42"};
  const struct {
    Combination combination;
    const char* lookup;
    const char* head;
    const char* codigo;
    const char* attributes;
  } cases[] = {
      {{&cor, &tamanho},
       " AND cor = 'Sangue d' + CHAR(39) + 'Boi' AND tamanho = '42'",
       "main_id, cor, tamanho, tipo_id,largura, profundidade, altura ) VALUES (",
       "A10-S' + CHAR(39) + 'B-42",
       "'Sangue d' + CHAR(39) + 'Boi', '42'"},
      {{&cor, nullptr},
       " AND tamanho is null AND cor = 'Sangue d' + CHAR(39) + 'Boi'",
       "main_id, cor, tamanho, tipo_id, largura, profundidade, altura) VALUES (",
       "A10-S' + CHAR(39) + 'B",
       "'Sangue d' + CHAR(39) + 'Boi', null"},
      {{nullptr, &tamanho},
       " AND cor is null AND tamanho = '42'",
       "main_id, cor, tamanho, tipo_id, largura, profundidade, altura ) VALUES (",
       "A10-42",
       "null, '42'"},
  };
  int next = 90000;
  for (const auto& [combination, lookup, head, codigo, attributes] : cases) {
    database.Forget();
    EXPECT_FALSE(main.HasDependant(combination));
    main.CreateDependant(combination);
    const std::string id = std::to_string(next++);
    EXPECT_EQ(database.statements,
              (std::vector<std::string>{
                  "SELECT * FROM tbProdutos WHERE is_deleted = 0 AND main_id = " + main_id + lookup,
                  "SELECT @@TRANCOUNT as valor",
                  "BEGIN",
                  "SELECT * FROM tbContadores WHERE nome = 'produto_id'",
                  "UPDATE tbContadores SET contador = contador + 1 WHERE nome = 'produto_id'",
                  "SELECT * FROM tbProdutos WHERE is_deleted = 0 AND main_id = " + main_id + lookup,
                  "INSERT INTO tbProdutos (produto_id, codigo, nome, familia_id, subfamilia_id, obs, data_created, "
                  "data_modified, fornecedor_id, marca, descontinuado, " +
                      std::string(head) + id + ",'" + codigo +
                      "','Vinha d' + CHAR(39) + 'Alho',3, null, null, GETDATE(), GETDATE(), 7, 'Marca', 1, " + main_id +
                      ", " + attributes + ", 1, 1.5, null, -2)",
                  "SELECT * FROM tbArmazens WHERE has_stocks <> 0",
                  "INSERT INTO tbProdutos_Stocks (produto_id, armazem_id, unidades) VALUES (" + id + ",1,0)",
                  "INSERT INTO tbProdutos_Stocks (produto_id, armazem_id, unidades) VALUES (" + id + ",2,0)",
                  "SELECT * FROM tbProdutos_Stocks_Minimos WHERE produto_ID = " + main_id,
                  "INSERT INTO tbProdutos_Stocks_Minimos (produto_id, armazem_id, unidades) VALUES (" + id + ",1,2.5)",
                  "SELECT * FROM tbProdutos_Precos WHERE produto_id = " + main_id,
                  "INSERT INTO tbProdutos_Precos (tipo_id, produto_id, preco, iva_id, iva, preco_total, desconto, "
                  "predef) VALUES (1, " +
                      id + ", 8.13008, 4, 0, 8.13008, 0.1, 1)",
                  "SELECT @@TRANCOUNT as valor",
                  "COMMIT",
              }));
    EXPECT_TRUE(main.HasDependant(combination));
  }
  EXPECT_EQ(SqlText("SELECT codigo FROM tbProdutos WHERE produto_id = 90000"), "A10-S'B-42");
  EXPECT_EQ(SqlText("SELECT cor FROM tbProdutos WHERE produto_id = 90001"), "Sangue d'Boi");
  EXPECT_EQ(SqlText("SELECT COUNT(*) FROM tbProdutos_Precos WHERE produto_id >= 90000 AND iva_descrit is null"), "3");
  EXPECT_EQ(SqlText("SELECT COUNT(*) FROM tbProdutos WHERE produto_id >= 90000 AND centro_id is null"), "3");
}

TEST_F(DependantTest, SizesAndColoursAreComparedAsTextsAndWithoutTheMissingOne) {
  const Attribute preto{"Preto", "PT"};
  const Attribute other_case{"PRETO", "PT"};
  const Attribute size42{"42", "42"};
  const Attribute size042{"042", "042"};
  const generator::MainProduct main = MainOf("10001");
  main.CreateDependant({&preto, &size42});
  const struct {
    Combination combination;
    bool there;
  } cases[] = {{{&preto, &size42}, true},
               {{&other_case, &size42}, true},
               {{&preto, &size042}, false},
               {{&preto, nullptr}, false},
               {{nullptr, &size42}, false}};
  for (const auto& [combination, there] : cases) {
    EXPECT_EQ(main.HasDependant(combination), there) << main.CodeOf(combination);
  }
}

TEST_F(DependantTest, EachStatementThatFailsLeavesNoHalfDependant) {
  const Attribute cor{"Azul", "AZ"};
  Sql("DELETE FROM tbArmazens WHERE armazem_id > 2");
  const generator::MainProduct main = MainOf("10001");
  const std::string next = SqlText("SELECT contador FROM tbContadores WHERE nome = 'produto_id'");
  bool created = false;
  for (int i = 0; !created; ++i) {
    ASSERT_LT(i, 40);
    database.Forget();
    database.fail_at = i;
    try {
      main.CreateDependant({&cor, nullptr});
      created = true;
    } catch (const base::Error&) {
      EXPECT_EQ(Dependants(), "") << "statement " << i;
      EXPECT_EQ(SqlText("SELECT contador FROM tbContadores WHERE nome = 'produto_id'"), next) << "statement " << i;
    }
    database.Forget();
    EXPECT_FALSE(session::InTransaction(session)) << "statement " << i;
    EXPECT_NO_THROW(Sql("UPDATE tbProdutos SET obs = obs WHERE produto_id = 900")) << "nothing is left locked";
  }
  EXPECT_EQ(Dependants(), "10001-AZ Azul -");
  EXPECT_EQ(HalfDependants(), "0");
}

}  // namespace
}  // namespace quenta::tests
