#include "data/registry.h"

#include <utility>

#include "data/support_log.h"
#include "gtest/gtest.h"
#include "support/fake_ports.h"

namespace quenta::tests {
namespace {

using base::Value;

constexpr const char* kShadow = "C:\\ProgramData\\Torvik Software\\RegShadow.db";
constexpr const char* kKey = R"(HKEY_LOCAL_MACHINE\SOFTWARE\Ambrell\Contabilidade)";

class RegistryTest : public ::testing::Test {
 protected:
  FakeDatabase database;
  FakeSettings settings;
  FakeDesktop desktop;
  FakeErrorReporting reporting;
  session::Ports ports{database, settings, desktop, reporting};
  data::Registry registry{ports};
};

TEST_F(RegistryTest, AKeyPathIsSplitOrRefusedWithTheMessage) {
  std::string path = kKey;
  ports::RootKey root = 1;
  EXPECT_TRUE(registry.FormatarChave(path, root));
  EXPECT_EQ(path, R"(SOFTWARE\Ambrell\Contabilidade)");
  EXPECT_EQ(root, 0x80000002U);

  path = "HKEY_USERS";
  EXPECT_TRUE(registry.FormatarChave(path, root));
  EXPECT_EQ(path, "");
  EXPECT_EQ(root, 0x80000003U);

  path = R"(HKEY_LOCAL_MACHINE\SOFTWARE\)";
  EXPECT_FALSE(registry.FormatarChave(path, root));
  EXPECT_EQ(path, R"(HKEY_LOCAL_MACHINE\SOFTWARE\)");
  EXPECT_EQ(root, 0x80000003U);
  const std::pair<const char*, ports::RootKey> roots[] = {{"HKEY_CLASSES_ROOT", 0x80000000U},
                                                          {"HKEY_CURRENT_USER", 0x80000001U},
                                                          {"HKEY_LOCAL_MACHINE", 0x80000002U},
                                                          {"HKEY_PERFORMANCE_DATA", 0x80000004U},
                                                          {"HKEY_CURRENT_CONFIG", 0x80000005U},
                                                          {"HKEY_DYN_DATA", 0x80000006U},
                                                          {"HKEY_NOWHERE", 0U}};
  for (const auto& [name, handle] : roots) EXPECT_EQ(data::Registry::ObterHandleChavePrincipal(name), handle);
  settings.subkeys[R"(SOFTWARE\Ambrell)"] = {"Contabilidade", "Sarvat"};
  EXPECT_EQ(registry.Enumerar_Chaves(R"(HKEY_LOCAL_MACHINE\SOFTWARE\Ambrell)").size(), 2U);
  EXPECT_TRUE(registry.Enumerar_Chaves("nada").empty());
}

TEST_F(RegistryTest, TheShadowFileIsReadAsFarAsItMakesSense) {
  using namespace std::string_literals;
  const std::string entry = std::string(kKey) + ":Armazem";
  const struct {
    std::string bytes;
    Value value;
  } cases[] = {
      {"", "do registo"},
      {"\n\r\r\n\n", "do registo"},
      {entry, "do registo"},
      {entry + "=", "do registo"},
      {entry + "=2", "2"},
      {entry + "=2\r\r\n", "2\r"},
      {entry + "=2\n" + entry + "=3\n", "2"},
      {entry + "s=3\r\n", "=3"},  // a longer name matches too
      {"\0\0\0"s + entry + "=2\r\n", "do registo"},
      {"\xEF\xBB\xBF" + entry + "=2\r\n", "do registo"},
      {entry + "=\x80\x81\x8D\xFF", "€\xC2\x81\xC2\x8Dÿ"},
      {std::string(100000, '\xE7') + "\r\n" + entry + "=2", "2"},
  };
  settings.registry[R"(SOFTWARE\Ambrell\Contabilidade:Armazem)"] = "do registo";
  for (const auto& [bytes, value] : cases) {
    settings.files[kShadow] = bytes;
    EXPECT_EQ(registry.ObterValorString(kKey, "Armazem"), value) << bytes.substr(0, 80);
    EXPECT_EQ(registry.ObterValorString(kKey, "Armazem", Value::Null(), true), Value("do registo"));
  }
  settings.files[kShadow] = "HKEY_CURRENT_USER\\Software\\X:Y=z\r\n";
  EXPECT_EQ(registry.ObterValorString(R"(HKEY_CURRENT_USER\Software\X)", "Y", "d"), Value::Null());
  settings.registry[R"(SOFTWARE\Ambrell\Contabilidade:Longo)"] = std::string(3500, 'x');
  EXPECT_EQ(registry.ValorString(kKey, "Longo"), Value::Null());
  settings.registry[R"(SOFTWARE\Ambrell\Contabilidade:Longo)"] = std::string(3499, 'x');
  EXPECT_EQ(registry.ValorString(kKey, "Longo"), Value(std::string(3499, 'x')));
}

TEST_F(RegistryTest, ADefaultThatWasUsedIsRecordedUnderTheEndOfTheReferences) {
  settings.registry = {
      {R"(SOFTWARE\Ambrell\Contabilidade:Templates)", R"(SREF=HKEY_LOCAL_MACHINE\SOFTWARE\Ambrell\Shared)"}};
  EXPECT_EQ(registry.ObterValorString(kKey, "Templates", "C:\\M"), Value("C:\\M"));
  EXPECT_TRUE(settings.files.empty()) << "an absent shadow file stays absent";

  settings.files[kShadow] = "outra:linha=1\r\n";
  EXPECT_EQ(registry.ObterValorString(kKey, "Templates", "C:\\M"), Value("C:\\M"));
  EXPECT_EQ(registry.ObterValorString(kKey, "Casas", 2.5), Value(2.5));
  EXPECT_EQ(registry.ObterValorString(kKey, "Casas"), Value("2,5")) << "recorded as its text";
  const std::string recorded = "outra:linha=1\r\nHKEY_LOCAL_MACHINE\\SOFTWARE\\Ambrell\\Shared:Templates=C:\\M\r\n" +
                               std::string(kKey) + ":Casas=2,5\r\n";
  EXPECT_EQ(settings.files[kShadow], recorded);

  settings.registry[R"(SOFTWARE\Ambrell\Contabilidade:Pasta)"] = R"(SREF=hkey_current_user\Software\Ambrell)";
  EXPECT_EQ(registry.ObterValorString(kKey, "Pasta", "C:\\P"), Value("C:\\P"));
  EXPECT_EQ(settings.files[kShadow], recorded) << "the references end among the user's own settings";
}

// An entry is one line of text in the code page; what cannot be one is left out, and read as its default again.
TEST_F(RegistryTest, WhatALineCannotHoldChangesAndAddsNoEntries) {
  const std::string before = "a:x=1\n" + std::string(kKey) + ":Pasta=C:\\\x80\x81\r\nsem fim \x90";
  settings.files[kShadow] = before;
  for (const char* text : {"C:\\Modelos\\Ωmega", "C:\\🍷", "um\r\nb:y=2", "um\nb:y=2", "um\rdois", "\x1A"}) {
    for (const auto& [name, value] : {std::pair{"Pasta", text}, {"Outra", text}, {text, "1"}}) {
      registry.DefinirValorShadow(kKey, name, value);
      EXPECT_EQ(settings.files[kShadow], before) << name << " = " << value;
    }
  }
  EXPECT_EQ(registry.ObterValorString(kKey, "Outra", "Ω"), Value("Ω"));
  registry.DefinirValorShadow(kKey, "Pasta", "ção");
  registry.DefinirValorShadow("b", "y", "2");
  EXPECT_EQ(settings.files[kShadow], "a:x=1\n" + std::string(kKey) + ":Pasta=\xE7\xE3o\r\nsem fim \x90\r\nb:y=2\r\n")
      << "the other lines keep their bytes";
}

TEST_F(RegistryTest, SupportsLogIsNamedByTheMachineAlone) {
  const std::string line = std::string(kKey) + ":StatementLog=C:\\of_a_user.log\r\n";
  settings.files[kShadow] = line + "HKEY_LOCAL_MACHINE\\SOFTWARE\\Ambrell\\Shared\\OUT:DataServer=Contabilidade\r\n";
  settings.registry[R"(SOFTWARE\Ambrell\Contabilidade:StatementLog)"] = " C:\\log.txt ";
  EXPECT_EQ(data::StatementLogPath(settings), "");
  for (const auto& [server, path] : {std::pair{"", ""}, {" ", ""}, {"Sarvat", ""}, {"Contabilidade", "C:\\log.txt"}}) {
    settings.registry[R"(SOFTWARE\Ambrell\Shared\OUT:DataServer)"] = server;
    EXPECT_EQ(data::StatementLogPath(settings), path) << server;
  }
}

TEST_F(RegistryTest, ARewriteReplacesTheFirstMatchDropsTheOthersAndKeepsTheRest) {
  settings.files[kShadow] = "a:x=1\r\nHKEY_K\\P:nome=antigo\r\nhkey_k\\p:NOMEADO=2\r\nb:y=2\r\n";
  EXPECT_TRUE(registry.DefinirValorShadow("HKEY_K\\P", "nome", "novo"));
  EXPECT_EQ(settings.files[kShadow], "a:x=1\r\nHKEY_K\\P:nome=novo\r\nb:y=2\r\n");
}

}  // namespace
}  // namespace quenta::tests
