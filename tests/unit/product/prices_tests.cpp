#include <algorithm>
#include <cmath>
#include <functional>

#include "base/convert.h"
#include "base/error.h"
#include "base/text.h"
#include "controls/field_value.h"
#include "product/price_arithmetic.h"
#include "product/price_row.h"
#include "support/sample_component.h"

namespace quenta::tests {
namespace {

class PricesTest : public SampleComponentTest {
 protected:
  void SetUp() override {
    LogIn("ana");
    Open("10000");
  }
  void Open(const std::string& code) {
    form = OpenForm(IdOfCode(code));
    form->FXIva_ID.SetListIndex(-1);
    controls::SetFieldValue(form->FXIva_ID, 1, 0, {});
  }
  // As a person types into the field and leaves it.
  void Type(controls::TextField& field, const std::string& text) {
    field.GotFocus();
    field.KeyDown('1');
    field.Typed(text);
    field.LostFocus();
  }
  std::string Amounts() { return form->FXValor.tag() + " | " + form->FXIVA.tag() + " | " + form->FXTOTAL.tag(); }
  std::string Line() {
    const product::PriceRow line(form->ListView2.Item(form->PrecoKey));
    return line.preco() + " | " + line.iva() + " | " + line.preco_total();
  }
  // A price row of the product in the database.
  std::string Stored(const std::string& column, const std::string& tipo_id) {
    return SqlText("SELECT " + column + " FROM tbProdutos_Precos WHERE tipo_id = " + tipo_id +
                   " AND produto_id = " + std::to_string(form->ProdutoId()));
  }
  void ChooseRate(double tx) {
    Sql("UPDATE tbTaxas_Iva SET tx = " + base::ReplaceAll(base::ToText(tx, EnglishLocale()), ",", ".") +
        " WHERE iva_id = 1");
  }
  std::shared_ptr<product::frmMain> form;
};

TEST_F(PricesTest, TheListShowsEachLineAndTheFieldsTheDefaultOne) {
  Open("10404");
  const auto lines = OpenForm(IdOfCode("10000"));
  EXPECT_EQ(lines->ListView2.Count(), 3);
  EXPECT_EQ(lines->FXTipo.text(), "Venda ao público");
  EXPECT_EQ(lines->ListView2.Item(lines->PrecoKey).text, "Venda ao público [Predefinido]");
  EXPECT_EQ(lines->ListView2.At(lines->ListView2.selected()).small_icon, 3);
  EXPECT_EQ(lines->FXTOTAL.text(), "€ 9,95");
  const auto gone = OpenForm(IdOfCode("10401"));
  EXPECT_EQ(gone->ListView2.At(0).text.substr(0, 1), " ")
      << "a type that is gone comes first, with a blank for its name";
  const auto none = OpenForm(IdOfCode("10402"));
  EXPECT_EQ(none->PrecoKey, "");
  EXPECT_EQ(none->FXValor.text(), "");
  EXPECT_TRUE(reporting.reports.empty());
}

struct AmountCase {
  const char* what;
  controls::TextField product::frmMain::*field;
  const char* typed;
  double rate;
  const char* amounts;  // value | VAT | total
};

TEST_F(PricesTest, WhatIsTypedDrivesTheOtherTwo) {
  using product::frmMain;
  const AmountCase cases[] = {
      {"value", &frmMain::FXValor, "100", 0.23, "100 | 23 | 123"},
      {"total", &frmMain::FXTOTAL, "123", 0.23, "100 | 23 | 123"},
      {"total", &frmMain::FXTOTAL, "10", 0.23, "8,13008 | 1,86992 | 10"},
      {"VAT", &frmMain::FXIVA, "23", 0.23, "100 | 23 | 123"},
      {"VAT at no rate", &frmMain::FXIVA, "5", 0, "0 | 5 | 0"},
      {"value at no rate", &frmMain::FXValor, "7,5", 0, "7,5 | 0 | 7,5"},
      {"value with a point", &frmMain::FXValor, "12.5", 0.06, "12,5 | 0,75 | 13,25"},
      {"letters", &frmMain::FXValor, "abc", 0.23, "0 | 0 | 0"},
      {"what is no percentage either", &frmMain::FXTOTAL, "5%5", 0.23, "0 | 0 | 0"},
      // Single precision carries seven digits.
      {"thousands as in Portugal", &frmMain::FXValor, "1.234,50", 0.06, "1234,5 | 74,07 | 1308,56995"},
      {"a minus behind", &frmMain::FXValor, "12-", 0.5, "-12 | -6 | -18"},
  };
  for (const AmountCase& c : cases) {
    ChooseRate(c.rate);
    Type((*form).*c.field, c.typed);
    EXPECT_EQ(Amounts(), c.amounts) << c.what << " " << c.typed;
    EXPECT_EQ(Line(), c.amounts) << "the row is the working copy: " << c.what;
  }
  EXPECT_TRUE(form->Altered() && form->PrecosAltered);
}

TEST_F(PricesTest, LeavingWithoutTypingOnlyCopiesAndNoRateComputesNothing) {
  const std::string before = Amounts();
  form->FXTOTAL.GotFocus();
  form->FXTOTAL.KeyDown(controls::key_code::kTab);
  form->FXTOTAL.LostFocus();
  EXPECT_FALSE(form->Altered() || form->PrecosAltered);
  EXPECT_EQ(Line(), Amounts());
  form->FXIva_ID.SetListIndex(-1);
  Type(form->FXValor, "50");
  EXPECT_EQ(form->FXValor.tag(), "50");
  EXPECT_EQ(before.substr(before.find('|')), Amounts().substr(Amounts().find('|')));
}

TEST_F(PricesTest, TheServerIsAskedForARateOnlyWhileThereIsNone) {
  const auto lookups = [&](double tx, controls::TextField& field) {
    ChooseRate(tx);
    database.Forget();
    Type(field, "10");
    return static_cast<int>(std::count(database.statements.begin(), database.statements.end(),
                                       "SELECT * FROM tbTaxas_Iva WHERE iva_id = 1"));
  };
  for (controls::TextField* const field : {&form->FXValor, &form->FXIVA, &form->FXTOTAL}) {
    EXPECT_EQ(lookups(0.23, *field), 1) << field->name();
    EXPECT_EQ(lookups(0, *field), 2) << field->name() << ": no rate is looked up again before the second amount";
  }
  Sql("DELETE FROM tbTaxas_Iva WHERE iva_id = 1");
  Type(form->FXTOTAL, "10");
  EXPECT_EQ(Amounts(), "10 | 0 | 10") << "a rate that is gone counts as none";
  Type(form->FXIVA, "10");
  EXPECT_EQ(Amounts(), "0 | 10 | 0");
  EXPECT_TRUE(reporting.reports.empty());
}

TEST_F(PricesTest, WithoutALineTheFieldsWriteNowhere) {
  Open("10402");
  const std::string before = form->ListView2.Cell(0, 3);
  Type(form->FXValor, "55");
  EXPECT_EQ(form->ListView2.Cell(0, 3), before);
  form->ListView2.Clear();
  Type(form->FXTOTAL, "55");
  form->mnProdutosPredef_Click();
  EXPECT_FALSE(form->ListView2.Count() > 0);
  Open("10403");
  EXPECT_EQ(form->PrecoKey, form->ListView2.At(form->ListView2.selected()).key) << "of two default lines the later";
  form->ListView2.Clicked(form->ListView2.selected());
  form->mnProdutosPredef_Click();
  int defaults = 0;
  for (int i = 0; i < form->ListView2.Count(); ++i) defaults += form->ListView2.At(i).small_icon == 3 ? 1 : 0;
  EXPECT_EQ(defaults, 1);
  EXPECT_TRUE(reporting.reports.empty());
}

TEST_F(PricesTest, AnAmountBeyondThirtyTwoBitsEndsTheHandlerAndIsSavedAsTyped) {
  const std::string vat = form->FXIVA.tag();
  const std::function<void()> elsewhere[] = {[&] { form->ListView2.Clicked(0); }, [&] { form->Fill(); },
                                             [&] { form->Duplicar(); }};
  desktop.answer = ports::Answer::kYes;
  for (const auto& go : elsewhere) {
    reporting.reports.clear();
    Type(form->FXTOTAL, "2147483648");
    ASSERT_EQ(reporting.reports.size(), 1U);
    EXPECT_EQ(reporting.reports[0].procedure, "FXTOTAL_LostFocus");
    EXPECT_TRUE(form->TotalAltered) << "the rest of the handler did not run";
    go();
    EXPECT_FALSE(form->TotalAltered) << "another line's field";
  }
  Open("10000");
  Type(form->FXTOTAL, "2147483648");
  EXPECT_TRUE(form->Gravar());
  EXPECT_EQ(Stored("preco_total", "1") + " " + form->FXIVA.tag(), "2147483648 " + vat);
  EXPECT_EQ(product::R5(21474.83647), 21474.83647);
  EXPECT_THROW(product::R5(21474.83648), base::Error);
  EXPECT_EQ(product::R5(0.000005), 0.0) << "ties to even";
  EXPECT_EQ(product::R5(0.000015), 0.00002);
}

TEST_F(PricesTest, ANumberBeyondTheColumnIsRefusedInTheField) {
  const std::string before = Amounts();
  for (controls::TextField* const field : {&form->FXValor, &form->FXDesconto, &form->FXAltura}) {
    const std::string raw = field->tag();
    field->GotFocus();
    field->Typed("1E400");
    EXPECT_FALSE(field->LeftForCommand());
    field->BackFromCommand();
    EXPECT_EQ(field->text().find('E'), std::string::npos);
    EXPECT_EQ(desktop.messages.size(), 1U) << field->name();
    EXPECT_EQ(form_host.focused, field->name());
    EXPECT_EQ(field->tag(), raw);
    desktop.messages.clear();
  }
  EXPECT_EQ(Amounts(), before);
}

// What was emptied is nothing in its line. It can be taken back until null was saved, and does not come back after
// that.
TEST_F(PricesTest, AnEmptiedAmountIsNothingInItsLine) {
  const int line = form->ListView2.selected();
  const std::string total = form->FXTOTAL.text();
  Type(form->FXTOTAL, "");
  form->FXTOTAL.GotFocus();
  form->FXTOTAL.LostFocus();
  EXPECT_EQ(Stored("preco_total", "1"), base::ReplaceAll(form->FXTOTAL.tag(), ",", ".")) << total << " was taken back";
  form->FXTOTAL.GotFocus();
  form->FXTOTAL.Typed("");
  form->FXTOTAL.LeftForCommand();
  Type(form->FXDesconto, "");
  ASSERT_TRUE(form->Gravar());
  form->FXTOTAL.BackFromCommand();
  form->FXTOTAL.LostFocus();
  form->FXDesconto.GotFocus();
  EXPECT_EQ(form->FXTOTAL.text() + form->FXDesconto.text(), "") << "what null was saved for is gone";
  form->FXDesconto.LostFocus();
  form->ListView2.Clicked(0);
  EXPECT_FALSE(form->Altered()) << "showing a line alters nothing";
  EXPECT_NE(form->FXTOTAL.text(), "");
  form->ListView2.Clicked(line);
  EXPECT_EQ(form->FXTOTAL.text() + form->FXDesconto.text(), "") << "the other line's";
  form->mnProdutosPredef_Click();
  ASSERT_TRUE(form->Gravar());
  EXPECT_EQ(Stored("preco_total", "1") + Stored("desconto", "1"), "(null)(null)");
  EXPECT_EQ(OpenForm(form->ProdutoId())->FXTOTAL.text(), "€ 0,00");
}

TEST_F(PricesTest, AComputationWithoutItsRateIsMadeBySavingOrTheSaveIsRefused) {
  const int line = form->ListView2.selected();
  form->ListView2.Clicked(line);
  const std::string key = form->PrecoKey;
  ASSERT_TRUE(form->Gravar()) << "from now on, the policies are known";
  database.Forget();
  ASSERT_TRUE(form->Gravar());
  const auto begin = std::find(database.statements.begin(), database.statements.end(), "BEGIN");
  ASSERT_NE(begin, database.statements.end());
  const int last_question = database.positions.at(static_cast<std::size_t>(begin - database.statements.begin()) - 1);
  database.Forget();
  database.fail_at = 0;
  Type(form->FXTOTAL, "10,60");
  EXPECT_EQ(reporting.reports.size(), 1U);
  form->ListView2.Clicked(0);
  form->TabStrip1.SelectKey("vendas");
  database.Forget();
  database.fail_at = last_question;
  EXPECT_FALSE(form->Gravar());
  EXPECT_EQ(std::count(database.statements.begin(), database.statements.end(), "BEGIN"), 0);
  ASSERT_FALSE(desktop.messages.empty());
  EXPECT_EQ(
      desktop.messages.back().text,
      "Não foi possível ler a taxa de IVA do preço 'Venda ao público'.\nO produto não foi gravado. Tente gravar de "
      "novo.");
  EXPECT_EQ(form->PrecoKey + form_host.focused + form->TabStrip1.selected_key(), key + "FXTOTALprecos");
  form->ListView2.Clicked(0);
  ASSERT_TRUE(form->Gravar());
  EXPECT_EQ(Stored("preco", "1") + " " + Stored("iva", "1"), "10 0.6");
  form->ListView2.Clicked(line);
  EXPECT_EQ(Amounts(), "10 | 0,6 | 10,6");
}

// Ctrl+S and the like: what was typed since is computed, once, and the user goes on where he was.
TEST_F(PricesTest, ACommandLeavesTheFieldAndComingBackChangesNothing) {
  ChooseRate(0.23);
  form->FXTOTAL.GotFocus();
  form->FXTOTAL.Typed("10,1234567");
  form->FXTOTAL.SelectionMoved({2, 3});
  for (int i = 0; i < 2; ++i) {
    database.Forget();
    form->FXTOTAL.LeftForCommand();
    EXPECT_EQ(form->FXTOTAL.text(), "€ 10,123");
    EXPECT_EQ(database.statements.size(), i == 0 ? 1U : 0U) << "the rate";
    form->FXTOTAL.BackFromCommand();
    EXPECT_EQ(form->FXTOTAL.text(), "10,1234567");
    EXPECT_EQ(form->FXTOTAL.selection(), (controls::TextRange{2, 3}));
  }
  form->FXTOTAL.LeftForCommand();
  form->ListView2.Clicked(0);
  form->FXTOTAL.BackFromCommand();
  EXPECT_EQ(form->FXTOTAL.text(), "6,964") << "another line, as its field is entered";
  EXPECT_EQ(form->FXTOTAL.selection().length, 0U);
}

// Whichever of the three is typed, the other two agree with exact arithmetic to the fifth decimal as far as single
// precision carries: seven digits, so below 100. Beyond, half a unit of the seventh digit.
TEST_F(PricesTest, RandomAmountsAgreeWithExactArithmetic) {
  using product::frmMain;
  std::uint32_t state = 7;
  const auto random = [&](std::uint32_t bound) {
    state = state * 1664525U + 1013904223U;
    return (state >> 8) % bound;
  };
  const int rates_in_thousandths[] = {230, 130, 60, 0, 170, 1, 999};
  controls::TextField frmMain::*const fields[] = {&frmMain::FXValor, &frmMain::FXTOTAL, &frmMain::FXIVA};
  for (int i = 0; i < 210; ++i) {
    const int rate = rates_in_thousandths[i % 7];
    auto const typed_field = fields[i % 3];
    ChooseRate(rate / 1000.0);
    const long long cents = random(10000);
    const std::string typed =
        base::DecimalText(cents / 100) + "," + (cents % 100 < 10 ? "0" : "") + base::DecimalText(cents % 100);
    Type((*form).*typed_field, typed);
    // value : VAT : total = 1000 : rate : 1000 + rate. What is typed is exact, in hundred-thousandths.
    const long long parts[] = {1000, 1000 + rate, rate};
    const long long typed_part = parts[i % 3];
    for (int k = 0; k < 3; ++k) {
      const std::string& tag = ((*form).*fields[k]).tag();
      const double units = base::ToDouble(tag, {}) * 100000;
      const double exact = k == i % 3        ? static_cast<double>(cents) * 1000
                           : typed_part == 0 ? 0  // VAT was typed where there is none: nothing follows from it
                                             : static_cast<double>(cents) * 1000 * static_cast<double>(parts[k]) /
                                                   static_cast<double>(typed_part);
      if (exact >= 2147483647.5) continue;  // beyond the bound, which has a test of its own
      const double bound = std::max(1.0, exact * 3e-7);
      EXPECT_LE(std::abs(units - exact), bound) << typed << " in field " << i % 3 << " at " << rate << ", field " << k;
    }
    reporting.reports.clear();
  }
}

TEST_F(PricesTest, ATaxedRateErasesTheReasonAndAnExemptOneOffersIt) {
  const auto choose = [&](int iva_id) {
    for (int i = 0; i < form->FXIva_ID.ListCount(); ++i) {
      if (form->FXIva_ID.ItemData(i) == iva_id) form->FXIva_ID.Chosen(i);
    }
  };
  choose(4);
  EXPECT_TRUE(form->FXIVA_Descrit.enabled());
  ASSERT_GT(form->FXIVA_Descrit.ListCount(), 5);
  form->FXIVA_Descrit.Chosen(0);
  form->FXIVA_Descrit.LostFocus();
  EXPECT_EQ(product::PriceRow(form->ListView2.Item(form->PrecoKey)).iva_descrit(), form->FXIVA_Descrit.text());
  choose(2);
  EXPECT_FALSE(form->FXIVA_Descrit.enabled());
  EXPECT_EQ(form->FXIVA_Descrit.text(), "");
  EXPECT_EQ(product::PriceRow(form->ListView2.Item(form->PrecoKey)).iva_descrit(), "");
  choose(4);
  EXPECT_EQ(form->FXIVA_Descrit.text(), "") << "offered again, nothing chosen";
}

}  // namespace
}  // namespace quenta::tests
