// The suite's settings: registry values behind a shadow file that wins over them and records the defaults in use.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/value.h"
#include "component/session/ports.h"

namespace quenta::data {

// Full key paths begin with a root's name: "HKEY_LOCAL_MACHINE\SOFTWARE\Ambrell\Shared\OUT". Reads never fail: what
// cannot be read is Null. The registry itself is never written.
class Registry {
 public:
  explicit Registry(const session::Ports& ports) : ports_(ports) {}

  // The setting: from the shadow file, else from the registry through its references ("SREF=" and another key path),
  // else the default, whose text is then recorded in the shadow file. Keys under HKEY_CURRENT_USER\SOFTWARE know
  // neither shadow file nor default, and nothing is recorded when references end there; registry_only passes the shadow
  // file by when reading.
  base::Value ObterValorString(const std::string& key_path, const std::string& value_name,
                               const base::Value& default_value = base::Value::Null(), bool registry_only = false);

  // The registry's own value, trimmed; Null when there is none.
  base::Value ValorString(const std::string& key_path, const std::string& value_name);

  // Names of the direct subkeys in the registry's order; empty when the key cannot be opened.
  std::vector<std::string> Enumerar_Chaves(const std::string& key_path);

  // Splits a key path into the root's handle and the path below it (empty when there is no backslash). A path that
  // does not begin with "HKEY_" or ends with a backslash shows a message and changes nothing; false then.
  bool FormatarChave(std::string& key_path, ports::RootKey& root);

  // Number of a predefined key by name; 0 for any other name.
  static ports::RootKey ObterHandleChavePrincipal(std::string_view root_name);

  // Value text of the first line of the shadow file for this key and name, which any longer name that begins with it
  // matches too; empty when there is none.
  std::string ObterValorShadow(const std::string& key_path, const std::string& value_name);

  // Records a value in the shadow file, in the place of the lines that match; all others keep their bytes. Nothing is
  // written of what one line of the file cannot hold, and an absent file stays absent. Always true.
  bool DefinirValorShadow(const std::string& key_path, const std::string& value_name, const std::string& text);

  std::string ObterPastaEspecial(int number) { return std::string(ports_.settings.SpecialFolder(number)); }
  std::string ObterPastaTemp() { return ports_.settings.TempFolder(); }

 private:
  std::string ShadowFolder();

  const session::Ports& ports_;
};

}  // namespace quenta::data
