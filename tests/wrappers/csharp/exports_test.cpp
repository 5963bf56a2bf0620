#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <map>
#include <memory>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

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

/// "<result> <name>(<types of the arguments>)" of every function that the C# source imports.
Names shapesInManagedSource() {
  std::ifstream file = open("wrappers/csharp/managed/Native.cs");
  const std::regex import(R"(extern (\S+) (CSharp_\w+)\(([^)]*)\))");
  const std::regex parameterName(R"( \w+(?=,|$))");
  Names shapes;
  for (std::string line; std::getline(file, line);) {
    std::smatch found;
    if (!std::regex_search(line, found, import)) continue;
    const std::string types = std::regex_replace(found[3].str(), parameterName, "");
    shapes.insert(found[1].str() + " " + found[2].str() + "(" + types + ")");
  }
  return shapes;
}

/// The C# type of each type of the C header.
std::string managedType(const std::string& type) {
  static const std::map<std::string, std::string> kTypes = {
      {"Void", "void"},     {"Int", "int"},       {"Long", "long"},   {"Real", "double"},  {"Text", "byte[]"},
      {"String", "IntPtr"}, {"Object", "IntPtr"}, {"Expr", "IntPtr"}, {"Operator", "int"}, {"Direction", "int"}};
  return kTypes.at(type);
}

std::string shapeOf(const std::string& result, const std::string& name, const std::vector<std::string>& arguments) {
  std::string types;
  for (const std::string& argument : arguments) types += (types.empty() ? "" : ", ") + managedType(argument);
  return managedType(result) + " " + name + "(" + types + ")";
}

/// The same of every function that the C header declares.
Names shapesInHeader() {
  return {
#define QV_METHOD_0(Result, Class, Export, method) shapeOf(#Result, "CSharp_" #Class "_" #Export, {"Object"}),
#define QV_METHOD_1(Result, Class, Export, method, A) shapeOf(#Result, "CSharp_" #Class "_" #Export, {"Object", #A}),
#define QV_METHOD_2(Result, Class, Export, method, A, B) \
  shapeOf(#Result, "CSharp_" #Class "_" #Export, {"Object", #A, #B}),
#define QV_METHOD_3(Result, Class, Export, method, A, B, C) \
  shapeOf(#Result, "CSharp_" #Class "_" #Export, {"Object", #A, #B, #C}),
#define QV_METHOD_4(Result, Class, Export, method, A, B, C, D) \
  shapeOf(#Result, "CSharp_" #Class "_" #Export, {"Object", #A, #B, #C, #D}),
#define QV_STATIC(Result, Class, Export, method) shapeOf(#Result, "CSharp_" #Class "_" #Export, {}),
#define QV_FIELD(Result, Class, Export, method) shapeOf(#Result, "CSharp_" #Class "_" #Export, {"Object"}),
#define QV_CONSTANT(Result, name) shapeOf(#Result, "CSharp_" #name "_get", {}),
#define QV_DELETE(Class) shapeOf("Void", "CSharp_delete_" #Class, {"Object"}),
#include "wrappers/csharp/exports.def"
      shapeOf("Object", "CSharp_new_Quvex", {}),
      shapeOf("Object", "CSharp_new_QVException", {"Text", "Int", "Text", "Text"}),
      shapeOf("Void", "CSharp_delete_QVException", {"Object"}),
  };
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

TEST(Exports, HaveTheSameShapesInCAndInTheManagedLibrary) {
  const Names inC = shapesInHeader();
  const Names managed = shapesInManagedSource();
  EXPECT_EQ(inC.size(), 167U);
  EXPECT_EQ(difference(inC, managed), Names{}) << "in C only";
  EXPECT_EQ(difference(managed, inC), Names{}) << "in C# only";
}

}  // namespace
