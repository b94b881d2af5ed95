// A whole component on the sample catalogue in a real SQL engine, without windows: statements are recorded, and any of
// them can be made to fail.
#pragma once

#include <memory>
#include <string>

#include "component/component.h"
#include "component/general.h"
#include "component/session/transaction.h"
#include "generator/frm_gerar.h"
#include "gtest/gtest.h"
#include "ports/database.h"
#include "product/frm_main.h"
#include "product/product_forms.h"
#include "sandbox/odbc/odbc_database.h"
#include "support/fake_ports.h"
#include "support/recording_database.h"

namespace quenta::tests {

// One test's copy of the sample database.
struct SampleCopy {
  std::string folder;
  std::string source;                                         // its data source
  std::string other_source() const { return source + "-2"; }  // the same database, as a second server
};

// A fresh copy of the sample database, which this process then finds by its data source. Whoever asks removes the
// folder.
SampleCopy CopySample();
// What a host passes on to open the session as this user of the sample catalogue.
component::SQLConnectArguments SampleArguments(const SampleCopy& sample, const std::string& user);
// What opens the component's own connection.
std::string SampleConnectionString(const SampleCopy& sample);

// Each test has a database of its own, a copy of one that is made once.
class SampleComponentTest : public ::testing::Test {
 protected:
  SampleComponentTest();
  ~SampleComponentTest() override;

  component::SQLConnectArguments ArgumentsOf(const std::string& user) const { return SampleArguments(sample_, user); }
  // Opens the session as this user.
  void LogIn(const std::string& user);
  // A loaded form of this product; 0 creates one.
  std::shared_ptr<product::frmMain> OpenForm(std::int32_t produto_id);
  std::int32_t IdOfCode(const std::string& codigo);
  std::string SharedConnectionString() const { return SampleConnectionString(sample_); }

  // Runs a statement as another user of the database would: on a connection of its own.
  ports::RowSet Sql(const std::string& sql);
  // The first column of the first row as text; "(null)" and "(none)" stand for themselves.
  std::string SqlText(const std::string& sql);

  SampleCopy sample_;
  sandbox::OdbcDatabase odbc;
  RecordingDatabase database{odbc};
  FakeSettings settings;
  FakeDesktop desktop;
  FakeErrorReporting reporting;
  FakeFormHost form_host;
  session::Session session{{database, settings, desktop, reporting}};
  product::ProductForms product_forms{session, form_host, &generator::MakeGenerator};
  component::Component component{session, product_forms, form_host};

 private:
  std::unique_ptr<ports::Connection> other_;
};

}  // namespace quenta::tests
