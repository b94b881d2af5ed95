#include "sandbox/host/server_list.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "sandbox/host/scramble.h"

namespace quenta::sandbox::host {
namespace {

TEST(ServerList, ReadsSectionsAsAnEditorLeavesThem) {
  const std::vector<Server> servers = ParseServers(
      "\xEF\xBB\xBF; servidores da casa\r\n\r\n[Loja de \xC3\x89vora]\r\n datasource = Evora "
      "\r\nDataSourceSecondary=Sede\r\n"
      "InitialCatalog=Produtos\r\nUser=suite\r\nPassword=60\r\nFlags=1\r\n# outro\n[Sede]\nDataSource=Sede");
  ASSERT_EQ(servers.size(), 2u);
  const Server expected{.name = "Loja de \xC3\x89vora",
                        .data_source = "Evora",
                        .data_source_secondary = "Sede",
                        .initial_catalog = "Produtos",
                        .user = "suite",
                        .password = "60",
                        .flags = 1};
  EXPECT_EQ(servers[0], expected);
  EXPECT_EQ(servers[1].data_source, "Sede");
  EXPECT_EQ(servers[1].flags, 0);
}

TEST(ServerList, NamesTheLineOfAFaultAndKeepsItsTextSecret) {
  for (const char* wrong :
       {"[a]\nPasswort=segredo", "[a]\nsegredo", "User=segredo", "[a]\nFlags=segredo", "[]\nsegredo="}) {
    try {
      ParseServers(wrong);
      ADD_FAILURE() << "taken: " << wrong;
    } catch (const std::invalid_argument& error) {
      const std::string text = error.what();
      EXPECT_NE(text.find("linha "), std::string::npos) << text;
      EXPECT_EQ(text.find("segredo"), std::string::npos) << text;
    }
  }
}

TEST(ServerList, BuildsTheConnectionStringWithThePasswordInClear) {
  Server server;
  server.data_source = "QuentaSandbox";
  server.initial_catalog = "Produtos";
  server.user = "suite";
  server.password = Scramble("Suite-2026");
  EXPECT_EQ(ConnectionString(server),
            "Provider=SQLOLEDB.1;Persist Security Info=False;User ID=suite;Password=Suite-2026;"
            "Initial Catalog=Produtos;Data Source=QuentaSandbox;Connect Timeout=15");
}

}  // namespace
}  // namespace quenta::sandbox::host
