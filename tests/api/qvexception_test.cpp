#include "api/qvexception.h"

#include <gtest/gtest.h>

#include "support/failure.h"

namespace quvex {
namespace {

struct Scope {
  static constexpr const char* kName = "quvex::Scope";
  static void fail(int value) { raise<QVException>(here<Scope>(), "The value ", value, " is ", 0.5, " too large."); }
  static void failBelow() { raise<KernelException>(here<Scope>(), "below"); }
};

struct NamedScope {
  static inline const std::string kName = std::string("quvex::NamedScope<") + "x>";
  static void fail() { raise<QVException>(here<NamedScope>(), "e"); }
};

TEST(QVException, ComposesItsMessage) {
  const QVException e("f", 7, "g", "e");
  EXPECT_EQ(e.getFileName(), "f");
  EXPECT_EQ(e.getLineNumber(), 7);
  EXPECT_EQ(e.getFunctionName(), "g");
  EXPECT_EQ(e.getExplanation(), "e");
  EXPECT_EQ(e.getMessage(), "ERROR [function g]: e");
}

TEST(QVException, GivesTheSameTextByAllThreeNames) {
  const QVException e("f", 7, "g", "e");
  EXPECT_EQ(e.toString(), e.getMessage());
  EXPECT_EQ(std::string(e.what()), e.getMessage());
}

TEST(QVException, CopiesAllFields) {
  const QVException original("f", 7, "g", "e");
  QVException assigned("", 0, "", "");
  assigned = original;
  const QVException copy(assigned);
  EXPECT_EQ(copy.getFileName(), "f");
  EXPECT_EQ(copy.getLineNumber(), 7);
  EXPECT_EQ(copy.getFunctionName(), "g");
  EXPECT_EQ(copy.getExplanation(), "e");
  EXPECT_EQ(copy.getMessage(), "ERROR [function g]: e");
}

TEST(QVException, IsWhatAStandardHandlerCatches) {
  try {
    Scope::fail(1);
    FAIL() << "nothing was raised";
  } catch (const std::exception& e) {
    EXPECT_STREQ(e.what(), "ERROR [function quvex::Scope::fail]: The value 1 is 0.5 too large.");
  }
}

TEST(QVException, TellsThePlaceThatRaised) {
  const Failure failure = failureOf([] { Scope::fail(3); });
  EXPECT_EQ(failure.function, "quvex::Scope::fail");
  EXPECT_EQ(failure.explanation, "The value 3 is 0.5 too large.");
  EXPECT_TRUE(failure.file.ends_with("tests/api/qvexception_test.cpp")) << failure.file;
  EXPECT_FALSE(failure.isKernel);
  EXPECT_EQ(failureOf(NamedScope::fail).function, "quvex::NamedScope<x>::fail");
}

TEST(KernelException, IsEmptyWhenDefaultConstructed) {
  const KernelException e;
  EXPECT_EQ(e.getFileName(), "");
  EXPECT_EQ(e.getLineNumber(), 0);
  EXPECT_EQ(e.getFunctionName(), "");
  EXPECT_EQ(e.getExplanation(), "");
}

TEST(KernelException, IsCaughtAsQVExceptionAfterACopyIsRethrown) {
  KernelException stored;
  try {
    Scope::failBelow();
  } catch (const KernelException& e) {
    stored = e;
  }
  const Failure failure = failureOf([&] { throw KernelException(stored); });
  EXPECT_EQ(failure.explanation, "below");
  EXPECT_EQ(failure.function, "quvex::Scope::failBelow");
  EXPECT_TRUE(failure.isKernel);
}

}  // namespace
}  // namespace quvex
