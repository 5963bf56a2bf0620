#include "api/qvversion.h"

#include <gtest/gtest.h>

namespace quvex {
namespace {

TEST(QVVersion, TellsTheFiguresOfTheBuild) {
  EXPECT_EQ(QVVersion::getMajorVersionNumber(), 3);
  EXPECT_EQ(QVVersion::getMinorVersionNumber(), 0);
  EXPECT_EQ(QVVersion::getBuildDate(), 20130522);
  EXPECT_EQ(QVVersion::getVersionCode(), 30);
  EXPECT_EQ(QVVersion::getPlatform(), "Win64");
}

TEST(QVVersion, ConstantsAgreeWithTheOperations) {
  static_assert(QV_MAJOR_VERSION == 3 && QV_MINOR_VERSION == 0 && QV_BUILD_DATE == 20130522);
  EXPECT_STREQ(QV_PLATFORM, QVVersion::getPlatform().c_str());
}

TEST(QVVersion, JoinsTheFiguresIntoTexts) {
  EXPECT_EQ(QVVersion::getVersion(), "3.0.20130522-Win64");
  EXPECT_FALSE(QVVersion::getCopyright().empty());
  EXPECT_EQ(QVVersion::getInfo(), "Quvex 3.0 (Win64, build 20130522)\n" + QVVersion::getCopyright() + "\n");
}

}  // namespace
}  // namespace quvex
