// scramble: prints a password as hosts and the registry hold it; "--undo" prints what a scrambled one hides.
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "base/text.h"
#include "sandbox/host/scramble.h"

namespace {

int Run(const std::vector<std::string>& arguments) {
  const bool back = !arguments.empty() && arguments[0] == "--undo";
  if (arguments.size() != (back ? 2u : 1u)) {
    std::fputs("scramble TEXT: the text as the component takes passwords\nscramble --undo HEX: the text again\n",
               stderr);
    return 2;
  }
  try {
    const std::string result =
        back ? quenta::sandbox::host::Unscramble(arguments[1]) : quenta::sandbox::host::Scramble(arguments[0]);
    std::puts(result.c_str());
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "scramble: %s\n", error.what());
    return 1;
  }
}

}  // namespace

#ifdef _WIN32
int wmain(int count, wchar_t** texts) {
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) {
    const std::wstring text = texts[i];
    arguments.push_back(quenta::base::FromUtf16(std::u16string(text.begin(), text.end())));
  }
  return Run(arguments);
}
#else
int main(int count, char** texts) {
  return Run(std::vector<std::string>(texts + 1, texts + count));
}
#endif
