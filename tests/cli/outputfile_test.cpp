#include "cli/outputfile.h"

#include "cli/errors.h"
#include "clifixture.h"

namespace quvex::cli {

class OutputFileTest : public test::CliTest {
 protected:
  [[nodiscard]] std::size_t nbFiles() const {
    const std::filesystem::directory_iterator files(directory);
    return static_cast<std::size_t>(std::distance(begin(files), end(files)));
  }
};

TEST_F(OutputFileTest, AppearsWholeAtTheCommit) {
  OutputFile output(path("a.json"));
  EXPECT_FALSE(exists("a.json"));
  EXPECT_TRUE(std::filesystem::exists(output.temporaryName()));
  EXPECT_TRUE(output.temporaryName().ends_with("a.json"));
  output.writeAndCommit("{}\n");
  EXPECT_EQ(read("a.json"), "{}\n");
  EXPECT_EQ(nbFiles(), 1U);
}

TEST_F(OutputFileTest, LeavesNothingWithoutACommit) {
  { const OutputFile output(path("a.json")); }
  EXPECT_EQ(nbFiles(), 0U);
}

TEST_F(OutputFileTest, KeepsTheFormerFileUntilTheCommit) {
  write("a.json", "old");
  OutputFile output(path("a.json"));
  EXPECT_EQ(read("a.json"), "old");
  output.discard();
  EXPECT_EQ(read("a.json"), "old");
  EXPECT_EQ(nbFiles(), 1U);
}

TEST_F(OutputFileTest, ReplacesTheFileBehindALink) {
  write("real.json", "old");
  std::filesystem::create_symlink("real.json", path("link.json"));
  OutputFile(path("link.json")).writeAndCommit("new");
  EXPECT_TRUE(std::filesystem::is_symlink(path("link.json")));
  EXPECT_EQ(read("real.json"), "new");
}

TEST_F(OutputFileTest, RefusesWhatCannotBeWritten) {
  const auto exitCodeFor = [](const std::string& name) -> int {
    try {
      const OutputFile output(name);
    } catch (const CommandError& error) {
      return error.exitCode();
    }
    return kExitDone;
  };
  EXPECT_EQ(exitCodeFor(path("missing/a.json")), kExitOutput);
  EXPECT_EQ(exitCodeFor(directory.string()), kExitOutput);
  EXPECT_EQ(exitCodeFor("/dev/null"), kExitOutput);
}

}  // namespace quvex::cli
