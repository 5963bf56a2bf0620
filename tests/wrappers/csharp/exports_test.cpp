#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <memory>
#include <regex>
#include <set>
#include <sstream>
#include <string>

namespace {

using Names = std::set<std::string>;

std::ifstream open(const std::string& path) {
  std::ifstream file(std::string(QUVEX_SOURCE_DIR) + "/" + path);
  EXPECT_TRUE(file.is_open()) << path;
  return file;
}

/// The complete list, written down by hand.
Names listedNames() {
  std::ifstream file = open("tests/wrappers/csharp/exports.txt");
  Names names;
  for (std::string name; std::getline(file, name);) names.insert(name);
  return names;
}

/// "<address> <type> <name>" per line of `nm`.
Names namesInLibrary() {
  const std::string command = "nm -D --defined-only '" QUVEX_NATIVE_LIBRARY "'";
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(popen(command.c_str(), "r"), pclose);
  std::string output;
  for (int c = std::fgetc(pipe.get()); c != EOF; c = std::fgetc(pipe.get())) output += static_cast<char>(c);
  Names names;
  std::istringstream words(output);
  for (std::string address, type, name; words >> address >> type >> name;) names.insert(name);
  return names;
}

/// The functions that the C# source imports.
Names namesInManagedSource() {
  std::ifstream file = open("wrappers/csharp/managed/Native.cs");
  const std::regex import(R"(extern \S+ (\w+)\()");
  Names names;
  for (std::string line; std::getline(file, line);) {
    std::smatch found;
    if (std::regex_search(line, found, import)) names.insert(found[1]);
  }
  return names;
}

Names difference(const Names& a, const Names& b) {
  Names result;
  for (const std::string& name : a) {
    if (b.count(name) == 0) result.insert(name);
  }
  return result;
}

TEST(Exports, AreTheListAndNothingElse) {
  const Names listed = listedNames();
  const Names exported = namesInLibrary();
  EXPECT_EQ(listed.size(), 171U);
  EXPECT_EQ(difference(listed, exported), Names{}) << "listed, but not exported";
  EXPECT_EQ(difference(exported, listed), Names{}) << "exported, but not listed";
}

TEST(Exports, AreAllImportedByTheManagedLibrary) {
  const Names listed = listedNames();
  const Names imported = namesInManagedSource();
  EXPECT_EQ(difference(listed, imported), Names{}) << "listed, but not imported";
  EXPECT_EQ(difference(imported, listed), Names{}) << "imported, but not listed";
}

}  // namespace
